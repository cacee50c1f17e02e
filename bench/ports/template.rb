n = (ARGV[0] || 25000).to_i

PAGE = "Dear {name},\nyour order {order} of {count} {item} is on its way to {town}.\n" \
       "It arrives in {days} days, {name}. Yours, the {item} team\n".freeze
NAMES = %i[name order count item town days].freeze
PATTERNS = NAMES.to_h { |name| [name, /\{#{name}\}/] }.freeze

def fill(text, values)
  NAMES.each { |name| text = text.gsub(PATTERNS[name], values[name].to_s) }
  text
end

length = 0
last = ""
1.upto(n) do |i|
  last = fill(PAGE, { name: "Ann#{i % 10}", order: "A-#{i}", count: i % 7, item: "lamp", town: "Ulm", days: 3 })
  length += last.size
end
puts "#{length} #{last[0, 10]}"
