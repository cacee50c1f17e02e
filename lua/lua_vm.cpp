#include <tarvel/lua/lua_vm.h>

#include <exception>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "lua/evaluator/trace.h"
#include "lua/frontend/syntax_tree.h"
#include "lua/lua_vm_impl.h"
#include "lua/stdlib/patterns/searcher.h"
#include "lua/value/host_stack.h"

namespace tarvel::lua {

using internal::ChunkReference;
using internal::ExitRequest;
using internal::ExitSignal;
using internal::HostStackScope;
using internal::InterpreterInUse;
using internal::MultiValue;
using internal::OwnedValue;
using internal::ProtectedRuntimeError;
using internal::RuntimeError;
using internal::Table;
using internal::ValueStack;

LuaVM::LuaVM() : LuaVM(LuaOptions()) {}

LuaVM::LuaVM(const LuaOptions& options) {
  auto impl = std::make_unique<Impl>(*this, options);
  impl_ = impl.get();
  impl->fillGlobals();
  impl->setLimits(options.limits);
  impl.release();
}

LuaVM::LuaVM(Impl* impl) noexcept : impl_(impl) {}

LuaVM::~LuaVM() {
  if (this != &impl_->self) impl_->abandon();
}

void LuaVM::setGlobal(const std::string& name, const LuaValue& value) {
  const InterpreterInUse use(*impl_);
  const HostStackScope hostStack;
  impl_->globals.set(name, impl_->publicToValue(value));
}

void LuaVM::bindFunction(const std::string& name, HostFunction function) {
  const InterpreterInUse use(*impl_);
  impl_->bindFunction(name, std::move(function));
}

LuaResult LuaVM::runScriptString(const std::string& source, const std::string& chunkName) {
  const InterpreterInUse use(*impl_);
  return impl_->run(source, chunkName);
}

void LuaVM::setLimits(const LuaLimits& limits) { impl_->setLimits(limits); }

LuaUsage LuaVM::usage() const noexcept { return impl_->usage(); }

// ---- The interpreter behind it ------------------------------------------------------------------

internal::InterpreterInUse::InterpreterInUse(LuaVM::Impl& interpreter) noexcept
    : interpreter_(interpreter) {
  ++interpreter_.uses_;
}

internal::InterpreterInUse::~InterpreterInUse() {
  if (--interpreter_.uses_ == 0 && interpreter_.isAbandoned()) delete &interpreter_;
}

LuaVM::Impl::Impl(LuaVM& ownerVm, const LuaOptions& vmOptions)
    : self(this),
      owner(&ownerVm),
      options(vmOptions),
      heap(heapOwner.get()),
      strings(heap),
      patterns(std::make_unique<internal::PatternCache>()) {
  if (options.supervised) heap.meter().setSupervised();
}

void LuaVM::Impl::setLimits(const LuaLimits& limits) {
  if (!options.supervised &&
      (limits.steps > 0 || limits.time.count() > 0 || limits.stop.stop_possible())) {
    throw std::logic_error("LuaLimits: steps, time and stop need LuaOptions::supervised");
  }
  heap.meter().supervise({limits.steps, limits.time, limits.stop});
  heap.limitMemory(limits.memory);
  stack.limitFrames(limits.stack);
}

LuaUsage LuaVM::Impl::usage() const noexcept {
  return {heap.meter().usedSteps(), heap.heldMemory(), heap.peakMemory()};
}

void LuaVM::Impl::fillGlobals() {
  standard.function = OwnedValue(makeNative("", {}));
  standard.outOfMemoryText = OwnedValue(makeString(internal::exceptionText(std::bad_alloc())));
  bindDefaults();
  standard.stringLibrarySlot = resolveGlobalSlot("string");
}

LuaVM::Impl::~Impl() {
  ++uses_;  // what end() destroys may use the interpreter, and must not delete it again
  end();
}

void LuaVM::Impl::abandon() noexcept {
  if (uses_ == 0) {
    end();  // while what it destroys can still use the host's object
    delete this;
  } else {
    owner = &self;  // whoever uses the interpreter last deletes it
  }
}

void LuaVM::Impl::end() noexcept {
  const internal::DestructionScope destruction;
  globals.clear();
  ended_ = true;
  heap.closeResources();
  globals.clear();  // what the host's destructors have set meanwhile
}

LuaVM::Impl::Value LuaVM::Impl::makeNative(std::string_view name,
                                           internal::NativeFunction function) {
  return Value(
      internal::FunctionObject::createNative(heap, strings.intern(name), std::move(function)));
}

namespace {

// What a run leaves the interpreter with, however it ends: the stack as it was, nothing on it, and
// no exit that would be taken for one of a run around it.
class RunScope {
 public:
  RunScope(ValueStack& stack, ExitRequest& exit)
      : stack_(stack),
        mark_(destruction_.isNested() ? stack.markBeyondFrames() : stack.mark()),
        exit_(exit) {
    stack_.enterThread();
  }
  ~RunScope() {
    stack_.unwindTo(mark_);
    exit_ = {};
  }
  RunScope(const RunScope&) = delete;
  RunScope& operator=(const RunScope&) = delete;

