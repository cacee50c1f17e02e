-- Streams answer to strings only.
field = 1
x =
  io  -- expect error: userdata fields must be strings
    .stdout
    [field]
