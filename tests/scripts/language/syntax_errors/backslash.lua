-- expect error 2:1: unexpected character '\'
\n
