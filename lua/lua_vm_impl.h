#pragma once

#include <tarvel/lua/lua_vm.h>

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "lua/value/errors.h"
#include "lua/value/failure_landing.h"
#include "lua/value/function_handle.h"
#include "lua/value/globals.h"
#include "lua/value/heap.h"
#include "lua/value/multi_value.h"
#include "lua/value/pending_failure.h"
#include "lua/value/record_keys.h"
#include "lua/value/site_table.h"
#include "lua/value/string_pool.h"
#include "lua/value/table.h"
#include "lua/value/trace.h"
#include "lua/value/value.h"
#include "lua/value/value_stack.h"

// The interpreter's state, and the operations that each layer defines on it. This is the one header
// that a source file of any layer includes for its share; see docs/design.md.

namespace tarvel::lua {

namespace internal {
class ChunkReference;
class NativeClass;
class MemoryCharge;
class PatternCache;
struct ResolvedChunk;

// Objects that are always there.
struct StandardObjects {
  OwnedValue output;  // io.stdout as it was made, if at all; scripts may overwrite the field
  OwnedValue outOfMemoryText;           // the message, made while there is memory
  std::array<OwnedValue, 9> typeNames;  // by ValueKind, made when first asked for
  std::size_t stringLibrarySlot = 0;    // of the global `string`
  // Of open files and of streams. They belong to the heap.
  NativeClass* fileClass = nullptr;
  NativeClass* streamClass = nullptr;
};

// Keeps the interpreter while a function of the facade uses it: what runs there may destroy the
// host's LuaVM.
class InterpreterInUse {
 public:
  explicit InterpreterInUse(LuaVM::Impl& interpreter) noexcept;
  ~InterpreterInUse();
  InterpreterInUse(const InterpreterInUse&) = delete;
  InterpreterInUse& operator=(const InterpreterInUse&) = delete;

  LuaVM::Impl& interpreter() const noexcept { return interpreter_; }

 private:
  LuaVM::Impl& interpreter_;
};
}  // namespace internal

class LuaVM::Impl {
 public:
  using Site = internal::Site;
  using Value = internal::Value;

  Impl(LuaVM& ownerVm, const LuaOptions& vmOptions);
  // Completes a new interpreter. Not part of the constructor, so that the destructor releases what
  // there is when memory runs out halfway.
  void fillGlobals();
  ~Impl();
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;

  static Impl& of(LuaVM& vm) noexcept { return *vm.impl_; }

  // Gives back everything that handles of the host do not hold, files included. Destructors of what
  // the host's functions hold run in here.
  void end() noexcept;
  // The host's LuaVM is gone: ends and deletes the interpreter, at once or when the last use of it
  // has ended.
  void abandon() noexcept;
  bool isAbandoned() const noexcept { return owner == &self; }
  // For the runs that begin from now on; see LuaVM::setLimits.
  void setLimits(const LuaLimits& limits);
  LuaUsage usage() const noexcept;

  // ---- Facade (lua/) ----
  LuaResult run(const std::string& source, const std::string& chunkName);
  void bindFunction(const std::string& name, HostFunction function);
  // Borrow their argument; throw std::runtime_error for what cannot cross.
  LuaValue valueToPublic(const Value& value, internal::MemoryCharge& memory) const;
  // The copies count as memory as long as `memory` lives.
  std::vector<LuaValue> valuesToPublic(internal::ValueSpan values, internal::MemoryCharge& memory,
                                       Site site) const;
  Value publicToValue(const LuaValue& value);  // owned
  // Passes the line that `print` writes to `write`, piece by piece.
  void printValues(internal::ValueSpan values, Site site,
                   const std::function<void(std::string_view text)>& write);
  // Parses a chunk. Throws UnparsedError, a std::runtime_error "chunk:line:column: message".
  internal::ChunkReference readScript(const std::string& source, const std::string& chunkName,
                                      std::span<const std::string_view> parameters = {});
  // As readScript, and prepares the chunk for running.
  internal::ChunkReference parseScript(const std::string& source, const std::string& chunkName,
                                       std::span<const std::string_view> parameters = {});