 private:
  const HostStackScope hostStack_;
  const internal::DestructionScope destruction_;
  ValueStack& stack_;
  ValueStack::Mark mark_;
  ExitRequest& exit_;
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

namespace {

using internal::StopSignal;

const char* stopText(StopSignal::Reason reason) noexcept {
  switch (reason) {
    case StopSignal::Reason::Steps:
      return "too many steps";
    case StopSignal::Reason::Time:
      return "out of time";
    case StopSignal::Reason::Request:
      return "stopped";
  }
  return "";
}

LuaError::Kind kindOf(StopSignal::Reason reason) noexcept {
  switch (reason) {
    case StopSignal::Reason::Steps:
      return LuaError::Kind::Steps;
    case StopSignal::Reason::Time:
      return LuaError::Kind::Time;
    case StopSignal::Reason::Request:
      return LuaError::Kind::Stopped;
  }
  return LuaError::Kind::Script;
}

void describe(LuaResult& result, LuaError::Kind kind, const internal::Trace& trace,
              const std::string& chunkName) {
  LuaError error;
  error.kind = kind;
  error.message = result.error;
  error.trace = trace.frames(chunkName);
  result.detail = std::make_shared<const LuaError>(std::move(error));
}

}  // namespace

// Throws std::bad_alloc when there is no memory to say what failed. What the run held is released
// before that is put into words.
LuaResult LuaVM::Impl::tryRun(const std::string& source, const std::string& chunkName) {
  internal::RunSupervision run(*this);
  std::optional<RunScope> scope(std::in_place, stack, exit_);
  try {
    run.begin();
    if (ended_) throw std::runtime_error("the interpreter has ended");
    if (internal::hostStackRoom() < internal::stack_cost::kLeastForARun)
      throw RuntimeError("stack overflow", 1, true, internal::FailureKind::Stack);
    MultiValue results;
    {
      const ChunkReference chunk = parseScript(source, chunkName);
      results = runChunk(*chunk);
    }
    return makeSuccess(results);
  } catch (const ExitSignal& exit) {
    exit_ = {true, exit.code};
    return makeSuccess(MultiValue(Value(static_cast<std::int64_t>(exit.code))));
  } catch (const StopSignal& stop) {
    run.trace.locate(stop.site);
    scope.reset();
    LuaResult result = makeFailure(RuntimeError(stopText(stop.reason), stop.site, true), chunkName);
    describe(result, kindOf(stop.reason), run.trace, chunkName);
    return result;
  } catch (const ProtectedRuntimeError& error) {
    run.trace.locate(error.hasLocation ? error.site : 0);
    scope.reset();
    LuaResult result = makeFailure(error, chunkName);
    describe(result, LuaError::Kind::Script, run.trace, chunkName);
    return result;
  } catch (const std::exception& error) {
    const auto* const located = dynamic_cast<const RuntimeError*>(&error);
    run.trace.locate(located != nullptr && located->hasLocation ? located->site : 0);
    scope.reset();
    LuaResult result = makeFailure(error, chunkName);
    describe(result, LuaError::Kind::Script, run.trace, chunkName);
    return result;
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
  result.exitRequested = exit_.isMade;
  result.exitCode = exit_.code;
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
  result.error = error.hasLocation ? located(chunkName, error.site, error.message) : error.message;
  return result;
}

LuaResult LuaVM::Impl::makeFailure(const std::exception& error,
                                   const std::string& chunkName) const {
  LuaResult result;
  const auto* const runtimeError = dynamic_cast<const RuntimeError*>(&error);
  const std::string_view message = internal::exceptionText(error);
  result.error = runtimeError != nullptr && runtimeError->hasLocation
                     ? located(chunkName, runtimeError->site, message)
                     : std::string(message);
  return result;
}

}  // namespace tarvel::lua
