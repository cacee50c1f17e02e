#include <tarvel/lua/lua_vm.h>

#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "lua/failure_report.h"
#include "lua/frontend/syntax_tree.h"
#include "lua/lua_vm_impl.h"
#include "lua/run_scope.h"
#include "lua/stdlib/patterns/searcher.h"
#include "lua/value/host_stack.h"

namespace tarvel::lua {

using internal::ChunkReference;
using internal::ExitSignal;
using internal::FailureKind;
using internal::FailureReport;
using internal::HostStackScope;
using internal::InterpreterInUse;
using internal::MultiValue;
using internal::OwnedValue;
using internal::Table;
using internal::UnparsedError;

LuaVM::LuaVM() : LuaVM(LuaOptions()) {}

LuaVM::LuaVM(const LuaOptions& options) {
  auto impl = std::make_unique<Impl>(*this, options);
  impl_ = impl.get();
  impl->fillGlobals();
  impl->setLimits(options.limits);
  static_cast<void>(impl.release());
}

LuaVM::LuaVM(Impl& impl) noexcept : impl_(&impl) {}

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

LuaOutcome<LuaFunction> LuaVM::load(std::string_view source, std::string_view chunkName,
                                    std::initializer_list<std::string_view> parameters) {
  bridge::Call call(*this);
  try {
    call.load(source, chunkName, {parameters.begin(), parameters.size()});
    LuaFunction function;
    call.result(0).read(function);
    return function;
  } catch (...) {
    return call.failure();
  }
}

void LuaVM::setLimits(const LuaLimits& limits) { impl_->setLimits(limits); }

LuaUsage LuaVM::usage() const noexcept { return impl_->usage(); }

const char* LuaVM::version() noexcept { return TARVELLUA_VERSION; }

// ---- The interpreter behind it ------------------------------------------------------------------

LuaVM::Impl::Impl(LuaVM& ownerVm, const LuaOptions& vmOptions)
    : self(*this),
      owner(&ownerVm),
      options(vmOptions),
      heap(heapOwner.get()),
      strings(heap),
      sites(heap),
      patterns(std::make_unique<internal::PatternCache>(heap)) {
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
  standard.outOfMemoryText = OwnedValue(makeString(internal::exceptionText(std::bad_alloc())));
  bindDefaults();
  standard.stringLibrarySlot = globals.slotOf("string");
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

LuaResult makeFailure(const FailureReport& failure, const std::string& chunkName) {
  LuaResult result;
  result.error = failure.textFor(chunkName);
  try {
    result.detail = std::make_shared<const LuaError>(failure.error());
  } catch (const std::bad_alloc&) {
    result.detail = nullptr;  // the words are what a host needs first
  }
  return result;
}

}  // namespace

void LuaVM::Impl::failEnded() { throw std::runtime_error("the interpreter has ended"); }

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
  internal::RunScope scope(*this);
  scope.expectValues();
  try {
    scope.begin();
    if (internal::hostStackRoom() < internal::stack_cost::kLeastForARun)
      throw UnparsedError(FailureKind::Stack, chunkName, 1, 1, "stack overflow");
    MultiValue results;
    {
      const ChunkReference chunk = parseScript(source, chunkName);
      results = runChunk(*chunk);
    }
    return makeSuccess(results.span());
  } catch (const ExitSignal& exit) {
    const Value code(static_cast<std::int64_t>(exit.code));
    LuaResult result = makeSuccess({&code, 1});
    result.exitRequested = true;
    result.exitCode = exit.code;
    return result;
  } catch (...) {
    const FailureReport failure(*this);
    scope.sweep();
    return makeFailure(failure, chunkName);
  }
}

LuaValue LuaVM::Impl::resultsToPublic(internal::ValueSpan results) const {
  if (results.empty()) return LuaValue();
  internal::MemoryCharge memory(heap);
  if (results.size() == 1) return valueToPublic(results[0], memory);
  const OwnedValue list(Value(Table::create(heap, static_cast<std::uint32_t>(results.size()))));
  std::int64_t key = 0;
  for (const Value& value : results) list.get().table->setInteger(++key, retain(value));
  return valueToPublic(list.get(), memory);
}

LuaResult LuaVM::Impl::makeSuccess(internal::ValueSpan results) const {
  LuaResult result;
  result.value = resultsToPublic(results);
  result.ok = true;
  return result;
}

}  // namespace tarvel::lua
