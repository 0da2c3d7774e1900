graph [
  node [ id 0 label "1" ]
  node [ id 1 label "2" ]
  edge [ source 0 target 1 ]
]
