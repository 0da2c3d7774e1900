graph [
  node [ id 0 label "Köln" ]
  node [ id 1 label "b" ]
  edge [ source 0 target 1 ]
]
