Creator "somebody"
graph [
  node [ id 0 label "a" graphics [ x 1.0 y 2.0 ] ]
  node [ id 1 label "b" graphics [ x 3.0 y 4.0 ] ]
  edge [ source 0 target 1 ]
]
