-- Names: letters, digits and underscores; words that are reserved elsewhere are ordinary here.
_ = 1
_x = 2
x1 = 3
X1 = 4
camelCase_2 = 5
__ = 6
print(_, _x, x1, X1, camelCase_2, __)  -- expect: 1	2	3	4	5	6

local repeat = "r"
local goto = "g"
until = "u"
print(repeat, goto, until)  -- expect: r	g	u
function repeat_until(goto) return goto end
print(repeat_until(1))  -- expect: 1
t = {repeat = 1, goto = 2, until = 3, continue = 4}
print(t.repeat + t.goto + t.until + t.continue)  -- expect: 10

-- Keywords are recognised exactly.
And = "And"
ends = "ends"
_end = "_end"
NIL = "NIL"
functional = "functional"
print(And, ends, _end, NIL, functional)  -- expect: And	ends	_end	NIL	functional

-- Keywords cannot be names, but any string can be a key.
k = {["end"] = 1, ["nil"] = 2, ["not a name"] = 3, [""] = 4}
print(k["end"], k["nil"], k["not a name"], k[""])  -- expect: 1	2	3	4

-- A name that nothing assigned is nil.
print(never_assigned, type(never_assigned))  -- expect: nil	nil

-- White space separates tokens anyhow; semicolons between statements are optional.
local a=1;local b=2;;;print(a+b);  -- expect: 3
a
=
4
print
(a)  -- expect: 4
if a==4then print(a)end  -- expect: 4
for i=1,2do b=b+i end print(b)  -- expect: 5
;;; print("end") ;  -- expect: end
