n = (ARGV[0] || 10).to_i

def build(depth)
  return [nil, nil] if depth.zero?

  [build(depth - 1), build(depth - 1)]
end

def count_nodes(tree)
  return 1 + count_nodes(tree[0]) + count_nodes(tree[1]) if tree[0]

  1
end

total = 0
n.times { total += count_nodes(build(15)) }
puts total
