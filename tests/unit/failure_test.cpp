#include <gtest/gtest.h>
#include <tarvel/lua/lua_vm.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "lua/lua_vm_impl.h"
#include "lua/value/site_table.h"
#include "tests/unit/script_outcome.h"
#include "tests/unit/value_support.h"

// Failures as data, LuaResult::detail, and as texts with the line that scripts cannot ask for.

namespace tarvel::lua {
namespace {

using namespace std::string_literals;
using internal::StopSignal;

std::string describe(const LuaError& error) {
  const char* const kinds[] = {"Syntax", "Script", "Host", "Value",   "Stack",
                               "Memory", "Steps",  "Time", "Stopped", "Exit"};
  std::string text = kinds[static_cast<std::size_t>(error.kind)];
  text.append(" ").append(error.chunk).append(":").append(std::to_string(error.line));
  text.append(":").append(std::to_string(error.column)).append(" ").append(error.message);
  return text;
}

std::string failureOf(LuaVM& vm, const std::string& source, const std::string& chunkName = "c") {
  const LuaResult result = vm.runScriptString(source, chunkName);
  EXPECT_FALSE(result.ok || result.exitRequested || result.error.empty()) << source;
  return result.detail == nullptr ? "no detail" : describe(*result.detail);
}

void bindSignal(LuaVM& vm, const char* name, StopSignal::Reason reason) {
  LuaVM::Impl::of(vm).bindNativeGlobal(
      name, [reason](LuaVM&, internal::ValueSpan, internal::Site site) -> internal::MultiValue {
        throw StopSignal{reason, site};
      });
}

// A message and whether LuaResult::error has chunk and line in front of it.
TEST(Failure, HasAKindAMessageAndAPlace) {
  LuaVM vm;
  vm.bindFunction(
      "fail", [](LuaVM&, const Arguments&) -> LuaValue { throw std::logic_error("no such user"); });
  vm.bindFunction("exhaust", [](LuaVM&, const Arguments&) -> LuaValue { throw std::bad_alloc(); });
  vm.bindFunction("wrong", [](LuaVM&, const Arguments&) {
    return LuaValue(std::shared_ptr<LuaValue::Object>());
  });
  bindSignal(vm, "steps", StopSignal::Reason::Steps);
  bindSignal(vm, "time", StopSignal::Reason::Time);
  bindSignal(vm, "stop", StopSignal::Reason::Request);
  const struct {
    std::string source;
    std::string detail;
    std::string error;
  } cases[] = {
      {"x =\n  y.z", "Script c:2:3 attempt to index a nil value",
       "c:2: attempt to index a nil value"},
      {"x = 1 +\n 2 *\n  {}", "Script c:2:4 operator '*' expects numbers",
       "c:2: operator '*' expects numbers"},
      {"x = {\n 1, [{}] = 2}", "Script c:2:5 table keys must be numbers, strings, or booleans",
       "c:2: table keys must be numbers, strings, or booleans"},
      {"  local x error('a\\0b')", "Script c:1:11 a\0b"s, "c:1: a\0b"s},
      {" tostring()", "Script :0:0 tostring expects 1 argument", "tostring expects 1 argument"},
      {"return io.stdout", "Script :0:0 value cannot be bridged out of TarvelLua",
       "value cannot be bridged out of TarvelLua"},
      {"x = 1 +\n  )", "Syntax c:2:3 expected expression", "c:2:3: expected expression"},
      {"x = \0"s, "Syntax c:1:5 unexpected character '\0'"s, "c:1:5: unexpected character '\0'"s},
      {"x = 1\n fail()", "Host c:2:2 no such user", "no such user"},
      {" wrong()", "Host c:1:2 unsupported TarvelLua value", "unsupported TarvelLua value"},
      {"exhaust()", "Memory :0:0 not enough memory", "not enough memory"},
      {"x = string.rep('x', 9000000000000)", "Memory c:1:5 not enough memory",
       "c:1: not enough memory"},
      {"function f()\n return 1 + f() end f()", "Stack c:2:13 stack overflow",
       "c:2: stack overflow"},
      {"\n steps()", "Steps c:2:2 used up its steps", "c:2: used up its steps"},
      {"pcall(pcall,\ntime)", "Time c:1:1 used up its time", "c:1: used up its time"},
      {"table.sort({2, 1}, function()\n  pcall(stop) end)", "Stopped c:2:3 stopped by the host",
       "c:2: stopped by the host"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.detail, failureOf(vm, c.source)) << c.source;
    EXPECT_EQ("error " + c.error, run(vm, c.source)) << c.source;
  }
  EXPECT_EQ(nullptr, vm.runScriptString("return 1", "c").detail);
  EXPECT_EQ(nullptr, vm.runScriptString("os.exit(3)", "c").detail);
}

// The words in LuaResult::error keep the name of the chunk that was run.
TEST(Failure, NamesTheChunkThatFailed) {
  LuaVM vm;
  const std::string library =
      "function check(x)\n  if not x then error('missing') end end\n"
      "function once()\n  once = nil return {} + 1 end\n"
      "function sorted(t)\n  table.sort(t, function(a, b) return a < b end) end";
  run(vm, library, "lib.lua");
  EXPECT_EQ("Script lib.lua:2:17 missing", failureOf(vm, "x = 1\n\n\ncheck()", "main.lua"));
  const LuaResult result = vm.runScriptString("x = 1\n\n\ncheck()", "main.lua");
  EXPECT_EQ("main.lua:2: missing", result.error);
  EXPECT_EQ("lib.lua:2: missing", result.detail->toString());
  EXPECT_EQ("lib.lua:2:1: expected expression",
            vm.runScriptString("\n)", "lib.lua").detail->toString());
  EXPECT_EQ("Script lib.lua:6:41 ordered comparisons require matching numbers or strings",
            failureOf(vm, "sorted({1, {}})", "main.lua"));
  EXPECT_EQ("Script main.lua:1:8 missing", failureOf(vm, "return error('missing')", "main.lua"));
  // The only reference to the function, and to its chunk, is that of the call that fails.
  run(vm, "check, sorted = nil");
  EXPECT_EQ("Script lib.lua:4:24 operator '+' expects numbers",
            failureOf(vm, "once()", "main.lua"));
  // A run inside a function of the host has a failure of its own.
  vm.bindFunction("inner", [](LuaVM& caller, const Arguments&) {
    return LuaValue(failureOf(caller, "\nerror('a')", "inner.lua"));
  });
  EXPECT_EQ("Script c:3:1 Script inner.lua:2:1 a", failureOf(vm, "x = inner()\n\nerror(x)"));
}

TEST(Failure, IsAlsoWhatEndsACall) {
  LuaVM vm;
  const LuaError exit = vm.call<void>("os.exit", 3).error();
  EXPECT_EQ("Exit :0:0 ended by os.exit", describe(exit));
  EXPECT_EQ(3, exit.exitCode);
}

// ---- The table ----------------------------------------------------------------------------------

class Sites : public ::testing::Test {
 protected:
  // The range of a chunk that has a place on each of the first `count` lines.
  internal::SiteRange add(internal::SiteTable& table, std::string_view name,
                          std::uint32_t count) const {
    const std::string text(count - 1, '\n');
    return table.add(heap_.text(name), internal::Places(heap_.get(), text));
  }

