#compdef veq
# Completes the veq program's commands, options and files in zsh.
_veq() {
  local formats='xnet pajek list matrix-market gml graphml archive' answers='(table csv json)'
  local commands='(info walk convert generate components)'
  local -a reading=("--from[the format to read]:format:($formats)"
                    '--directed[take an edge list for a list of arcs]'
                    '--strict[refuse a file of which something is lost or mended]'
                    '--quiet[say nothing of what is odd in the file]'
                    '--notes[say all that is odd]')
  local -a writing=("--to[the format to write]:format:($formats csv)")
  local -a answering=("--format[how to answer]:format:$answers")
  local -a seeding=('--seed[choose the random numbers]:number:')
  local -a help=('--help[print help]')
  case $words[2] in
    info)
      _arguments $help $reading $answering '1: :' '2:network:_files' \
        '--raw[print the own description of the library, too]' \
        '--matrix[print the adjacency matrix, too]' ;;
    walk)
      _arguments $help $reading $writing $answering $seeding '1: :' '2:network:_files' \
        '--agents[how many agents walk]:number:' \
        '--steps[how many steps each takes]:number:' \
        '--until-reach[stop once this share was reached]:share:' \
        '--start[where agents start]:vertices or file:_files' \
        '--substream[take the numbers of this task]:number:' \
        '--choice[how to choose among edges]:choice:(published even weighted)' \
        '--restart[the probability of going back to the start]:share:' \
        '--top[how many vertices to list]:number:' \
        '--memory[how many visits each agent remembers]:number:' \
        '--errors[the probability of remembering a wrong vertex]:share:' \
        '--agents-network[the network that links the agents]:network:_files' \
        '--paths[write the path of every agent]:file:_files' \
        '--coverage[write how many vertices were reached by when]:file:_files' \
        '--output[write the network with its visits]:file:_files' \
        '--force[replace a property Visits]' ;;
    convert)
      _arguments $help $reading $writing '1: :' '2:network:_files' '3:output:_files' ;;
    generate)
      _arguments $help $writing $seeding '1: :' '2:model:(barabasi random)' '3:output:_files' \
        '--vertices[how many vertices]:number:' \
        '--degree[the mean degree]:number:' ;;
    components)
      _arguments $help $reading $writing $answering '1: :' '2:network:_files' \
        '--top[how many sizes to list]:number:' \
        '--largest[write the largest component]:file:_files' \
        '--split[write every component]:directory:_files -/' ;;
    help)
      _arguments '1: :' "2:command:$commands" '3:model:(barabasi random)' ;;
    *)
      _arguments $help '--version[print the version]' \
        '1:command:(info walk convert generate components help)' ;;
  esac
}
# Loaded by its name it is to complete at once; read by somebody it is only to be known.
if [[ ${funcstack[1]} == _veq ]]; then
  _veq "$@"
else
  compdef _veq veq
fi
