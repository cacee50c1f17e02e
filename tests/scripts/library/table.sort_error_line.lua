-- An error raised in the comparator has the comparator's own line; what cannot be called has the line of the sort.
function order(a, b)
  return a.key < b.key  -- expect error: attempt to index a number value
end
table.sort({{key = 1}, 2}, order)
