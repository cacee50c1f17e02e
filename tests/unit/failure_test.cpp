#include <gtest/gtest.h>
#include <tarvel/lua/lua_vm.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "lua/lua_vm_impl.h"
#include "lua/value/site_table.h"
#include "tests/unit/script_outcome.h"
#include "tests/unit/value_support.h"

// Failures as data: LuaResult::detail, and what says where it was.

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

}  // namespace
}  // namespace tarvel::lua
