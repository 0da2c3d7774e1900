graph [
  node [ id 0 ]
  edge [ source 0 target 4 ]
]