  static std::string at(const internal::SiteTable& table, internal::Site site) {
    const internal::SiteTable::Entry entry = table.find(site);
    if (entry.chunkName.get().isNil()) return "-";
    return std::string(entry.chunkName.get().string->view()) + std::to_string(entry.place.line);
  }

  const internal::TestHeap heap_;
};

TEST_F(Sites, AreUsedAgainAfterTheLast) {
  internal::SiteTable table(heap_.get(), 12);
  internal::SiteRange a = add(table, "a", 2);
  const internal::SiteRange b = add(table, "b", 3);
  internal::SiteRange c = add(table, "c", 4);
  EXPECT_EQ(6u, c.first());
  a.clear();
  c.clear();
  const internal::SiteRange d = add(table, "d", 3);
  EXPECT_EQ(10u, d.first()) << "not soon";
  const internal::SiteRange e = add(table, "e", 3);
  EXPECT_EQ(6u, e.first()) << "the first gap is too small";
  const internal::SiteRange f = add(table, "f", 1);
  EXPECT_EQ(9u, f.first());
  EXPECT_THROW(add(table, "g", 3), std::bad_alloc);
  const internal::SiteRange h = add(table, "h", 2);
  std::string all;
  for (internal::Site site = 0; site < 14; ++site) all += at(table, site) + " ";
  EXPECT_EQ("- h1 h2 b1 b2 b3 e1 e2 e3 f1 d1 d2 d3 - ", all);
}

// ---- Texts and lines ----------------------------------------------------------------------------

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
