1 2 0.5 red
2 3 1.5 blue
