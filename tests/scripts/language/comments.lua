-- Comments end at the line feed, long ones at the first pair of closing brackets.
print("a") -- a line comment -- with another inside
-- expect: a
--print("hidden")
---[[ three dashes make a line comment
print("b")  -- expect: b
--[[ a long comment ]] print("c")  -- expect: c
--[[ several
lines with "quotes", [brackets] and -- dashes
print("hidden")
]] print("d")
-- expect: d
--[==[ only a line comment
print("e")  -- expect: e
--[ [ also a line comment
print("f")  -- expect: f
--[[]]print("g")--[[]]
-- expect: g
print(1 --[[ inside ]] + --[[ an
expression ]] 2)  -- expect: 3
print( -- after a parenthesis
  "h", -- after a comma
  "i" --[[last]])
-- expect: h	i
print(7 --[[ minus? ]] - --[[ minus! ]] -1)  -- expect: 8
--[[ the first
closing pair wins ]] print("j") --]]
-- expect: j
t = { -- in a constructor
  1, --[[ one ]] 2; -- two
  --three
}
print(#t)  -- expect: 2
-- bytes above 126 are fine here: é, 日本, “quotes”
--	a tab after the dashes, and characters such as ^ & | ! ? @ $ \ `
print("k")  -- expect: k
-- a comment may end the text without a line feed
--