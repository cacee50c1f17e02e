-- expect error 2:1: expected expression
::done::
