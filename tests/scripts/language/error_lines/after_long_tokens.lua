-- Lines are counted through strings, comments and constructors.
text = "two \
lines and
three"
--[[ a comment
over

lines ]]
long = [[
x

]]
t = {


}
print(#text, #long)  -- expect: 20	4
x = #text --[[ one
two ]] + nil  -- expect error: operator '+' expects numbers
