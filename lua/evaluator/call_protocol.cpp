#include "lua/evaluator/call_protocol.h"

#include <string>

#include "lua/evaluator/call_forms.h"
#include "lua/lua_vm_impl.h"
#include "lua/value/host_stack.h"

// Calls off the common path: of native functions, with other numbers of arguments than parameters,
// with none or several results.

namespace tarvel::lua::internal {

void failNotCallable(LuaVM::Impl& interpreter, const Value& callee, Site site) {
  interpreter.raiseAt(site, {"attempt to call a ", describeValueType(callee), " value"});
}

void failStackOverflow(Site site) { failRuntime(site, "stack overflow", FailureKind::Stack); }

Value firstOf(LuaVM::Impl& interpreter, Value completion) {
  if (isFailed(completion)) interpreter.raisePending();
  if (!ReturnSignal::isSeveral(completion)) return Value();
  Value* const values = completion.values;
  const Value first = values[0];
  values[0] = Value();
  clearSlots(values + 1, values + ReturnSignal::count(completion));
  return first;
}

Value settleSeveral(Value* frame, Value completion) noexcept {
  const std::uint32_t count = ReturnSignal::count(completion);
  Value* const from = completion.values;
  for (std::uint32_t i = 0; i < count; ++i) {
    frame[i] = from[i];
    from[i] = Value();
  }
  return ReturnSignal::severalValues(frame, count);
}

namespace {

// Stores what a native function returned from frame[0] on, after the arguments are gone.
template <class Supervision>
Value settleResults(LuaVM::Impl& interpreter, Value* frame, MultiValue&& results, Site site) {
  if (results.size() == 1) return results.release()[0];
  if (results.empty()) return ReturnSignal::noValues();
  if (!interpreter.stack.makeRoom(frame + results.size(), 0)) failStackOverflow(site);
  Supervision::moved(results.size(), interpreter.heap.meter(), site);
  const ValueSpan values = results.release();
  for (std::size_t i = 0; i < values.size(); ++i) frame[i] = values[i];
  return ReturnSignal::severalValues(frame, static_cast<std::uint32_t>(values.size()));
}

// One that may make calls of its own.
template <class Supervision>
[[gnu::noinline]] Value callCallingNative(LuaVM::Impl& interpreter, Value* frame,
                                          std::uint32_t count, Site site) {
  const NativeCode* const code = nativeCodeOf(frame[0].function);
  if (code->direct == nullptr && !code->function)
    failRuntime(site, "attempt to call an empty function");
  ValueStack& stack = interpreter.stack;
  Value* const end = frame + 1 + count;
  if (!stack.hasRoom(end, stack_cost::kNativeCall) && !stack.makeRoom(end, stack_cost::kNativeCall))
      [[unlikely]] {
    failStackOverflow(site);
  }
  Value* const outerTop = stack.top();
  stack.setTop(end);
  typename Supervision::NativeCall call(interpreter.self, frame, site);
  if (code->direct != nullptr) {
    const Value completion = code->direct(interpreter, frame, count, site);
    if (isFailed(completion)) {
      call.failed(interpreter);
      return completion;
    }
    call.returned();
    stack.setTop(outerTop);
    if (!ReturnSignal::isSeveral(completion)) {
      clearSlots(frame, end);
      return completion;
    }
    if (completion.values == frame) return completion;
    clearSlots(frame, end);
    return settleSeveral(frame, completion);
  }
  MultiValue results = code->function(interpreter.self, ValueSpan(frame + 1, count), site);
  call.returned();
  stack.setTop(outerTop);
  clearSlots(frame, end);
  return settleResults<Supervision>(interpreter, frame, std::move(results), site);
}

}  // namespace

[[gnu::noinline]] Value destroyAndRelease(Value* slot, Value* end, Value* callee,
                                          Value completion) noexcept {
  const Value unused = *slot;
  slot->tag = kNil;
  destroyObject(unused);
  clearSlots(slot + 1, end);
  if (callee != nullptr) clearSlot(*callee);
  return completion;
}

Value keepFailure(LuaVM::Impl& interpreter, ProtectedRuntimeError&& error) noexcept {
  return interpreter.pendingFailure.set(std::move(error));
}

// Several values must not be released with the locals whose slots they have overwritten.
template <class Supervision>
[[gnu::noinline]] Value finishWithSeveral(Value* frame, const FunctionExpr* body,
                                          Value completion) {
  Value* end = &slotAt(frame + 1, body->releaseEnd);
  if (completion.values < end) end = completion.values;
  clearSlots(frame, end);
  const Value settled = settleSeveral(frame, completion);
  Supervision::moved(ReturnSignal::count(settled), body->interpreter->heap.meter(), body->site);
  return settled;
}

template <class Supervision>
[[gnu::noinline]] Value callAny(LuaVM::Impl& interpreter, Value* frame, std::uint32_t count,
                                Site site) {
  const Value callee = frame[0];
  if (callee.tag != kFunction) failNotCallable(interpreter, callee, site);
  const FunctionExpr* const body = callee.function->body;
  if (body == nullptr) {
    const NativeCode* const code = nativeCodeOf(callee.function);
    if (code->whole != nullptr) return code->whole(interpreter, frame, count, site);
    if (code->leaf == nullptr)
      return callCallingNative<Supervision>(interpreter, frame, count, site);
    return callLeaf<Supervision>(interpreter.self, code->leaf, frame, count, site);
  }
  if (!interpreter.stack.makeRoom(&slotAt(frame, body->frameBytes), body->stackBytes))
    failStackOverflow(site);
  for (std::uint32_t i = count; i < body->parameterCount; ++i) frame[1 + i] = Value();
  for (std::uint32_t i = body->parameterCount; i < count; ++i) clearSlot(frame[1 + i]);
  return runBody<Supervision, AllResults>(body, frame, site);
}

template Value finishWithSeveral<Unsupervised>(Value*, const FunctionExpr*, Value);
template Value finishWithSeveral<Supervised>(Value*, const FunctionExpr*, Value);
template Value callAny<Unsupervised>(LuaVM::Impl&, Value*, std::uint32_t, Site);
template Value callAny<Supervised>(LuaVM::Impl&, Value*, std::uint32_t, Site);

}  // namespace tarvel::lua::internal
