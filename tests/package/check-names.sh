#!/usr/bin/env bash
# Fails when the manual or the completion names other commands and options than the help does.
# usage: check-names.sh KELST MANUAL COMPLETION
set -euo pipefail
kelst=$1 manual=$2
source "$3"
commands=$("$kelst" --help | awk '/^Commands:/ { on = 1; next } !NF { on = 0 } on { print $1 }')

# Each of these three prints lines "COMMAND NAME", first those of the tool itself: the command is
# kelst there, and the names are its commands and the options that all of them have.
help_names() {
  local command
  printf 'kelst %s\n' $commands
  for command in '' $commands; do
    "$kelst" $command --help | grep -oE '^  -[^ ]+' | tr -d ' ' | tr , '\n' |
      sed "s/^/${command:-kelst} /"
  done
}

manual_names() {
  awk '/^\.Sh/ { command = $2 == "DESCRIPTION" ? "kelst" : "" }
    /^\.Ss/ { command = $2; print "kelst", command }
    /^\.It Fl/ && command { for (i = 1; i < NF; i++) if ($i == "Fl") print command, "-" $(i + 1) }
    ' "$manual"
}

completion_names() {
  local command
  print_completions kelst ''
  print_completions kelst -
  for command in $commands; do print_completions "$command" "$command" -; done
}

# print_completions COMMAND WORD...: what may stand in place of the last word.
print_completions() {
  COMP_WORDS=(kelst "${@:2}") COMP_CWORD=$(($# - 1))
  _kelst "$kelst"
  printf "$1 %s\n" "${COMPREPLY[@]}"
}

# Leaves out of each command what all of them have; the manual names that once.
sorted() {
  awk '$1 == "kelst" { common[$2] = 1; print; next } !($2 in common)' | LC_ALL=C sort -u
}

expected=$(help_names | sorted)
failed=0
for source in manual completion; do
  diff -U0 --label "kelst --help" --label "the $source" <(echo "$expected") \
    <("${source}_names" | sorted) >&2 || failed=1
done
((failed == 0)) || echo "what the manual lacks belongs in tools/kelst.1.in" >&2
exit "$failed"
