#include <tarvel/lua/lua_vm.h>

#include <memory>
#include <string>
#include <string_view>

#include "rows.h"

namespace lua = tarvel::lua;

template <>
inline constexpr auto lua::luaRecord<embedding::Record> =
    lua::record(lua::field("x", &embedding::Record::x), lua::field("y", &embedding::Record::y),
                lua::field("z", &embedding::Record::z));

namespace embedding {

namespace {

constexpr const char* kScript = R"(
function nothing() end
function add(a, b) return a + b end
function move(r) r.x = r.y return r end
function numbers(n) for i = 1, n do addNumbers(i, 2) end end
local text = "abcdefghijklmnopqrstuvwxyz0123456789"
function texts(n) for i = 1, n do passText(text) end end
)";

Engine makeTarvelLua() {
  auto vm = std::make_shared<lua::LuaVM>();
  vm->bind("addNumbers", [](double a, double b) { return a + b; });
  vm->bind("passText", [](std::string_view text) { return text; });
  vm->call<void>(vm->load(kScript, "rows").value()).value();
  const auto get = [&vm](const char* name) {
    return vm->getGlobal<lua::LuaFunction>(name).value();
  };
  Engine engine;
  engine.name = "TarvelLua";
  engine.rows[kNothing] = [vm, f = get("nothing")](long n) {
    for (long i = 0; i < n; ++i) vm->call<void>(f).value();
  };
  engine.rows[kAdd] = [vm, f = get("add")](long n) {
    double sum = 0;
    for (long i = 0; i < n; ++i) sum += vm->call<double>(f, sum, 2.5).value();
  };
  engine.rows[kAddByName] = [vm](long n) {
    double sum = 0;
    for (long i = 0; i < n; ++i) sum += vm->call<double>("add", sum, 2.5).value();
  };
  engine.rows[kRecord] = [vm, f = get("move")](long n) {
    Record record;
    for (long i = 0; i < n; ++i) record = vm->call<Record>(f, record).value();
  };
  engine.rows[kHostNumbers] = [vm, f = get("numbers")](long n) { vm->call<void>(f, n).value(); };
  engine.rows[kHostText] = [vm, f = get("texts")](long n) { vm->call<void>(f, n).value(); };
  const std::string text = longScript("local function f", "  a = a + 1", "end");
  engine.rows[kPrepared] = [vm, f = vm->load(text, "long").value()](long n) {
    for (long i = 0; i < n; ++i) vm->call<int>(f).value();
  };
  engine.end = [vm]() mutable { vm.reset(); };
  return engine;
}

const Registration registration(makeTarvelLua);

}  // namespace

}  // namespace embedding
