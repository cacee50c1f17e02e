#include <memory>
#include <string>
#include <utility>

#include "lua/lua_vm_impl.h"
#include "lua/stdlib/files/standard_streams.h"
#include "lua/stdlib/library.h"

// Everything that a script finds predefined, in the order in which the names take their global
// slots.

namespace tarvel::lua {

using internal::NativeCode;
using internal::NativeFunction;
using internal::OwnedValue;
using internal::Table;
using internal::TableKey;
using internal::Value;

void LuaVM::Impl::bindNativeGlobal(const std::string& name, NativeFunction function) {
  globals.set(name, makeNative(name, std::move(function)));
}

namespace {

// A name and a function in one of the forms of NativeCode.
struct Member {
  using ListFunction = internal::MultiValue (*)(LuaVM&, internal::ValueSpan, internal::Site);

  Member(const char* memberName, internal::LeafFunction function,
         internal::UnaryFunction shortForm = nullptr)
      : name(memberName), leaf(function), unary(shortForm) {}
  Member(const char* memberName, NativeCode::DirectCall function)
      : name(memberName), direct(function) {}
  Member(const char* memberName, ListFunction function) : name(memberName), list(function) {}

  Value make(LuaVM::Impl& interpreter) const {
    auto code = std::make_unique<NativeCode>(interpreter.heap, list);
    code->leaf = leaf;
    code->direct = direct;
    code->unary = unary;
    internal::StringObject* const interned = interpreter.strings.intern(name);
    return Value(
        internal::FunctionObject::createNative(interpreter.heap, interned, std::move(code)));
  }

  const char* name;
  internal::LeafFunction leaf = nullptr;
  NativeCode::DirectCall direct = nullptr;
  ListFunction list = nullptr;
  internal::UnaryFunction unary = nullptr;
};

// A library table under construction, which becomes a global when it is complete.
class Library {
 public:
  explicit Library(LuaVM::Impl& interpreter)
      : interpreter_(interpreter), table_(Value(Table::create(interpreter.heap))) {}

  Library& functions(std::initializer_list<Member> members) {
    for (const Member& member : members) {
      value(member.name, member.make(interpreter_));
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

// What is not granted is not made at all, so there is nothing that could hand it out.
void LuaVM::Impl::bindDefaults() {
  using namespace internal;
  const auto isGranted = [this](LuaReach part) {
    return (static_cast<std::uint32_t>(options.reach) & static_cast<std::uint32_t>(part)) != 0;
  };
  globals.set("_VERSION", makeString("Tarvel TarvelLua"));
  if (isGranted(LuaReach::Output)) bindNativeGlobal("print", basePrint);
  const Member baseFunctions[] = {
      {"tostring", baseToString}, {"tonumber", baseToNumber}, {"type", baseType, baseTypeOfOne},
      {"assert", baseAssert},     {"error", baseError},       {"pcall", basePcall},
      {"pairs", basePairs},       {"ipairs", baseIpairs},
  };
  for (const Member& member : baseFunctions) globals.set(member.name, member.make(*this));

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
      .functions({{"min", mathMin}, {"max", mathMax}, {"floor", mathFloor, mathFloorOfOne}})
      .storeAs("math");
  defineFileClasses();
  Library io(*this);
  if (isGranted(LuaReach::Files)) io.functions({{"open", ioOpen}});
  if (isGranted(LuaReach::Output)) {
    standard.output =
        OwnedValue(makeStandardStream(heap, *standard.streamClass, StandardStream::Output));
    io.functions({{"write", ioWrite}})
        .value("stderr", makeStandardStream(heap, *standard.streamClass, StandardStream::Error))
        .value("stdout", retain(standard.output.get()));
  }
  io.storeAs("io");
  Library os(*this);
  if (isGranted(LuaReach::Commands)) os.functions({{"execute", osExecute}});
  if (isGranted(LuaReach::Exit)) os.functions({{"exit", osExit}});
  os.storeAs("os");
}

}  // namespace tarvel::lua
