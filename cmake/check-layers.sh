#!/usr/bin/env bash
# Fails on an include that points to a higher layer, or from public code to an internal header.
# usage: check-layers.sh SOURCE_DIR
set -euo pipefail
shopt -s nullglob
cd "$1"
failed=0

# check PATTERN FILE...: what the files include of this project must match the pattern.
check() {
  local ours='^ *# *include *("|<(base|compound|property|storage|tools|tests)/)'
  local found
  found=$(grep -d skip -HnE "$ours" "${@:2}" /dev/null | grep -vE "include *[\"<]($1)" || true)
  [[ -z $found ]] || { echo "$found" && failed=1; }
}

check 'base/' base/*
check '(base|compound)/' compound/*
check '(base|property)/' property/*.h
check '(base|compound|property|storage)/' property/*.cpp storage/*
check 'KELXStStorage\.h"|(base|compound|property|storage)/KEL|tools/' \
  tools/*/* examples/*.cpp
check '(base|compound|property|storage)/KEL' KELXStStorage.h {base,compound,property,storage}/KEL*.h

((failed == 0)) || echo "these includes point to a higher layer or an internal header" >&2
exit "$failed"
