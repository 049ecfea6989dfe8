#!/usr/bin/env bash
# Holds the guide to what is true: each cpp block stands in an example word for word, and each sh
# block prints the text block that follows it.
# usage: check-guide.sh SOURCE_DIR TOOLS_DIR EXAMPLES_DIR
set -euo pipefail
source_dir=$1
export PATH=$2:$3:$PATH LC_ALL=C.UTF-8
examples=$(cat "$source_dir"/examples/*.cpp)
output=
checked=0

# check PAGE LANGUAGE BLOCK
check() {
  local expected=$output
  case $2 in
    cpp) [[ $examples == *"${3%$'\n'}"* ]] && expected=$3 || expected='(no example has this)' ;;
    sh)
      output=$(bash -c "$3" 2>&1) || true
      return
      ;;
    text) ;;
    *) return ;;
  esac
  checked=$((checked + 1))
  [[ ${3%$'\n'} == "${expected%$'\n'}" ]] && return
  echo "$1 differs (-) from what is true (+):" >&2
  diff -u <(echo "${3%$'\n'}") <(echo "${expected%$'\n'}") | tail -n +3 >&2 || true
  exit 1
}

# check_page PAGE [LANGUAGE]: its blocks, or only those in LANGUAGE.
check_page() {
  local page=$1 only=${2-} language= block= line
  while IFS= read -r line; do
    if [[ $line != '```'* ]]; then
      [[ -z $language ]] || block+=$line$'\n'
    elif [[ -z $language ]]; then
      language=${line#'```'}
      language=${language:-none}
      block=
    else
      [[ ${only:-$language} != "$language" ]] || check "$page" "$language" "$block"
      language=
    fi
  done <"$page"
}

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
ln -s "$source_dir/tests" tests # the commands name samples as seen from the project's folder
check_page "$source_dir/README.md" cpp
for page in "$source_dir"/docs/guide/*.md; do check_page "$page"; done
((checked > 0))