  // The value of a global or, behind points, of a field of tables, borrowed; nil where there is
  // none.
  Value findByPath(std::string_view path);
  // Stores an owned value there, making the tables that are missing. Throws std::runtime_error
  // where a part of the path but the last is no table.
  void storeByPath(std::string_view path, Value owned);
  // A function of the host's, owned; messages show its full name.
  Value makeBound(std::string_view name, std::string fullName,
                  std::shared_ptr<bridge::Callable> function);
  // What a run or a call returned, as LuaResult::value has it.
  LuaValue resultsToPublic(internal::ValueSpan results) const;
  // Throws std::runtime_error when the interpreter has ended.
  void requireLife() const {
    if (ended_) [[unlikely]]
      failEnded();
  }

  // ---- Evaluator ----
  // Calls the function frame[0] with the `count` values behind it, all owned by their slots, and
  // returns all results as evaluateExpressionMulti does.
  Value callFrame(Value* frame, std::uint32_t count, Site site);
  // The same with any value in frame[0], for pcall: when the script fails, all that stands from
  // `frame` on is released, and the completion is a failed one.
  Value callProtected(Value* frame, std::uint32_t count, Site site);
  // Ends the node function that asked for a value where the call failed: in the innermost pcall, or
  // as an exception.
  [[noreturn]] void raisePending();
  // Fails in a node function that has nothing to release, in the same way. As failRuntime.
  [[noreturn]] void raiseAt(Site site, std::initializer_list<std::string_view> pieces);
  // Calls a function from native code. The arguments are borrowed.
  internal::MultiValue callHandle(internal::FunctionObject* function, internal::ValueSpan arguments,
                                  Site site);
  // Whether callee(first, second) gives a true first value: a comparator's call, without lists of
  // arguments and results. All three are borrowed. Under a LandingBarrier of the caller's.
  bool callPredicate(const Value& callee, const Value& first, const Value& second, Site site);
  // Runs a chunk's top level as a function without parameters.
  internal::MultiValue runChunk(internal::ResolvedChunk& chunk);
  // A chunk's top level as a function, owned.
  Value makeMain(internal::ResolvedChunk& chunk);

  // ---- Library ----
  void bindDefaults();
  void defineFileClasses();
  void bindNativeGlobal(const std::string& name, internal::NativeFunction function);

  // ---- Helpers of all layers ----
  Value makeString(std::string_view bytes) { return strings.make(bytes); }     // owned
  Value makeNative(std::string_view name, internal::NativeFunction function);  // owned

  // ---- State. The order matters: the heap goes last. ----
  // The same interpreter for the library's functions, which may go on after the host's LuaVM is
  // gone.
  LuaVM self;
  LuaVM* owner;  // for functions of the host: the host's LuaVM, or `self` once that is gone
  const LuaOptions options;
  internal::HeapOwner heapOwner;
  internal::Heap& heap;
  internal::StringPool strings;
  internal::SiteTable sites;
  internal::ValueStack stack;
  internal::Globals globals;
  internal::StandardObjects standard;
  std::unique_ptr<internal::PatternCache> patterns;
  internal::PendingFailure pendingFailure;
  internal::FailureLanding* landing = nullptr;  // the innermost pcall's, while nothing bars the way
  internal::RecordKeyCache records;
  // Of the host's types, by what tells these apart. They belong to the heap.
  std::unordered_map<const void*, internal::NativeClass*> hostClasses;
  internal::Trace trace;       // of an exception on its way through supervised calls
  std::size_t activeRuns = 0;  // of a supervised interpreter

 private:
  // callProtected before the failure is settled.
  Value callLanding(Value* frame, std::uint32_t count, Site site);
  [[noreturn]] static void failEnded();
  LuaResult tryRun(const std::string& source, const std::string& chunkName);
  LuaResult makeSuccess(internal::ValueSpan results) const;

  friend class internal::InterpreterInUse;
  std::size_t uses_ = 0;  // by functions of the facade that have not returned
  bool ended_ = false;
};

inline internal::InterpreterInUse::InterpreterInUse(LuaVM::Impl& interpreter) noexcept
    : interpreter_(interpreter) {
  ++interpreter_.uses_;
}

inline internal::InterpreterInUse::~InterpreterInUse() {
  if (--interpreter_.uses_ == 0 && interpreter_.isAbandoned()) delete &interpreter_;
}

}  // namespace tarvel::lua
