# Completes the veq program's commands, options and files in bash:
#   source tools/veq/completion.bash
_veq() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local command=${COMP_WORDS[1]} words=
  COMPREPLY=()
  case $previous in
    --agents | --steps | --until-reach | --seed | --start | --top | --memory | --errors | \
      --vertices | --degree) return ;;
    --split) mapfile -t COMPREPLY < <(compgen -d -- "$current") && return ;;
    --paths | --output | --agents-network | --largest)
      mapfile -t COMPREPLY < <(compgen -f -- "$current") && return ;;
  esac
  if [[ $COMP_CWORD -eq 1 ]]; then
    words="info walk convert generate components --help --version"
  elif [[ $command == generate && $COMP_CWORD -eq 2 ]]; then
    words="barabasi random --help"
  elif [[ $current == -* ]]; then
    case $command in
      info) words="--matrix" ;;
      walk) words="--agents --steps --until-reach --seed --start --top --memory --errors
                   --agents-network --paths --output" ;;
      convert) words="--directed" ;;
      generate) words="--vertices --degree --seed" ;;
      components) words="--top --largest --split" ;;
    esac
    words+=" --help"
  fi
  if [[ -n $words ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
  else
    mapfile -t COMPREPLY < <(compgen -f -- "$current")
  fi
}
complete -o filenames -F _veq veq
