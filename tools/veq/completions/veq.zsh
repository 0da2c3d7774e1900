#compdef veq
# Completes the veq program's commands, options and files in zsh.
_veq() {
  local formats='xnet pajek list matrix-market gml graphml archive' answers='(table csv json)'
  local models='barabasi random gnp gnm barabasi-albert configuration watts-strogatz lattice geometric blocks rewired'
  local commands='(info check walk convert generate components page ensemble)'
  local -a reading=("--from[the format to read]:format:($formats)"
                    '--directed[take an edge list for a list of arcs]'
                    '--strict[refuse a file of which something is lost or mended]'
                    '--quiet[say nothing of what is odd in the file]'
                    '--notes[say all that is odd]')
  local -a writing=("--to[the format to write]:format:($formats csv)")
  local -a answering=("--format[how to answer]:format:$answers")
  local -a seeding=('--seed[choose the random numbers]:number:'
                    '--substream[take the numbers of this task]:number:')
  local -a showing=('--title[what to call it]:text:'
                    '--layout[where vertices are]:layout:(force given circle)'
                    '--columns[which properties can be looked at]:properties:'
                    '--color[what colours are by]:property:(degree visits)'
                    '--size[what sizes are by]:property:(constant degree strength visits)')
  local -a threading=('--threads[how many threads may work]:number:')
  local -a help=('--help[print help]')
  case $words[2] in
    info)
      _arguments $help $reading $answering '1: :' '2:network:_files' \
        '--all[sample nothing and leave nothing out]' \
        '--raw[print the own description of the library, too]' \
        '--matrix[print the adjacency matrix, too]' ;;
    check)
      _arguments $help $reading $answering '1: :' '2:network:_files' ;;
    walk)
      _arguments $help $threading $reading $writing $answering $seeding $showing '1: :' '2:network:_files' \
        '--agents[how many agents walk]:number:' \
        '--steps[how many steps each takes]:number:' \
        '--until-reach[stop once this share was reached]:share:' \
        '--start[where agents start]:vertices or file:_files' \
        '--choice[how to choose among edges]:choice:(published even weighted)' \
        '--restart[the probability of going back to the start]:share:' \
        '--top[how many vertices to list]:number:' \
        '--memory[how many visits each agent remembers]:number:' \
        '--errors[the probability of remembering a wrong vertex]:share:' \
        '--agents-network[the network that links the agents]:network:_files' \
        '--paths[write the path of every agent]:file:_files' \
        '--coverage[write how many vertices were reached by when]:file:_files' \
        '--page[write a page that walks again in a browser]:file:_files' \
        '--output[write the network with its visits]:file:_files' \
        '--force[replace a property Visits]' \
        '--walk-only[keep no more than walks read]' ;;
    convert)
      _arguments $help $reading $writing '1: :' '2:network:_files' '3:output:_files' \
        '--lossy[write also what loses something]' \
        '--number-names[call vertices without a name by their id or index]' \
        '--vertices[write the vertices beside the edges of a CSV file]:file:_files' ;;
    generate)
      _arguments $help $writing $seeding '1: :' "2:model:($models)" '3:output:_files' \
        '--vertices[how many vertices]:number:' \
        '--edges[how many edges]:number:' \
        '--degree[the mean degree]:number:' \
        '--degrees[a file of degrees]:file:_files' \
        '--simple[without loops and parallel edges]' \
        '--probability[the probability of an edge]:share:' \
        '--probabilities[those within and between blocks]:shares:' \
        '--links[how many links a new vertex makes]:number:' \
        '--neighbours[how many neighbours on each side]:number:' \
        '--sizes[the sizes of dimensions or blocks]:numbers:' \
        '--periodic[link the last to the first]' \
        '--radius[how far apart linked vertices may be]:number:' \
        '--dimensions[2 or 3]:number:(2 3)' \
        '--network[the network to rewire]:network:_files' \
        '--tries[how often two edges may exchange ends]:number:' \
        '--directed[draw for each ordered pair]' ;;
    components)
      _arguments $help $reading $writing $answering '1: :' '2:network:_files' \
        '--top[how many sizes to list]:number:' \
        '--largest[write the largest component]:file:_files' \
        '--split[write every component]:directory:_files -/' ;;
    page)
      _arguments $help $reading $showing '1: :' '2:network:_files' '3:output:_files' \
        '--svg[write a picture]:file:_files' ;;
    ensemble)
      _arguments $help '1: :' '2:study:_files' \
        '--engine[who runs it]:engine:(threads processes)' \
        '--workers[how many threads or processes]:number:' \
        '--checkpoint[keep results there, and go on from there]:directory:_files -/' \
        '--output[the table to write]:file:_files' \
        '--quiet[say nothing]' ;;
    help)
      _arguments '1: :' "2:command:$commands" "3:model:($models)" ;;
    *)
      _arguments $help $threading '--version[print the version]' \
        '1:command:(info check walk convert generate components page ensemble help)' ;;
  esac
}
# Loaded by its name it is to complete at once; read by somebody it is only to be known.
if [[ ${funcstack[1]} == _veq ]]; then
  _veq "$@"
else
  compdef _veq veq
fi
