n = (ARGV[0] || 30000).to_i

REGIONS = %w[north south east west].freeze
Order = Struct.new(:id, :region, :amount, :paid)

def unpaid_above(orders, amount)
  orders.select { |order| !order.paid && order.amount > amount }
end

seed = 42
orders = (1..n).map do |i|
  seed = seed * 16_807 % 2_147_483_647
  Order.new(i, REGIONS[seed % 4], seed % 500, seed % 3 == 0)
end

kept = 0
30.times do
  unpaid_above(orders, 450).each do |order|
    order.amount -= 30
    order.paid = order.amount < 430
    kept += 1
  end
  orders.each { |order| order.amount += 1 }
end

totals = Hash.new(0)
orders.each { |order| totals[order.region] += order.amount }
puts "#{kept} #{totals.values_at(*REGIONS).join(' ')}"
