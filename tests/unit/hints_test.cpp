#include "cli/hints.h"

#include <gtest/gtest.h>
#include <tarvel/lua/lua_vm.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "cli/hints/library_names.h"

namespace tarvel::lua {
namespace {

// The hint on the failure of a script, which has to fail.
std::string hintOn(const std::string& source) {
  LuaVM vm;
  const LuaResult result = vm.runScriptString(source, "c");
  EXPECT_FALSE(result.ok) << source;
  return result.detail ? hintFor(*result.detail, source) : "no detail";
}

struct HintCase {
  const char* source;
  const char* hint;
};

template <std::size_t N>
void checkEach(const HintCase (&cases)[N]) {
  for (const HintCase& c : cases) EXPECT_EQ(c.hint, hintOn(c.source)) << c.source;
}

TEST(HintsTest, WhatTheLibraryLacks) {
  checkEach({
      {"local t = {} table.insert(t, 1)", "table.insert does not exist here: t[#t + 1] = x"},
      {"print(unpack({1}))", "unpack does not exist here: t[1], t[2], t[3]"},
      {"local o = {s = 'a'} print(o.s:rep(2):length())", "string.length does not exist here: #s"},
      {"x = math.pi * 2", "math.pi does not exist here: 3.141592653589793"},
      {"x = 3\nif x < math.huge then end", "math.huge does not exist here: tonumber(\"inf\")"},
      {"x = math.floor(1 + 1, 2)",
       "in line 1 math.floor gets too many arguments: surplus ones "
       "are errors"},
      {"io.stdin:read()", "io.stdin does not exist here: io.open(\"/dev/stdin\")"},
      {"f = io.open('/dev/null')\nfor line in f:lines() do end",
       "'f' has no method 'lines': local line = file:read() while line do ... line = file:read() "
       "end"},
      {"coroutine.wrap(print)",
       "coroutine does not exist here: a function that keeps its state in locals does"},
      {"for k, v in next, {} do end", "next does not exist here: for key, value in pairs(t) do"},
      {"local insert, sort = table.insert, table.sort\ninsert({}, 1)",
       "table.insert does not exist here: t[#t + 1] = x"},
      {"x = math.sin(1)", "math.sin does not exist here: math has only floor, max, min"},
      {"string.fnd('a', 'b')", "string.fnd does not exist; did you mean 'string.find'?"},
      {"x = ('a'):fnd('b')", "string.fnd does not exist; did you mean 'find'?"},
      // What a script names in the same way is its own.
      {"x = table.insert()\nfunction table.insert() end", "'table.insert' is nil here"},
      {"local math = {}\nx = math.sqrt(2)", "'math.sqrt' is nil here"},
  });
}

TEST(HintsTest, NamesAreThoseOfTheLibrary) {
  LuaVM vm;
  vm.setGlobal("arg", LuaValue(std::string()));  // as the program does
  vm.setGlobal("file", LuaValue(std::make_shared<LuaValue::Object>()));
  for (const std::string_view name : internal::missedNames()) {
    const std::string path(name);
    std::string table = path.substr(0, path.find('.'));
    const LuaResult result = vm.runScriptString("return " + table + " and " + path, "c");
    EXPECT_EQ("nil", result.ok ? result.value.toString() : result.error) << path;
    EXPECT_FALSE(internal::isLibraryName(path)) << path;
  }
  for (const std::string library : {"", "string", "table", "math", "io", "os"}) {
    for (const std::string_view member : internal::libraryMembers(library)) {
      const std::string path = library + (library.empty() ? "" : ".") + std::string(member);
      const LuaResult result = vm.runScriptString("return type(" + path + ")", "c");
      EXPECT_NE("nil", result.value.toString()) << path;
      EXPECT_TRUE(internal::isLibraryName(path)) << path;
    }
  }
}

TEST(HintsTest, ValuesThatWereNil) {
  checkEach({
      {"foo()", "'foo' is nil: no global of this name was set"},
      {"pritn(1)", "'pritn' is nil: no global of this name was set; did you mean 'print'?"},
      {"function shop.sell() end", "'shop' is nil: no global of this name was set"},
      {"local f\nf()", "'f' is nil here"},
      {"t = {}\nt.list[1].x = 2", "'t' or 't.list' is nil here"},
      {"t = {}\nfunction t.list.first() end", "'t.list' is nil here"},
      {"t = {}\nfunction t.a.b.c() end", "'t' or 't.a' is nil here"},
      {"t = {}\nx = t.a['k'][1](2).b.c.d", ""},
      {"function f() end\nx = f(1).y", "'f(...)' returned nil"},
      {"t = {}\nt:run()", "'t' has no method 'run'"},
      {"t = {}\nfunction t.deposit() end\nt:depositt()",
       "'t' has no method 'depositt'; did you mean 'deposit'?"},
      {"later()\nlocal function later() end",
       "'later' is nil here: the local of this name begins only further down"},
      {"local f = io.open('missing/file')\nf:read()",
       "'f' is nil here: the second result of io.open tells why"},
      {"local t = {} function t:f() return self.x end t.f()",
       "'self' is nil here: methods are called with a colon, object:name()"},
  });
}

TEST(HintsTest, ValuesOfAWrongType) {
  checkEach({
      {"local n = 5\nn:foo()", "'n' is a number, and numbers have no methods"},
      {"t = {}\nt.x = 5\nt.x.y = 1", "'t.x' is a number here"},
      {"local it = ipairs({})\nit()", "an iterator is not called: it works in a for loop"},
      {"Point = {}\np = Point()", "there are no metatables, so no table can be called"},
      {"local x = 5\n(print)(x)",
       "the ( that line 2 begins with calls what stands before it: put a ; in between"},
      {"local s = 'abc'\nprint(s[1])",
       "'s' is a string, which has no elements: s:sub(i, i) is one letter"},
      {"local s = 'abc'\ns[1] = 'x'", "a string cannot be changed: make a new one with sub and .."},
      {"x = '10' + 1", "\"10\" is no number here; a string needs tonumber(s)"},
      {"x = 'n = ' + 1", "+ does not join strings: write a .. b"},
      {"t = {n = '1'}\nx = 1 + t.n * 2 - 3", "'t.n' is no number here; a string needs tonumber(s)"},
      {"a, b = '1', 2\nx = a - b * 2", "'a' is no number here; a string needs tonumber(s)"},
      {"a, b = '1', 2\nx = #a .. a - b",
       "'a' or 'b' is no number here; a string needs tonumber(s)"},
      {"a = 'x'\nx = a < 3", "'a' is no number here; a string needs tonumber(s)"},
      {"a = 3\nx = a .. 'y' < a", "'a' is no string here; a number needs tostring(n)"},
      {"a, b = 3, 'y'\nx = a <= b",
       "numbers and strings have no common order: write tonumber(s) or tostring(n)"},
      {"n = '3'\nfor i = #n + 1, n, -1 do end",
       "'n' is no number here; a string needs tonumber(s)"},
      {"for k in {} do end",
       "for needs pairs(t), ipairs(t) or string.gmatch(s, pattern), not a table or a function"},
      {"x = string.sub(5, 1)", "nothing is converted: a number needs tostring(n)"},
      {"t = {}\nt[{}] = 1",
       "keys are strings, booleans and whole numbers: not nil, fractions, tables or functions"},
      {"x = 1 / 0.0", "dividing by zero is an error for floats, too"},
      {"function f(n)\n  return f(n)\nend\nf()",
       "return f(x) nests like any other call: write a loop"},
      {"error({code = 7})", "an error is a text: put what is to be told into it"},
  });
}

TEST(HintsTest, FailuresWithoutAPlace) {
  checkEach({
      {"x = ('a'):rep(3, ',')",
       "in line 1 string.rep gets too many arguments: there is no separator"},
      {"x = tostring(('a'):gsub('a', 'b'))",
       "in line 1 tostring gets all values of the call that "
       "stands last; surplus ones are errors"},
      {"x = tostring()", ""},
      {"\nx = string.find('a', '(-?%d+)')",
       "in line 2 '-' repeats what precedes it: write %- for the character"},
      {"x = ('a'):find('+', 1, true)\ny = ('a'):match('[-+](%d')",
       "in line 2 a ( has no ): write %( for the character"},
      {"p = '*'\nx = ('a'):match(p)",
       "in a pattern - * + ? repeat what precedes them, and ( ) [ ] group: write %- and so on for "
       "the characters"},
      {"x = ('a'):match('[+-*]')",
       "in a set - makes a range, also behind %: put it first or last for the character"},
      {"print(io.stdout)",
       "print and return take no files, no iterators and no tables that contain themselves"},
  });
}

TEST(HintsTest, WhatTheGrammarLacks) {
  const char* const noVarargs =
      "there are no variable arguments: pass a table; those of the script are in arg[1], arg[2]";
  const HintCase cases[] = {
      {"print 'x'", "a call needs parentheses: print(\"x\")"},
      {"local x = f {1,\n2}\ny = 1", "a call needs parentheses: f({...})"},
      {"if s:find 'x' then end", "a call needs parentheses: find(\"x\")"},
      {"for k in pairs{1} do end", "a call needs parentheses: pairs({...})"},
      {"x = 2 ^ 3", "there is no operator ^: write x * x"},
      {"x = 7 // 2", "there is no operator //: write math.floor(x / y)"},
      {"x = 1\n// note", "comments begin with --"},
      {"x = 7 & 2", "there are no bitwise operators"},
      {"if x != 2 then end", "there is no operator !=: write ~="},
      {"if x && y then end", "there is no operator &&: write and"},
      {"x ..= 'a'", "there is no operator ..=: write x = x .. y"},
      {"x++", "there is no operator ++: write x = x + 1"},
      {"x--\ny = 1", "-- begins a comment: write x = x - 1"},
      {"goto done", "there is no goto: turn the condition round, or return from a function"},
      {"while x do continue end", "there is no continue: turn the condition round"},
      {"::done::", "there are no labels and no goto"},
      {"repeat\n  f()\nuntil x", "there is no repeat: while true do ... if x then break end end"},
      {"x = 1 do x = 2 end", "there are no do blocks: if true then ... end"},
      {"function f(a, ...) end", noVarargs},
      {"local x <const> = 5", "locals have no <const>: leave it out"},
      {"x = [=[ a ]=]", "there are no long brackets with =: write [[text]]"},
      {"--[==[ a\n  b ]==]", "--[=[ begins a comment of one line: write --[[ ... ]]"},
      {"x = 1e5", "numbers have no exponent: write 1000 or tonumber(\"1e3\")"},
      {"x = .5", "numbers begin with a digit: write 0.5"},
      {"x = 5.", "numbers do not end with the point: write 5.0"},
      {"x = 0xA.8", "hexadecimal numbers have no fraction"},
      {"#!/bin/lua\nx = 1", "a first line #!... is not skipped: leave it out"},
      {"print(\xE2\x80\x9Chi\xE2\x80\x9D)", "quotes are \" or '"},
      {"local x = 5 var y = 2", "variables are declared with local"},
      {"x = 'it's'",
       "a string may go over several lines, so the missing quote may be that of an earlier one"},
  };
  checkEach(cases);
}

// Where the cause may be another one, nothing is said.
TEST(HintsTest, NothingWhereItIsNotSure) {
  for (const char* const source : {
           "x = = 1",
           "if x {\ny = 1 }",
           "while (x) { y() }",
           "function f() { x = 1 }",
           "x = do",
           "x = (1",
           "x == 1",
           "--[=[ a ]=]\nx = = 1",
           "x = {} x.y-- note\nx = 2",
           "x = t[1].",
           "x = a ? b : c",
           "else",
           "x = nil + 1",
           "x = {} + 1",
           "x = #5",
           "error('attempt to call a nil value')",
           "error('string.rep expects 2 arguments')",
           "local e = error\ne('operator \\'+\\' expects numbers')",
           "foo.x, a = 1, 2",
           "assert(nil, 'division by zero')",
           "function f(n) return 1 + f(n) end f()",
       }) {
    EXPECT_EQ("", hintOn(source)) << source;
  }
}

// Places that no failure of this text has: the text and the error do not belong together.
TEST(HintsTest, EveryPlaceIsSafe) {
  const std::string source =
      "local t = {f(1), [2] = 'x'} function f(n) t.a:b(function() end)(#t - -1)\n)]}([{'";
  const char* const messages[] = {
      "attempt to call a nil value",
      "attempt to index a number value",
      "attempt to assign into a ",
      "operator '+' expects numbers",
      "ordered comparisons require",
      "unary '-' expects a number",
      "length operator expects a",
      "numeric for loop expects numeric bounds",
      "generic for loop expects an iterator",
      "string indexing only supports library methods",
      "math.floor expects a numeric argument",
      "expected function call",
      "expected expression",
      "unexpected character",
  };
  LuaError error;
  for (const LuaError::Kind kind : {LuaError::Kind::Script, LuaError::Kind::Syntax}) {
    for (const char* const message : messages) {
      for (std::size_t length = 0; length <= source.size(); ++length) {
        for (std::uint32_t column = 1; column <= length + 2; ++column) {
          error.kind = kind;
          error.message = message;
          error.line = column % 7 == 0 ? 2 : 1;
          error.column = column;
          EXPECT_EQ(std::string::npos, hintFor(error, source.substr(0, length)).find('\n'));
        }
      }
    }
  }
}

}  // namespace
}  // namespace tarvel::lua
