n = (ARGV[0] || 8).to_i

def flips_of(order)
  list = order.dup
  flips = 0
  first = list[0]
  while first != 1
    low = 0
    high = first - 1
    while low < high
      list[low], list[high] = list[high], list[low]
      low += 1
      high -= 1
    end
    flips += 1
    first = list[0]
  end
  flips
end

class Search
  attr_reader :most, :total

  def initialize(size)
    @order = (1..size).to_a
    @most = @total = 0
  end

  def visit(from)
    if from == @order.size
      flips = flips_of(@order)
      @total += flips
      @most = flips if flips > @most
      return
    end
    from.upto(@order.size - 1) do |i|
      @order[from], @order[i] = @order[i], @order[from]
      visit(from + 1)
      @order[from], @order[i] = @order[i], @order[from]
    end
  end
end

search = Search.new(n)
search.visit(0)
puts "#{search.most} #{search.total}"
