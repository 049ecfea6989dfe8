#!/usr/bin/env bash
# Fails when a shared library exports a name that no public header has, or lacks the marker.
# usage: check-exports.sh SOURCE_DIR LIBRARY...
set -euo pipefail
shopt -s nullglob
cd "$1"
words=$(grep -hoE '[A-Za-z_][A-Za-z0-9_]*' KELXStStorage.h {base,compound,property,storage}/KEL*.h |
  sort -u)

# The owner of a mangled name is the first identifier in it, the outermost class or namespace.
# Weak std:: symbols are template instances over exported types: the standard headers give them
# default visibility, whatever the project's own setting.
foreign_names() {
  nm -D --defined-only "$1" | awk -v words="$words" '
    BEGIN { count = split(words, list, "\n"); for (i = 1; i <= count; i++) public[list[i]] = 1 }
    {
      owner = name = $3
      standard = name ~ /^_Z(T[A-Z]|GV|Z)?N?[KVRO]*(S[tabsiod]|9__gnu_cxx)/
      if (standard && $2 ~ /[VWu]/) next
      if (sub(/^_Z(T[hvc][n0-9_]+)?[^0-9]*/, "", owner))
        owner = substr(owner, match(owner, /[^0-9]/), owner + 0)
      if (standard || owner == "kelx" || !(owner in public)) print name
    }' | c++filt
}

failed=0
for library in "${@:2}"; do
  names=$(foreign_names "$library")
  if [[ -n $names ]]; then
    printf '%s exports what no public header declares:\n%s\n' "$library" "$names" >&2
    failed=1
  fi
done
symbols=$(nm -D --defined-only "${@:2}")
if [[ $symbols != *' T VANTREL_INTERNAL_KELXStStorage'* ]]; then
  echo "VANTREL_INTERNAL_KELXStStorage is not exported with C linkage" >&2
  failed=1
fi
exit "$failed"
