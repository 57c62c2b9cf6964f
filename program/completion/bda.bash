# Completion of bda in bash: the program says itself what fits.

_bda() {
  # The words as they were typed: bash breaks them at : and = as well.
  local rest=${COMP_LINE:0:COMP_POINT} words=() piece answers answer files=
  for piece in "${COMP_WORDS[@]:0:COMP_CWORD+1}"; do
    if ((${#words[@]} == 0)) || [[ $rest == [[:blank:]]* ]]; then
      rest=${rest#"${rest%%[![:blank:]]*}"}
      words+=('')
    fi
    words[-1]+=${rest:0:${#piece}}
    rest=${rest:${#piece}}
  done
  words=("${words[@]//[\"\'\\]/}")
  words=("${words[@]/#\~\//$HOME/}")
  local word=${words[-1]} begun=
  # What bash replaces begins behind the last of them.
  [[ ${COMP_WORDS[COMP_CWORD]} == [\"\']* ]] || begun=${word%"${word##*[:=]}"}

  COMPREPLY=()
  mapfile -t answers < <("${words[0]}" __complete "${words[@]:1}" 2>/dev/null)
  for answer in "${answers[@]}"; do
    case $answer in
      :files) files=file ;;
      :folders) files=directory ;;
      *) COMPREPLY+=("${answer%%$'\t'*}") ;;
    esac
  done
  COMPREPLY=("${COMPREPLY[@]#"$begun"}")
  if [[ -n $files ]]; then
    compopt -o filenames
    while read -r answer; do
      COMPREPLY+=("$answer")
    done < <(compgen -A "$files" -- "${word#"$begun"}")
  fi
  compopt -o nosort
  # There is more to come behind a part of an address.
  [[ ${COMPREPLY[0]-} != *: ]] || compopt -o nospace
}

complete -F _bda bda
