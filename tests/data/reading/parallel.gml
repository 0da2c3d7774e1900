graph [
  multigraph 1
  node [ id 0 label "a" ]
  node [ id 1 label "b" ]
  edge [ source 0 target 1 ]
  edge [ source 0 target 1 ]
]
