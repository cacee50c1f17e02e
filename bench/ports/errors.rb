n = (ARGV[0] || 60000).to_i

class Account
  attr_accessor :balance

  def initialize
    @balance = 0
  end
end

def checked(amount, limit)
  raise ArgumentError, "amount #{amount} above #{limit}" if amount > limit

  amount
end

def withdraw(account, amount)
  account.balance -= checked(amount, 50)
end

account = Account.new
failed = letters = 0
1.upto(n) do |i|
  withdraw(account, i % 101)
rescue ArgumentError => e
  failed += 1
  letters += e.message.size
end
puts "#{account.balance} #{failed} #{letters}"
