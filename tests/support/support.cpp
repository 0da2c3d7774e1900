// Gives the helper library, whose other parts may all be headers, something to compile.
