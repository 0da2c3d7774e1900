graph [
  node [ id 0 label "K&#246;ln &amp; &quot;Bonn&quot;" ]
  node [ id 1 label "Z&uuml;rich" ]
  edge [ source 0 target 1 ]
]
