-- Names: letters, digits and underscores; words that are reserved elsewhere are ordinary here.
_, _x, x1, X1, camelCase_2, __ = 1, 2, 3, 4, 5, 6
print(_, _x, x1, X1, camelCase_2, __)  -- expect: 1	2	3	4	5	6

local repeat, goto = "r", "g"
until = "u"
print(repeat, goto, until)  -- expect: r	g	u
t = {repeat = 1, goto = 2, until = 3, continue = 4}
print(t.repeat + t.goto + t.until + t.continue)  -- expect: 10

-- Keywords are recognised exactly.
And, ends, _end, NIL, functional = "And", "ends", "_end", "NIL", "functional"
print(And, ends, _end, NIL, functional)  -- expect: And	ends	_end	NIL	functional

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
