n = (ARGV[0] || 120).to_i

SIZE = 64

def new_board
  Array.new(SIZE) { Array.new(SIZE, 0) }
end

def step(board, following)
  1.upto(SIZE - 2) do |y|
    above = board[y - 1]
    row = board[y]
    below = board[y + 1]
    target = following[y]
    1.upto(SIZE - 2) do |x|
      around = above[x - 1] + above[x] + above[x + 1] + row[x - 1] + row[x + 1] +
               below[x - 1] + below[x] + below[x + 1]
      target[x] = around == 3 || (around == 2 && row[x] == 1) ? 1 : 0
    end
  end
end

board = new_board
following = new_board
seed = 42
1.upto(SIZE - 2) do |y|
  1.upto(SIZE - 2) do |x|
    seed = seed * 16_807 % 2_147_483_647
    board[y][x] = seed / 1000 % 2
  end
end
n.times do
  step(board, following)
  board, following = following, board
end
checksum = 0
board.each { |row| row.each { |cell| checksum = (checksum * 2 + cell) % 1_000_003 } }
puts checksum
