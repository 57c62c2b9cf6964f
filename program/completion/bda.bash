# Completion of bda in bash: the program says itself what fits.

_bda() {
  # The words as they were typed: bash breaks them at : and = as well.
  local rest=${COMP_LINE:0:COMP_POINT} words=() piece answers answer files=
  for piece in "${COMP_WORDS[@]:0:COMP_CWORD+1}"; do
    if ((${#words[@]} == 0)) || [[ $rest == [[:blank:]]* ]]; then
      rest=${rest#"${rest%%[![:blank:]]*}"}
      words+=('')
    fi
    piece=${rest:0:${#piece}}
    words[-1]+=$piece
    rest=${rest:${#piece}}
  done
  # What bash replaces is the last piece; behind one of the marks it is nothing yet.
  [[ $piece == *[!:=]* ]] || piece=
  words=("${words[@]//[\"\'\\]/}")
  local begun=${words[-1]%"${piece//[\"\'\\]/}"}
  words=("${words[@]/#\~\//$HOME/}")
  begun=${begun/#\~\//$HOME/}
  local word=${words[-1]} option=
  [[ $word != --*=* ]] || option=${word%%=*}=

  COMPREPLY=()
  mapfile -t answers < <("${words[0]}" __complete "${words[@]:1}" 2>/dev/null)
  for answer in "${answers[@]}"; do
    case $answer in
      :files) files=file ;;
      :folders) files=directory ;;
      *) COMPREPLY+=("${answer%%$'\t'*}") ;;
    esac
  done
  if [[ -n $files ]]; then
    # A file may be the value of an option.
    while read -r answer; do
      compopt -o filenames
      # Of a part of a name bash cannot tell what it is.
      [[ $begun == "$option" || ! -d $answer ]] || answer+=/
      COMPREPLY+=("$option$answer")
    done < <(compgen -A "$files" -- "${word#"$option"}")
  fi
  COMPREPLY=("${COMPREPLY[@]#"$begun"}")
  compopt -o nosort
  # There is more to come behind a part of an address, or a folder.
  [[ ${COMPREPLY[0]-} != *[:/] ]] || compopt -o nospace
}

complete -F _bda bda
