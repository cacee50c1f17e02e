#include <string>
#include <utility>

#include "lua/lua_vm_impl.h"
#include "lua/stdlib/files/standard_streams.h"
#include "lua/stdlib/library.h"

// Everything that a script finds predefined, in the order in which the names take their global
// slots.

namespace tarvel::lua {

using internal::NativeFunction;
using internal::OwnedValue;
using internal::Table;
using internal::TableKey;
using internal::Value;

void LuaVM::Impl::bindNativeGlobal(const std::string& name, NativeFunction function) {
  globals.set(name, makeNative(name, std::move(function)));
}

namespace {

struct Member {
  const char* name;
  internal::MultiValue (*function)(LuaVM&, internal::ValueSpan, internal::Site);
};

// A library table under construction, which becomes a global when it is complete.
class Library {
 public:
  explicit Library(LuaVM::Impl& interpreter)
      : interpreter_(interpreter), table_(Value(Table::create(interpreter.heap))) {}

  Library& functions(std::initializer_list<Member> members) {
    for (const Member& member : members) {
      value(member.name, interpreter_.makeNative(member.name, member.function));
    }
    return *this;
  }

  Library& value(const char* name, Value owned) {
    OwnedValue guard(owned);
    const OwnedValue key(Value(interpreter_.strings.intern(name)));
    tableSetByKey(*table_.get().table, TableKey::ofString(key.get().string), guard.take());
    return *this;
  }

  void storeAs(const char* globalName) { interpreter_.globals.set(globalName, table_.take()); }

 private:
  LuaVM::Impl& interpreter_;
  OwnedValue table_;
};

}  // namespace

void LuaVM::Impl::bindDefaults() {
  using namespace internal;
  globals.set("_VERSION", makeString("Tarvel TarvelLua"));
  // The one function that goes through the bridge for the host's functions, so what it prints is
  // public values.
  bindFunction("print", basePrint);
  constexpr Member kBaseFunctions[] = {
      {"tostring", baseToString}, {"tonumber", baseToNumber}, {"type", baseType},
      {"assert", baseAssert},     {"error", baseError},       {"pcall", basePcall},
      {"pairs", basePairs},       {"ipairs", baseIpairs},
  };
  for (const Member& member : kBaseFunctions) bindNativeGlobal(member.name, member.function);

  Library(*this)
      .functions({{"sub", stringSub},
                  {"find", stringFind},
                  {"match", stringMatch},
                  {"gmatch", stringGmatch},
                  {"gsub", stringGsub},
                  {"format", stringFormat},
                  {"rep", stringRep},
                  {"unpack", stringUnpack}})
      .storeAs("string");
  Library(*this)
      .functions({{"remove", tableRemove}, {"concat", tableConcat}, {"sort", tableSort}})
      .storeAs("table");
  Library(*this)
      .functions({{"min", mathMin}, {"max", mathMax}, {"floor", mathFloor}})
      .storeAs("math");
  defineFileClasses();
  standard.output = OwnedValue(makeStandardOutput(heap, *standard.streamClass));
  Library(*this)
      .functions({{"open", ioOpen}, {"write", ioWrite}})
      .value("stderr", makeStandardError(heap, *standard.streamClass))
      .value("stdout", retain(standard.output.get()))
      .storeAs("io");
  Library(*this).functions({{"execute", osExecute}, {"exit", osExit}}).storeAs("os");
}

}  // namespace tarvel::lua
