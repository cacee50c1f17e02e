#include <gtest/gtest.h>
#include <tarvel/lua/lua_vm.h>

#include <algorithm>
#include <cstddef>
#include <sstream>
#include <string>

#include "tests/unit/script_outcome.h"

// The errors that end a run: their texts, and the line that they name, which scripts cannot ask
// for.

namespace tarvel::lua {
namespace {

struct ErrorCase {
  const char* source;
  const char* message;
};

// "c:1: " in front is written as "@", so that what has no location stands out.
template <std::size_t N>
void checkEach(LuaVM& vm, const ErrorCase (&cases)[N]) {
  for (const ErrorCase& c : cases) {
    std::string expected = c.message;
    if (expected[0] == '@') expected.replace(0, 1, "c:1: ");
    EXPECT_EQ("error " + expected, run(vm, c.source)) << c.source;
  }
}

// Whatever the arguments are, and without a location. A receiver counts, too.
TEST(ErrorMessages, CountsOfArgumentsComeFirst) {
  constexpr std::size_t kAnyCount = 99;
  const struct {
    const char* counts;
    std::size_t least;
    std::size_t most;
    const char* functions;
  } cases[] = {
      {"1 argument", 1, 1, "tostring type pairs ipairs math.floor os.execute file:close"},
      {"2 arguments", 2, 2, "string.gmatch string.rep"},
      {"3 arguments", 3, 3, "string.gsub"},
      {"between 0 and 1 arguments", 0, 1, "os.exit"},
      {"between 0 and 2 arguments", 0, 2, "error"},
      {"between 1 and 2 arguments", 1, 2,
       "tonumber io.open file:read table.remove table.concat table.sort"},
      {"between 1 and 3 arguments", 1, 3, "file:seek"},
      {"between 2 and 3 arguments", 2, 3, "string.sub string.match string.unpack"},
      {"between 2 and 4 arguments", 2, 4, "string.find"},
      {"at least 1 arguments", 1, kAnyCount,
       "assert pcall math.max math.min string.format io.write"},
      {"at least 2 arguments", 2, kAnyCount, "file:write stream:write"},
  };
  LuaVM vm;
  run(vm, "file = io.open('/dev/null') stream = io.stdout");
  for (const auto& c : cases) {
    std::istringstream functions(c.functions);
    for (std::string name; functions >> name;) {
      std::string call = name;
      std::replace(call.begin(), call.end(), ':', '.');
      const std::string message = "error " + name + " expects " + c.counts;
      for (std::size_t count = 0; count < (c.most == kAnyCount ? c.least : 9); ++count) {
        const std::string nils = count == 0 ? "" : "nil" + repeated(", nil", count - 1);
        const bool isRefused = run(vm, call + "(" + nils + ")") == message;
        EXPECT_EQ(count < c.least || count > c.most, isRefused) << name << " " << count;
      }
    }
  }
  EXPECT_EQ("error tostring expects 1 argument", run(vm, "tostring((function() end)())"));
}

TEST(ErrorMessages, LibraryFunctionsTellWhatTheyExpect) {
  const ErrorCase cases[] = {
      {"tonumber('1', '10')", "@tonumber expects a numeric argument"},
      {"pairs(nil)", "@pairs expects a table"},
      {"math.max(1, '2')", "@math.max expects a numeric argument"},
      {"os.execute(true)", "@os.execute expects a string argument"},
      {"os.exit('0')", "@os.exit expects a numeric argument"},
      {"string.find(12, 1, 'x')", "@string.find expects a string argument"},
      {"string.find('a', '(', '1')", "@string.find expects a numeric argument"},
      {"string.match('a', 5)", "@string.match expects a string argument"},
      {"string.match('a', 'a', '1')", "@string.match expects a numeric argument"},
      {"string.gmatch(1, 'a')", "@string.gmatch expects a string argument"},
      {"string.gsub('a', true, '')", "@string.gsub expects a string argument"},
      {"string.format(5)", "@string.format expects a string argument"},
      {"string.rep(5, 2)", "@string.rep expects a string argument"},
      {"string.rep('x', '3')", "@string.rep expects a numeric argument"},
      {"string.unpack(4, 'abcd')", "@string.unpack expects a string argument"},
      {"string.unpack('I4', 'abcd', '1')", "@string.unpack expects a numeric argument"},
      {"table.remove(nil)", "@table.remove expects a table"},
      {"table.remove({1}, '1')", "@table.remove expects a numeric argument"},
      {"table.concat(nil, ' ')", "@table.concat expects a table"},
      {"table.sort(nil)", "@table.sort expects a table"},
      {"table.sort({2, 1}, 5)", "@table.sort comparator must be a function"},
      {"table.sort({{}, 2}, function(a, b)\nreturn a.k < b.k end)",
       "c:2: attempt to index a number value"},
      {"io.open(1)", "@io.open expects a string argument"},
      {"io.open('x', 1)", "@io.open expects a string argument"},
      {"io.stdout:read()", "@file:read received the wrong userdata type"},
      {"f.write(1, 2)", "@file:write expects userdata"},
      {"f.seek('set')", "@file:seek expects userdata"},
      {"f:seek(1)", "@file:seek expects a string argument"},
      {"f:seek('set', 'x')", "@file:seek expects a numeric argument"},
      {"f.close('x')", "@file:close expects userdata"},
  };
  LuaVM vm;
  run(vm, "f = io.open('/dev/null')");
  checkEach(vm, cases);
}

TEST(ErrorMessages, NameTheLineThatFailed) {
  const ErrorCase cases[] = {
      // An operator has its own line.
      {"x = (1 + 2\n - 3)\n * (4\n / {}\n + 5)", "c:4: operator '/' expects numbers"},
      {"x = 1 +\n 2 *\n -\n 'x'", "c:3: unary '-' expects a number"},
      {"size = 1 +\n#missing", "c:2: length operator expects a string or table"},
      {"i = 0 while\ni\n< 3 do i = i + 1 if i == 2 then i = '2' end end",
       "c:3: ordered comparisons require matching numbers or strings"},
      // Reading, and a call, that of the first token of the whole chain; a key has its own.
      {"c = {s = {}}\nx = 0 +\nc.s\n.address\n.port", "c:3: attempt to index a nil value"},
      {"s = 'text' n = 1 + (\ns\n:sub(1)\n:upper())",
       "c:2: string indexing only supports library methods"},
      {"x =\nio\n.stdout\n[1]", "c:2: userdata fields must be strings"},
      {"t = {} x = t\n[\nnone.field\n]", "c:3: attempt to index a nil value"},
      {"rows = {} row = 1 +\nrows\n[rows]",
       "c:2: table index must be a number, string, or boolean"},
      {"x = 1 +\nio\n.missing(\n1\n)", "c:2: attempt to call a nil value"},
      {"if true then\nassert\n(1 == 2) end", "c:2: assertion failed!"},
      {"x = 'x' ..\nerror\n(\n)", "c:2: error"},
      // A statement, that of its first token.
      {"t = {}\nt\n[\nnil]\n= 2", "c:2: table index must be a number, string, or boolean"},
      {"first,\ntarget\n.field = 1,\n2", "@attempt to assign into a nil value"},
      {"a = {} function a.f() end\nfunction\na.f.g(x)\nend",
       "c:2: attempt to assign into a function value"},
      {"\nfor i =\n1,\n'10' do end", "c:2: numeric for loop expects numeric bounds"},
      {"\nfor k,\nv in\n{1, 2} do end", "c:2: generic for loop expects an iterator"},
      {"bad = {\n1,\n[bad] = 3,\n4}", "c:3: table keys must be numbers, strings, or booleans"},
      // Lines are counted through strings, comments and constructors.
      {"x = 'two \\\nlines\n' --[[ a\n\n]] y = [[\n\n]] t = {\n\n}\nz = #x --[[\n]] + nil",
       "c:11: operator '+' expects numbers"},
      // And they are kept through calls, loops and blocks.
      {"function inner(list)\nfor i, v in ipairs(list) do if v > 1 then\nreturn v\n+ nothing\n"
       "end end end\nfunction outer(list) while true do\nreturn 1 + inner(list) end end\n"
       "print((function() return outer({1, 2}) end)())",
       "c:4: operator '+' expects numbers"},
  };
  LuaVM vm;
  checkEach(vm, cases);
}

}  // namespace
}  // namespace tarvel::lua
