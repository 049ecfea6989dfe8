#!/usr/bin/python3
"""Plots time against N from the benchmarks' JSON.

usage: plot-growth.py build/bench.json docs/growth.svg
"""

import collections
import json
import re
import sys

import matplotlib

matplotlib.use("svg")
import matplotlib.pyplot as plt  # noqa: E402

CASES = {
    "small/tree": "small streams opened by name and read, sibling tree",
    "small/list": "the same, sibling list",
    "storages": "sub-storages opened",
    "properties": "properties parsed",
}


def least_times(path):
    """The least time in ms of each case and N over all repetitions."""
    times = collections.defaultdict(dict)
    with open(path, encoding="utf-8") as file:
        runs = json.load(file)["benchmarks"]
    for run in runs:
        match = re.fullmatch(r"(.+)/(\d+)/real_time", run["run_name"])
        if run["run_type"] != "iteration" or not match or match[1] not in CASES:
            continue
        count = int(match[2])
        best = times[match[1]].get(count, float("inf"))
        times[match[1]][count] = min(best, run["real_time"])
    return times


def main():
    source, target = sys.argv[1:]
    plt.rcParams["svg.hashsalt"] = "growth"  # the same picture for the same numbers
    figure, axes = plt.subplots(figsize=(7, 4.5))
    times = least_times(source)
    for case, label in CASES.items():
        counts = sorted(times[case])
        axes.loglog(counts, [times[case][n] for n in counts], marker="o", label=label)
    axes.set_xlabel("N")
    axes.set_ylabel("time, ms")
    axes.set_title("Time grows in proportion to N")
    axes.grid(True, which="both", alpha=0.3)
    axes.legend()
    figure.tight_layout()
    figure.savefig(target, metadata={"Date": None})


if __name__ == "__main__":
    main()
