a b
c
