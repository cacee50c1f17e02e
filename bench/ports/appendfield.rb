n = (ARGV[0] || 120).to_i

class Page
  attr_accessor :title, :text

  def initialize(title)
    @title = title
    @text = +""
  end
end

length = 0
letters = %w[a b c]
n.times do
  page = Page.new("page")
  columns = [+"", +""]
  1.upto(2500) do |i|
    page.text << "<#{i % 10}>"
    columns[i % 2] << letters[i % 3]
  end
  length += page.text.size + columns[0].size * 2 + columns[1].size
end
puts length
