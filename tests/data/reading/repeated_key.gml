graph [
 year 1998
 node [ id 1 tag "a" tag "b" ]
 node [ id 2 ]
 edge [ source 1 target 2 ]
]
