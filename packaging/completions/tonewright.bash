# Completion of tonewright's commands, options and files, from what --help tells.
_tonewright() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command=${COMP_WORDS[1]} help
  COMPREPLY=()
  if [ "$COMP_CWORD" -eq 1 ]; then
    help=$(tonewright --help 2>/dev/null)
    COMPREPLY=($(compgen -W "$(sed -n '/^Subcommands:$/,$s/^  \([a-z]\{1,\}\) .*/\1/p; s/^  [-a-z,]*\(--[-a-z]*\).*/\1/p' <<<"$help")" -- "$word"))
    return
  fi
  help=$(tonewright "$command" --help 2>/dev/null)
  if [[ $word == -* ]]; then
    COMPREPLY=($(compgen -W "$(sed -n 's/^  \(-.,\)\{0,1\}\(--[-a-z0-9]*\).*/\2/p' <<<"$help")" -- "$word"))
    return
  fi
  # A choice such as --terms 4|7|10, else files.
  local choices
  choices=$(sed -n "s/^  ${before} \([^ ]*|[^ ]*\).*/\1/p" <<<"$help")
  if [[ $before == --* && -n $choices ]]; then
    COMPREPLY=($(compgen -W "${choices//|/ }" -- "$word"))
  else
    COMPREPLY=($(compgen -f -- "$word"))
  fi
}
complete -o filenames -F _tonewright tonewright
