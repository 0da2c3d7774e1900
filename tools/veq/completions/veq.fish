# Completes the veq program's commands, options and files in fish.
function __veq_command
    set -l words (commandline -opc)
    test (count $words) -ge 2; and contains -- $words[2] $argv
end
function __veq_nothing_yet
    test (count (commandline -opc)) -eq 1
end
function __veq_second_word
    test (count (commandline -opc)) -eq 2; and __veq_command $argv
end

set -l formats 'xnet pajek list matrix-market gml graphml archive'
set -l answers 'table csv json'

complete -c veq -n __veq_nothing_yet -f -a info -d 'Say what a network is'
complete -c veq -n __veq_nothing_yet -f -a check -d 'Say what is odd in a file and which formats keep it'
complete -c veq -n __veq_nothing_yet -f -a walk -d 'Let agents walk at random over a network'
complete -c veq -n __veq_nothing_yet -f -a convert -d 'Write a network in another format'
complete -c veq -n __veq_nothing_yet -f -a generate -d 'Grow a model network'
complete -c veq -n __veq_nothing_yet -f -a components -d 'Find the connected components'
complete -c veq -n __veq_nothing_yet -f -a page -d 'Write a page that shows a network'
complete -c veq -n __veq_nothing_yet -f -a ensemble -d 'Run many walks and models of a study file'
complete -c veq -n __veq_nothing_yet -f -a help -d 'Teach a command by example'
complete -c veq -n __veq_nothing_yet -l version -d 'Print the version'
complete -c veq -n __veq_nothing_yet -l threads -x -d 'How many threads may work'
complete -c veq -l help -d 'Print help'
complete -c veq -n '__veq_second_word help' -f -a 'info check walk convert generate components page ensemble'
complete -c veq -n '__veq_second_word generate' -f -a 'barabasi random gnp gnm barabasi-albert configuration watts-strogatz lattice geometric blocks rewired'

complete -c veq -n '__veq_command info check walk convert components page' -l from -x -a $formats -d 'The format to read'
complete -c veq -n '__veq_command info check walk convert components page' -l directed -d 'Take an edge list for a list of arcs'
complete -c veq -n '__veq_command info check walk convert components page' -l strict -d 'Refuse a file of which something is lost or mended'
complete -c veq -n '__veq_command info check walk convert components page' -l quiet -d 'Say nothing of what is odd in the file'
complete -c veq -n '__veq_command info check walk convert components page' -l notes -d 'Say all that is odd'
complete -c veq -n '__veq_command walk convert generate components' -l to -x -a "$formats csv" -d 'The format to write'
complete -c veq -n '__veq_command info check walk components' -l format -x -a $answers -d 'How to answer'

complete -c veq -n '__veq_command info' -l all -d 'Sample nothing and leave nothing out'
complete -c veq -n '__veq_command info' -l raw -d 'Print the own description of the library, too'
complete -c veq -n '__veq_command info' -l matrix -d 'Print the adjacency matrix, too'

complete -c veq -n '__veq_command walk' -l agents -x -d 'How many agents walk'
complete -c veq -n '__veq_command walk' -l steps -x -d 'How many steps each takes'
complete -c veq -n '__veq_command walk' -l until-reach -x -d 'Stop once this share was reached'
complete -c veq -n '__veq_command walk generate' -l seed -x -d 'Choose the random numbers'
complete -c veq -n '__veq_command walk' -l start -r -d 'Where agents start'
complete -c veq -n '__veq_command walk generate' -l substream -x -d 'Take the numbers of this task'
complete -c veq -n '__veq_command walk' -l choice -x -a 'published even weighted' -d 'How to choose among edges'
complete -c veq -n '__veq_command walk' -l restart -x -d 'The probability of going back to the start'
complete -c veq -n '__veq_command walk' -l coverage -r -d 'Write how many vertices were reached by when'
complete -c veq -n '__veq_command walk components' -l top -x -d 'How many lines to list'
complete -c veq -n '__veq_command walk' -l memory -x -d 'How many visits each agent remembers'
complete -c veq -n '__veq_command walk' -l errors -x -d 'The probability of remembering a wrong vertex'
complete -c veq -n '__veq_command walk' -l agents-network -r -d 'The network that links the agents'
complete -c veq -n '__veq_command walk' -l paths -r -d 'Write the path of every agent'
complete -c veq -n '__veq_command walk' -l page -r -d 'Write a page that walks again in a browser'
complete -c veq -n '__veq_command walk' -l output -r -d 'Write the network with its visits'
complete -c veq -n '__veq_command walk' -l force -d 'Replace a property Visits'
complete -c veq -n '__veq_command walk' -l walk-only -d 'Keep no more than walks read'
complete -c veq -n '__veq_command walk' -l threads -x -d 'How many threads may work'

