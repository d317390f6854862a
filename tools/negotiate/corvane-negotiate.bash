# SPDX-License-Identifier: Apache-2.0
# Completes the command line of corvane-negotiate in bash.

_corvane_negotiate_reasons='RequiredFailed OptionalFailed ProtocolLost OlderVersion NewerVersion UnaskedSuccess OtherValue
  VersionConflict ContradictoryEntries Misread'

# The list that is being typed, with one more reason at its end.
_corvane_negotiate_refuse() {
  local word=$1 before=
  if [[ $word == *,* ]]; then
    before=${word%,*},
    COMPREPLY=($(compgen -P "$before" -W "$_corvane_negotiate_reasons" -- "${word##*,}"))
  else
    COMPREPLY=($(compgen -W "$_corvane_negotiate_reasons none all" -- "$word"))
  fi
}

_corvane_negotiate_options() {
  case $1 in
    lint) echo --max --json --help ;;
    check | explain) echo --offers --json --colour --refuse --help ;;
    matrix) echo --markdown --refuse --help ;;
  esac
}

_corvane_negotiate() {
  local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  COMPREPLY=()

  if ((COMP_CWORD == 1)); then
    COMPREPLY=($(compgen -W 'lint check explain matrix --help --version' -- "$word"))
    return
  fi

  # "--option=word" comes as three words.
  if [[ $word == = ]]; then
    word=
  elif [[ $previous == = ]]; then
    previous=${COMP_WORDS[COMP_CWORD - 2]}
  fi

  case $previous in
    --colour) COMPREPLY=($(compgen -W 'auto always never' -- "$word")) ;;
    --refuse) _corvane_negotiate_refuse "$word" ;;
    --max) ;;
    *)
      # Behind "--" there are files only.
      if [[ $word == -* && " ${COMP_WORDS[*]:0:COMP_CWORD} " != *" -- "* ]]; then
        COMPREPLY=($(compgen -W "$(_corvane_negotiate_options "${COMP_WORDS[1]}")" -- "$word"))
      else
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
      fi
      ;;
  esac
}

complete -F _corvane_negotiate corvane-negotiate
