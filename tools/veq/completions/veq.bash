# Completes the veq program's commands, options and files in bash.
_veq() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local command=${COMP_WORDS[1]} words=
  local reading="--from --directed --strict --quiet --notes"
  local showing="--title --layout --columns --color --size"
  COMPREPLY=()
  [[ $command == help ]] && command=
  case $previous in
    --agents | --steps | --until-reach | --seed | --substream | --restart | --top | --memory | --errors | \
      --edges | --degree | --probability | --probabilities | --links | --neighbours | --sizes | --radius | --dimensions | \
      --tries | --title | --columns | --workers | --threads) return ;;
    --vertices) [[ $command == generate ]] && return
      mapfile -t COMPREPLY < <(compgen -f -- "$current") && return ;;
    --split | --checkpoint) mapfile -t COMPREPLY < <(compgen -d -- "$current") && return ;;
    --start | --paths | --coverage | --output | --agents-network | --largest | --degrees | --network | --page | --svg)
      mapfile -t COMPREPLY < <(compgen -f -- "$current") && return ;;
    --from) words="xnet pajek list matrix-market gml graphml archive" ;;
    --to) words="xnet pajek list matrix-market gml graphml archive csv" ;;
    --format) words="table csv json" ;;
    --choice) words="published even weighted" ;;
    --layout) words="force given circle" ;;
    --color) words="degree visits" ;;
    --size) words="constant degree strength visits" ;;
    --engine) words="threads processes" ;;
  esac
  if [[ -n $words ]]; then
    :
  elif [[ $COMP_CWORD -eq 1 || ${COMP_WORDS[1]} == help && $COMP_CWORD -eq 2 ]]; then
    words="info check walk convert generate components page ensemble"
    [[ $COMP_CWORD -eq 1 ]] && words+=" help --help --version --threads"
  elif [[ $command == generate && $COMP_CWORD -eq 2 ]]; then
    words="barabasi random gnp gnm barabasi-albert configuration watts-strogatz lattice
            geometric blocks rewired --help"
  elif [[ $current == -* ]]; then
    case $command in
      info) words="$reading --all --raw --matrix --format" ;;
      check) words="$reading --format" ;;
      walk) words="$reading --agents --steps --until-reach --seed --substream --start --choice --restart --top --memory
                   --errors --agents-network --paths --coverage --page $showing --output --to --force --walk-only --format
                   --threads" ;;
      convert) words="$reading --to --lossy --number-names --vertices" ;;
      generate) words="--vertices --edges --degree --degrees --simple --probability --probabilities --links --neighbours
                       --sizes --periodic --radius --dimensions --network --tries --directed --seed --substream --to" ;;
      components) words="$reading --top --largest --split --to --format" ;;
      page) words="$reading --svg $showing" ;;
      ensemble) words="--engine --workers --checkpoint --output --quiet" ;;
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
