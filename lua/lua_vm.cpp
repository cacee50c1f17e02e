#include <tarvel/lua/lua_vm.h>

#include <exception>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "lua/frontend/syntax_tree.h"
#include "lua/lua_vm_impl.h"
#include "lua/stdlib/pattern.h"

namespace tarvel::lua {

using internal::ChunkReference;
using internal::ExitSignal;
using internal::HostStackScope;
using internal::MultiValue;
using internal::OwnedValue;
using internal::ProtectedRuntimeError;
using internal::RuntimeError;
using internal::Table;
using internal::ValueStack;

LuaVM::LuaVM() : impl_(std::make_unique<Impl>(*this)) { impl_->fillGlobals(); }

LuaVM::~LuaVM() = default;

void LuaVM::setGlobal(const std::string& name, const LuaValue& value) {
  const HostStackScope hostStack;
  impl_->setGlobalValue(name, impl_->publicToValue(value));
}

void LuaVM::bindFunction(const std::string& name, HostFunction function) {
  impl_->bindFunction(name, std::move(function));
}

LuaResult LuaVM::runScriptString(const std::string& source, const std::string& chunkName) {
  return impl_->run(source, chunkName);
}

// ---- The interpreter behind it ------------------------------------------------------------------

LuaVM::Impl::Impl(LuaVM& ownerVm)
    : owner(ownerVm),
      heap(heapOwner.get()),
      strings(heap),
      patterns(std::make_unique<internal::PatternCache>()) {}

void LuaVM::Impl::fillGlobals() {
  anyFunction = OwnedValue(makeNative("", {}));
  outOfMemoryText = OwnedValue(makeString(internal::exceptionText(std::bad_alloc())));
  bindDefaults();
  stringLibrarySlot = resolveGlobalSlot("string");
}

// The globals go from the last slot to the first.
LuaVM::Impl::~Impl() {
  while (!globals.empty()) {
    internal::clearSlot(globals.back());
    globals.pop_back();
  }
}

LuaVM::Impl::Value LuaVM::Impl::makeString(std::string_view bytes) {
  if (bytes.size() > 1) return Value(internal::StringObject::create(heap, bytes));
  OwnedValue& shared =
      bytes.empty() ? emptyString : oneByteStrings[static_cast<unsigned char>(bytes[0])];
  if (shared.get().isNil()) shared = OwnedValue(Value(strings.intern(bytes)));
  return retain(shared.get());
}

LuaVM::Impl::Value LuaVM::Impl::makeNative(std::string_view name,
                                           internal::NativeFunction function) {
  return Value(
      internal::FunctionObject::createNative(heap, strings.intern(name), std::move(function)));
}

namespace {

// With less of the host's stack than this, not even a short script can be read.
#if defined(TARVELLUA_CHECKED_HEAP) || !defined(__OPTIMIZE__)
constexpr std::size_t kLeastHostStack = std::size_t{48} << 10;  // bytes
#else
constexpr std::size_t kLeastHostStack = std::size_t{16} << 10;
#endif

// What a run leaves the interpreter with, however it ends: the stack as it was, nothing on it, and
// no exit that would be taken for one of a run around it.
class RunScope {
 public:
  RunScope(ValueStack& stack, bool& exitRequested)
      : stack_(stack), mark_(stack.mark()), exitRequested_(exitRequested) {
    stack_.enterThread();
  }
  ~RunScope() {
    stack_.unwindTo(mark_);
    exitRequested_ = false;
  }
  RunScope(const RunScope&) = delete;
  RunScope& operator=(const RunScope&) = delete;

 private:
  const HostStackScope hostStack_;
  ValueStack& stack_;
  ValueStack::Mark mark_;
  bool& exitRequested_;
};

}  // namespace

LuaResult LuaVM::Impl::run(const std::string& source, const std::string& chunkName) {
  LuaResult outOfMemory;
  try {
    outOfMemory.error = internal::exceptionText(std::bad_alloc());  // made while there is memory
    return tryRun(source, chunkName);
  } catch (const std::bad_alloc&) {
    return outOfMemory;
  }
}

// Throws std::bad_alloc when there is no memory to say what failed. What the run held is released
// before that is put into words.
LuaResult LuaVM::Impl::tryRun(const std::string& source, const std::string& chunkName) {
  std::optional<RunScope> scope(std::in_place, stack, exitRequested);
  try {
    if (internal::hostStackRoom() < kLeastHostStack) throw RuntimeError("stack overflow", 1, true);
    MultiValue results;
    {
      const ChunkReference chunk = parseScript(source, chunkName);
      results = runChunk(*chunk);
    }
    return makeSuccess(results);
  } catch (const ExitSignal& exit) {
    exitRequested = true;
    exitCode = exit.code;
    return makeSuccess(MultiValue(Value(static_cast<std::int64_t>(exit.code))));
  } catch (const ProtectedRuntimeError& error) {
    scope.reset();
    return makeFailure(error, chunkName);
  } catch (const std::exception& error) {
    scope.reset();
    return makeFailure(error, chunkName);
  }
}

LuaResult LuaVM::Impl::makeSuccess(const MultiValue& results) const {
  LuaResult result;
  if (results.size() == 1) {
    result.value = valueToPublic(results[0]);
  } else if (results.size() > 1) {
    const OwnedValue list(Value(Table::create(heap, static_cast<std::uint32_t>(results.size()))));
    std::int64_t key = 0;
    for (const Value& value : results.span()) list.get().table->setInteger(++key, retain(value));
    result.value = valueToPublic(list.get());
  }
  result.ok = true;
  result.exitRequested = exitRequested;
  result.exitCode = exitRequested ? exitCode : 0;
  return result;
}

namespace {

std::string located(const std::string& chunkName, unsigned line, std::string_view message) {
  return (chunkName + ":" + std::to_string(line) + ": ").append(message);
}

}  // namespace

LuaResult LuaVM::Impl::makeFailure(const ProtectedRuntimeError& error,
                                   const std::string& chunkName) const {
  LuaResult result;
  result.error = error.hasLocation ? located(chunkName, error.line, error.message) : error.message;
  return result;
}

LuaResult LuaVM::Impl::makeFailure(const std::exception& error,
                                   const std::string& chunkName) const {
  LuaResult result;
  const auto* const runtimeError = dynamic_cast<const RuntimeError*>(&error);
  const std::string_view message = internal::exceptionText(error);
  result.error = runtimeError != nullptr && runtimeError->hasLocation
                     ? located(chunkName, runtimeError->line, message)
                     : std::string(message);
  return result;
}

}  // namespace tarvel::lua