complete -c veq -n '__veq_command generate' -l vertices -x -d 'How many vertices'
complete -c veq -n '__veq_command generate' -l degree -x -d 'The mean degree'
complete -c veq -n '__veq_command generate' -l edges -x -d 'How many edges'
complete -c veq -n '__veq_command generate' -l degrees -r -d 'A file of degrees'
complete -c veq -n '__veq_command generate' -l simple -d 'Without loops and parallel edges'
complete -c veq -n '__veq_command generate' -l probability -x -d 'The probability of an edge'
complete -c veq -n '__veq_command generate' -l probabilities -x -d 'Those within and between blocks'
complete -c veq -n '__veq_command generate' -l links -x -d 'How many links a new vertex makes'
complete -c veq -n '__veq_command generate' -l neighbours -x -d 'How many neighbours on each side'
complete -c veq -n '__veq_command generate' -l sizes -x -d 'The sizes of dimensions or blocks'
complete -c veq -n '__veq_command generate' -l periodic -d 'Link the last to the first'
complete -c veq -n '__veq_command generate' -l radius -x -d 'How far apart linked vertices may be'
complete -c veq -n '__veq_command generate' -l dimensions -x -d '2 or 3'
complete -c veq -n '__veq_command generate' -l network -r -d 'The network to rewire'
complete -c veq -n '__veq_command generate' -l tries -x -d 'How often two edges may exchange ends'
complete -c veq -n '__veq_command generate' -l directed -d 'Draw for each ordered pair'

complete -c veq -n '__veq_command convert' -l lossy -d 'Write also what loses something'
complete -c veq -n '__veq_command convert' -l number-names -d 'Call vertices without a name by their id or index'
complete -c veq -n '__veq_command convert' -l vertices -r -d 'Write the vertices beside the edges of a CSV file'

complete -c veq -n '__veq_command components' -l largest -r -d 'Write the largest component'
complete -c veq -n '__veq_command components' -l split -x -a '(__fish_complete_directories)' -d 'Write every component'

complete -c veq -n '__veq_command page' -l svg -r -d 'Write a picture'
complete -c veq -n '__veq_command walk page' -l title -x -d 'What to call it'
complete -c veq -n '__veq_command walk page' -l layout -x -a 'force given circle' -d 'Where vertices are'
complete -c veq -n '__veq_command walk page' -l columns -x -d 'Which properties can be looked at'
complete -c veq -n '__veq_command walk page' -l color -x -a 'degree visits' -d 'What colours are by'
complete -c veq -n '__veq_command walk page' -l size -x -a 'constant degree strength visits' -d 'What sizes are by'

complete -c veq -n '__veq_command ensemble' -l engine -x -a 'threads processes' -d 'Who runs it'
complete -c veq -n '__veq_command ensemble' -l workers -x -d 'How many threads or processes'
complete -c veq -n '__veq_command ensemble' -l checkpoint -r -d 'Keep results there, and go on from there'
complete -c veq -n '__veq_command ensemble' -l output -r -d 'The table to write'
complete -c veq -n '__veq_command ensemble' -l quiet -d 'Say nothing'
