# What ppdc writes and nobody reads: numbers "translated" to themselves, nine tenths of the
# lines of other languages, and the size of the file with them.
/^\*[a-z][a-z](_[A-Z][A-Z])?\.[A-Za-z]+ [^:\/]*\/[-+.0-9]*: ""$/d
/^\*% End of /d
