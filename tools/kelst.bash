# Completes kelst in bash: commands and options, which its help lists, and names of files.
_kelst() {
  local program=${1/#\~/$HOME} word=${COMP_WORDS[COMP_CWORD]} command=() help names=
  local -i i
  for ((i = 1; i < COMP_CWORD; i++)); do
    [[ ${COMP_WORDS[i]} == -* ]] || { command=("${COMP_WORDS[i]}") && break; }
  done
  help=$("$program" "${command[@]}" --help 2>/dev/null) || return
  if [[ $word == -* ]]; then
    names=$(sed -nE 's/^  (-[^ ]+).*/\1/p' <<<"$help" | tr , ' ')
  elif ((${#command[@]} == 0)); then
    names=$(sed -nE '/^Commands:/,/^$/s/^  ([^ ]+).*/\1/p' <<<"$help")
  fi
  mapfile -t COMPREPLY < <(compgen -W "$names" -- "$word")
}
complete -o bashdefault -o default -F _kelst kelst
