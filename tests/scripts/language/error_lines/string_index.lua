-- A chain reports the line of its first token, whichever link fails.
s = "text"
print(s:sub(1, 2)  -- expect: te
)
n = 1 + (
  s  -- expect error: string indexing only supports library methods
    :sub(1)
    :upper()
)
