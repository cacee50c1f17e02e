#include <tarvel/lua/lua_bridge.h>
#include <tarvel/lua/lua_vm.h>

#include <bit>
#include <exception>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "lua/bridge_access.h"
#include "lua/failure_report.h"
#include "lua/frontend/syntax_tree.h"
#include "lua/lua_vm_impl.h"
#include "lua/run_scope.h"
#include "lua/value/completion.h"
#include "lua/value/host_stack.h"

// Calls from the host: the arguments go straight into the slots where the function's frame starts.

namespace tarvel::lua::bridge {

using internal::FunctionObject;
using internal::isSingleValue;
using internal::ReturnSignal;
using internal::Value;
using internal::ValueStack;

namespace {

// What is wrong with what a host asked for.
class CallProblem : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace

struct Call::State {
  explicit State(LuaVM::Impl& impl) noexcept : scope(impl) {}
  ~State() { dropResults(); }
  State(const State&) = delete;
  State& operator=(const State&) = delete;

  LuaVM::Impl& interpreter() const noexcept { return scope.interpreter(); }
  Value* frame() const noexcept { return scope.first(); }
  void dropResults() noexcept {
    clearSlot(single);
    for (std::uint32_t i = 0; i < severalCount; ++i) clearSlot(several[i]);
    severalCount = 0;
  }
  // After a failure: gives up the results, or whatever stands on the stack.
  void release() noexcept {
    dropResults();
    scope.sweep();
  }
  void setResult(Value owned) noexcept {
    single = owned;
    hasSingle = true;
  }
  internal::ValueSpan results() const noexcept {
    return hasSingle ? internal::ValueSpan(&single, 1) : internal::ValueSpan(several, severalCount);
  }

  internal::RunScope scope;
  const char* problem = nullptr;
  std::string_view name;  // of what is called, where it was named
  bool hasBegun = false;  // the arguments are complete
  // What was returned: one value, or several that stand on the stack.
  bool hasSingle = false;
  std::uint32_t severalCount = 0;
  Value* several = nullptr;
  Value single;
};

Call::State& Call::state() noexcept {
  static_assert(sizeof(State) <= sizeof(state_) && alignof(State) <= alignof(std::max_align_t));
  return *std::launder(reinterpret_cast<State*>(state_));
}

const Call::State& Call::state() const noexcept {
  return *std::launder(reinterpret_cast<const State*>(state_));
}

Call::Call(LuaVM& vm) noexcept : ScriptSink(internal::interpreterOf(LuaVM::Impl::of(vm))) {
  State& opened = *new (state_) State(LuaVM::Impl::of(vm));
  constexpr std::size_t kUsualArguments = 8;
  Value* const first = opened.frame() + 1;
  next_ = end_ = reinterpret_cast<std::byte*>(first);
  ValueStack& stack = opened.interpreter().stack;
  Value* const end = first + kUsualArguments;
  if (!stack.hasRoom(end, 0) && !stack.makeRoom(end, 0)) [[unlikely]] {
    opened.problem = "stack overflow";
    return;
  }
  end_ = reinterpret_cast<std::byte*>(end);
  opened.scope.expectValues();
}

Call::Call(LuaVM& vm, const LuaFunction& function) noexcept : Call(vm) {
  State& opened = state();
  if (opened.problem != nullptr) [[unlikely]]
    return;
  if (function == nullptr) {
    opened.problem = "a function expected, got nil";
  } else if (&function->target().heap != &opened.interpreter().heap) {
    opened.problem = "the function belongs to another interpreter, or to one that is gone";
  } else {
    FunctionObject* const target = function->target().function.get().function;
    ++target->count;
    *opened.frame() = Value(target);
  }
}

Call::Call(LuaVM& vm, std::string_view name) noexcept : Call(vm) { state().name = name; }

Call::~Call() { state().~State(); }

void Call::failNotCallable() const {
  const State& opened = state();
  const auto callee = std::bit_cast<RawValue>(*opened.frame());
  Problem problem;
  problem.expected("a function", ScriptValue(interpreter_, callee).description());
  if (!opened.name.empty()) problem.inField(opened.name);
  throw CallProblem(problem.message());
}

void Call::run() {
  State& opened = state();
  if (opened.problem != nullptr) [[unlikely]]
    throw CallProblem(opened.problem);
  LuaVM::Impl& interpreter = opened.interpreter();
  opened.hasBegun = true;
  opened.scope.begin();
  if (!opened.name.empty()) *opened.frame() = retain(interpreter.findByPath(opened.name));
  if (!opened.frame()->isFunction()) [[unlikely]]
    failNotCallable();
  const auto count =
      static_cast<std::uint32_t>(reinterpret_cast<Value*>(next_) - opened.frame() - 1);
  const Value completion = interpreter.callFrame(opened.frame(), count, 0);
  opened.scope.expectNoValues();
  if (isSingleValue(completion)) {
    opened.setResult(completion);
  } else if (ReturnSignal::isSeveral(completion)) {
    opened.several = completion.values;
    opened.severalCount = ReturnSignal::count(completion);
    interpreter.stack.setTop(opened.several + opened.severalCount);
  }
}

void Call::readGlobal(std::string_view name) {
  State& opened = state();
  opened.scope.expectNoValues();
  opened.setResult(retain(opened.interpreter().findByPath(name)));
}

void Call::storeGlobal(std::string_view name) {
  State& opened = state();
  Value& slot = opened.frame()[1];
  const Value value = std::exchange(slot, Value());
  opened.scope.expectNoValues();
  opened.interpreter().storeByPath(name, value);
}

void Call::load(std::string_view source, std::string_view chunkName,
                std::span<const std::string_view> parameters) {
  State& opened = state();
  opened.scope.expectNoValues();
  opened.hasBegun = true;
  LuaVM::Impl& interpreter = opened.interpreter();
  interpreter.requireLife();
  const internal::ChunkReference chunk =
      interpreter.parseScript(std::string(source), std::string(chunkName), parameters);
  opened.setResult(interpreter.makeMain(*chunk));
}

std::size_t Call::count() const noexcept { return state().results().size(); }

RawValue Call::rawResult(std::size_t index) const noexcept {
  const State& opened = state();
  // In two words, as it was stored just before: one load of both would have to wait.
  if (index == 0 && opened.hasSingle) [[likely]]
    return {opened.single.tag, std::bit_cast<std::uint64_t>(opened.single.integer)};
  const internal::ValueSpan results = opened.results();
  return std::bit_cast<RawValue>(index < results.size() ? results[index] : Value());
}

LuaValue Call::allResults() const {
  return state().interpreter().resultsToPublic(state().results());
}

LuaError Call::failure() {
  State& opened = state();
  const auto valueError = [&opened](const char* text) {
    opened.release();
    LuaError error;
    error.kind = LuaError::Kind::Value;
    error.message = text;
    return error;
  };
  try {
    try {
      throw;
    } catch (const CallProblem& problem) {
      return valueError(problem.what());
    } catch (const std::bad_alloc&) {
      throw;
    } catch (const std::exception& error) {
      if (!opened.hasBegun) return valueError(error.what());
      throw;
    }
  } catch (...) {
    const internal::FailureReport report(opened.interpreter());
    opened.release();
    try {
      return report.error();
    } catch (const std::bad_alloc&) {
      LuaError withoutWords;  // which the outcome has
      withoutWords.kind = LuaError::Kind::Memory;
      return withoutWords;
    }
  }
}

}  // namespace tarvel::lua::bridge
