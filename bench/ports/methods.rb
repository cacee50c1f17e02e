n = (ARGV[0] || 1000000).to_i

class Plain
  def initialize
    @total = 0
  end

  def add(amount)
    @total = @total + amount
  end

  def read
    return @total
  end
end

class Wrapped
  def initialize(limit)
    @total = 0
    @limit = limit
  end

  def add(amount)
    total = @total + amount
    total -= @limit if total >= @limit
    @total = total
  end

  def read
    return @total
  end
end

plain = Plain.new
wrapped = Wrapped.new(997)
sum = 0
n.times do
  plain.add(1)
  wrapped.add(7)
  sum += (plain.read + wrapped.read) % 3
end
puts "#{plain.read} #{wrapped.read} #{sum}"
