#!/usr/bin/env bash
# Fails when a library exports other names than LIST_DIR/NAME.symbols has; writes the list anew
# where UPDATE is set.
# usage: [UPDATE=1] check-symbols.sh LIST_DIR LIBRARY...
set -euo pipefail

# Inline functions and template instances (W, u) depend on the compiler: programs have their own.
symbols() { nm -D --defined-only "$1" | awk '$2 !~ /[Wu]/ { print $3 }' | c++filt | LC_ALL=C sort -u; }

failed=0
for library in "${@:2}"; do
  name=$(basename "$library")
  list=$1/${name%%.*}.symbols
  if [[ -n ${UPDATE-} ]]; then
    symbols "$library" >"$list"
  else
    diff -U0 "$list" --label "$list" --label "$name" <(symbols "$library") >&2 || failed=1
  fi
done
((failed == 0)) || echo "if this is meant: make symbols, and see 'Versions' in CONTRIBUTING.md" >&2
exit "$failed"
