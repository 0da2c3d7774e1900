graph [
  directed 1
  node [ id 1 label "a" size 2 ]
  node [ id 2 label "b" size 3 ]
  node [ id 5 label "c" size 4 ]
  edge [ source 1 target 2 weight 0.5 kind "x" ]
  edge [ source 5 target 1 weight 2 kind "y" ]
]
