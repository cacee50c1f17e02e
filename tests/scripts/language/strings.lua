-- String literals: quotes, escapes, raw line feeds, long brackets.
print("double", 'single', "it's", 'say "hi"')  -- expect: double	single	it's	say "hi"

-- The escapes.
print("[a\tb]", #"\n\r\t\0", "\\", "\"", '\'')  -- expect: [a	b]	4	\	"	'

-- Every other escaped byte stands for itself; there are no numeric or other escapes.
print("\q\a\b\f\v\z\x41\u{41}\%")  -- expect: qabfvzx41u{41}%
print(#"\65", "\65", #"\0065", "\123" == "123")  -- expect: 2	65	4	true

-- A line feed may be escaped or raw inside quotes; both are one byte.
print("one\
two")
-- expect: one
-- expect: two
print("three
four")
-- expect: three
-- expect: four

-- Long brackets take bytes as they are and keep the first line feed.
print([[a\n"b"'c']], #[[\0]])  -- expect: a\n"b"'c'	2
print([[
second line]])
-- expect:
-- expect: second line
print(#[[
x]], #[[
]])  -- expect: 2	1
print([[a]b]], [[ [x] ]], [[a[[b]])  -- expect: a]b	 [x] 	a[[b

-- Level-0 brackets end at the first "]]".
t = {["[k"] = "odd", k = "plain"}
print(t[ [[k]] ], t["[k"])  -- expect: plain	odd

-- Bytes above 126 pass through; lengths count bytes.
print("é", #"é", "日本", #"日本", #[[ü]])  -- expect: é	2	日本	6	2
print("--not a comment", '--[[ nor this ]]')  -- expect: --not a comment	--[[ nor this ]]
