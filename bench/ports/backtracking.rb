n = (ARGV[0] || 60).to_i

SIZE = 4
BOX_OF = [[0, 0, 1, 1], [0, 0, 1, 1], [2, 2, 3, 3], [2, 2, 3, 3]].freeze

class Search
  attr_reader :steps

  def initialize
    @rows = new_flags
    @columns = new_flags
    @boxes = new_flags
    @steps = 0
  end

  def new_flags
    Array.new(SIZE) { Array.new(SIZE, false) }
  end

  def fill(row, column)
    if column == SIZE
      row += 1
      column = 0
      return 1 if row == SIZE
    end
    found = 0
    in_row = @rows[row]
    in_column = @columns[column]
    in_box = @boxes[BOX_OF[row][column]]
    SIZE.times do |symbol|
      @steps += 1
      next if in_row[symbol] || in_column[symbol] || in_box[symbol]

      in_row[symbol] = in_column[symbol] = in_box[symbol] = true
      found += fill(row, column + 1)
      in_row[symbol] = in_column[symbol] = in_box[symbol] = false
    end
    found
  end
end

search = Search.new
found = 0
n.times { found += search.fill(0, 0) }
puts "#{found} #{search.steps}"
