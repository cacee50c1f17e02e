-- string.match(s, pattern [, init]): the captures, or the whole match where there are no groups.
print(string.match("abc", "b"), string.match("abc", "x"))  -- expect: b	nil
print(string.match("  x", "%s*(%a)"))  -- expect: x
print(string.match("2024-05-17", "(%d+)%-(%d+)%-(%d+)"))  -- expect: 2024	05	17
print(string.match("key = value", "^(%w+)%s*=%s*(%w+)$"))  -- expect: key	value
print(("abc"):match("(a)(b)(c)"))  -- expect: a	b	c
print(string.match("a-b", "a%-b"), "[" .. string.match("", "") .. "]")  -- expect: a-b	[]

-- Repetitions: greedy, and `-` the lazy one.
print("[" .. string.match("aaa", "a-") .. "]", string.match("aaa", "^a-$"))  -- expect: []	aaa
print(string.match("<a><b>", "<.->"), string.match("<a><b>", "<.+>"))  -- expect: <a>	<a><b>
print(string.match("aaab", "a*"), string.match("aaab", "a+b"), string.match("ab", "a?a?b"))
-- expect: aaa	aaab	ab
print(string.match("ababx", "(ab)+x"), string.match("ab", "((a)(b))"))  -- expect: ab	ab	a	b

-- The classes know ASCII only, and %w takes the underscore.
print(string.match("1_aä", "%w+"), string.match("_", "%a"))  -- expect: 1_a	nil
print(string.match("a1 \t", "%D+"), string.match("12a", "%A+"))  -- expect: a	12
print(#string.match("x \t\n\r.", "%s+"), string.match("a b", "%S%s%S"))  -- expect: 4	a b
print(string.match("a_-b", "%W"), string.match("a1", "%d%D"))  -- expect: -	nil

-- There are no other classes: the letter or digit stands for itself.
print(string.match("xlup", "%l%u%p"), string.match("A", "%u"))  -- expect: lup	nil
print(string.match("bxy(f)", "%bxy"), string.match("a1", "(a)%1"))  -- expect: bxy	a
print(string.match("aa", "(a)%1"))  -- expect: nil

-- Sets.
print(string.match("hello", "[aeiou]"), string.match("hello", "[^h]+"))  -- expect: e	ello
print(string.match("x-9", "[a-c%d]"), string.match("a-b", "[-x]"))  -- expect: 9	-
print(string.match("3", "[%d]"), string.match("_", "[%w]"), string.match("a b", "[%s]b"))
-- expect: 3	_	 b
print(string.match("^", "[a^]"), string.match("a^", "[^a]"))  -- expect: ^	^
print(string.match("a.b", "[%.]"), string.match("%", "[%%]"), string.match("*", "[*+]"))
-- expect: .	%	*
print(string.match("\\", "[\\]"), string.match("a[", "[[]"))  -- expect: \	[

-- %A and %D are no classes in a set, and %S and %W bring a `^` that is a byte of the set unless it
-- comes first.
print(string.match("A", "[%A]"), string.match("1", "[%A]"), string.match("xD", "[%D]"))
-- expect: A	nil	D
print(string.match("a ", "[x%S]"), string.match("^", "[x%S]"))  -- expect:  	^
print(string.match("- a", "[x%W]"), string.match("-^", "[x%W]"))  -- expect: a	^
print(string.match(" x", "[%S]"), string.match("a-", "[%W]"))  -- expect: x	-

-- The first closing bracket ends a set, also directly at the start; one behind a % does not.
print(string.match("a", "[]"), string.match("a", "[^]"))  -- expect: nil	a
print(string.match("]", "[]]"), string.match("a]", "[^]]"))  -- expect: nil	a]
print(string.match("]", "[%]]"), string.match("a]", "[a%]]"))  -- expect: nil	a]

-- A set that nothing closes is a bracket; a % at the end is itself.
print(string.match("a[b", "a[b"), string.match("a[^", "[^"), string.match("1%", "%d%"))
-- expect: a[b	nil	1%

-- Lookaheads come through, because they are built of bytes that are copied.
print(string.match("ab ac", "a(?=c)."), string.match("ab ac", "(?:ab) (a)"))  -- expect: ac	a

-- A group in a repetition keeps its last round; one that takes no part is empty.
print(string.match("abc", "(%w)*"), string.match("ac", "a(b)?c") == "")  -- expect: c	true

-- The position to start from, as in string.find.
print(string.match("abc abd", "ab.", 2), string.match("abc", "^b.", 2))  -- expect: abd	bc
print(string.match("abc", "%w", -1), string.match("abc", "%w", 0))  -- expect: a	a
print(string.match("abc", "%w", nil), string.match("abc", "%w", 2.5))  -- expect: a	b
print(string.match("abc", "", 5), string.match("abc", "c?", 4) == "")  -- expect: nil	true

-- A long subject is matched, or refused with an error, in any case survived.
local long = string.rep("a", 1000000)
function lengthOrError(subject, pattern)
  local ok, text = pcall(string.match, subject, pattern)
  if not ok then return string.find(text, "memory") ~= nil end
  return #text == #subject
end
print(lengthOrError(long .. "b", ".*b"))  -- expect: true
print(lengthOrError(long, "[%w]+$"))  -- expect: true
print(lengthOrError(long, "((a))*"))  -- expect: true
print(lengthOrError(long, "^(a?)+$"))  -- expect: true
function noneOrError(subject, pattern)
  local ok, text = pcall(string.match, subject, pattern)
  return not ok and string.find(text, "memory") ~= nil or text == nil
end
print(noneOrError(long, ".*b"), noneOrError(long, "(.-)x"))  -- expect: true	true
print(noneOrError(long .. "!", "[%w]+$"), noneOrError(long .. "!", "(%w+)="))  -- expect: true	true

-- The same for a long pattern.
local ok = pcall(string.match, "a", string.rep("(", 100000))
print(ok)  -- expect: false
print(string.match("a", string.rep("a?", 1000) .. "$"))  -- expect: a
print(#string.match(long, string.rep("a", 2000) .. "%w"))  -- expect: 2001

print(pcall(string.match, "a"))  -- expect: false	string.match expects between 2 and 3 arguments
print(pcall(string.match, "a", "a", 1, true))
-- expect: false	string.match expects between 2 and 3 arguments
print(pcall(string.match, {}, "a"))  -- expect: false	string.match expects a string argument
print(pcall(string.match, "a", 5))  -- expect: false	string.match expects a string argument
print(pcall(string.match, "a", "a", "1"))  -- expect: false	string.match expects a numeric argument
print(pcall(string.match, "a", "(a"))
-- expect: false	Mismatched '(' and ')' in regular expression

function parse(text)
  return string.match(text, "a", text)  -- expect error: string.match expects a numeric argument
end
parse("a")
