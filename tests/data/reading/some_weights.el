a b 2
b c
