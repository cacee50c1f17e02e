n = (ARGV[0] || 900).to_i

def map_list(list)
  result = []
  list.each { |item| result << yield(item) }
  result
end

def filter_list(list)
  result = []
  list.each { |item| result << item if yield(item) }
  result
end

def fold(list, start)
  result = start
  list.each { |item| result = yield(result, item) }
  result
end

numbers = (1..1000).to_a
total = 0
1.upto(n) do |round|
  changed = map_list(numbers) { |x| x * round % 97 }
  chosen = filter_list(changed) { |x| x % 3 == 1 }
  total += fold(chosen, 0) { |sum, x| sum + x }
end
puts total
