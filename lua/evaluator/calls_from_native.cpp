#include <exception>
#include <new>
#include <string>
#include <utility>

#include "lua/evaluator/call_protocol.h"
#include "lua/evaluator/variables.h"
#include "lua/lua_vm_impl.h"

// Calls that native code makes, and the interpreter itself.

namespace tarvel::lua {

namespace internal {

Value callBehindFrame(const Node* node, Value* base, Value function,
                      std::initializer_list<Value> arguments) {
  LuaVM::Impl& interpreter = *node->interpreter;
  Value* const frame = &slotAt(base - 1, runningFunction(base)->body->frameBytes);
  if (!interpreter.stack.makeRoom(frame + 1 + arguments.size(), 0)) failStackOverflow(node->site);
  frame[0] = retain(function);
  Value* next = frame;
  for (const Value& argument : arguments) *++next = retain(argument);
  const auto count = static_cast<std::uint32_t>(arguments.size());
  const Value result = interpreter.callFrame(frame, count, node->site);
  return isSingleValue(result) ? result : firstOf(interpreter, result);
}

}  // namespace internal

using internal::MultiValue;
using internal::ReturnSignal;
using internal::Site;
using internal::Value;
using internal::ValueSpan;

namespace {

MultiValue takeResults(LuaVM::Impl& interpreter, Value completion) {
  if (isSingleValue(completion)) return MultiValue(completion);
  if (isFailed(completion)) interpreter.pendingFailure.raise();
  MultiValue results;
  if (!ReturnSignal::isSeveral(completion)) return results;
  for (std::uint32_t i = 0; i < ReturnSignal::count(completion); ++i) {
    const Value value = completion.values[i];
    completion.values[i] = Value();
    results.push(value);
  }
  return results;
}

// A function with exactly the arguments that it takes is called from here.
template <class Supervision>
[[gnu::always_inline]] inline Value callFunction(LuaVM::Impl& interpreter, Value* frame,
                                                 std::uint32_t count, Site site) {
  const internal::FunctionExpr* const body = frame->function->body;
  if (body != nullptr && body->parameterCount == count &&
      interpreter.stack.hasRoom(&internal::slotAt(frame, body->frameBytes), body->stackBytes))
      [[likely]] {
    return internal::runBody<Supervision, internal::AllResults>(body, frame, site);
  }
  return internal::callAny<Supervision>(interpreter, frame, count, site);
}

// Counts what a call has passed on. Throws also for what has been counted since the last step, when
// no other step follows.
[[gnu::noinline]] Value countResults(internal::WorkMeter& meter, Value completion, Site site) {
  const bool isSeveral = ReturnSignal::isSeveral(completion);
  internal::OwnedValue single(isSingleValue(completion) ? completion : Value());
  internal::Supervised::moved(isSeveral ? ReturnSignal::count(completion) : 1, meter, site);
  single.take();
  return completion;
}

[[gnu::always_inline]] inline Value callSupervised(LuaVM::Impl& interpreter, Value* frame,
                                                   std::uint32_t count, Site site) {
  internal::WorkMeter& meter = interpreter.heap.meter();
  internal::Supervised::step(meter, site);
  const Value completion = callFunction<internal::Supervised>(interpreter, frame, count, site);
  if (isFailed(completion)) return completion;
  const bool hasNothingToCount = !ReturnSignal::isSeveral(completion) && meter.hasStepsLeft();
  return hasNothingToCount ? completion : countResults(meter, completion, site);
}

// The completion of the call, which may be a failed one.
[[gnu::always_inline]] inline Value callAnyFrame(LuaVM::Impl& interpreter, Value* frame,
                                                 std::uint32_t count, Site site) {
  if (interpreter.options.supervised) return callSupervised(interpreter, frame, count, site);
  return callFunction<internal::Unsupervised>(interpreter, frame, count, site);
}

MultiValue callFromNative(LuaVM::Impl& interpreter, Value* frame, std::uint32_t count, Site site) {
  const internal::LandingBarrier barrier(interpreter.landing);
  return takeResults(interpreter, callAnyFrame(interpreter, frame, count, site));
}

}  // namespace

Value LuaVM::Impl::callFrame(Value* frame, std::uint32_t count, Site site) {
  const internal::LandingBarrier barrier(landing);
  const Value completion = callAnyFrame(*this, frame, count, site);
  if (isFailed(completion)) [[unlikely]]
    pendingFailure.raise();
  return completion;
}

void LuaVM::Impl::raisePending() {
  if (landing != nullptr) landing->land();
  pendingFailure.raise();
}

void LuaVM::Impl::raiseAt(Site site, std::initializer_list<std::string_view> pieces) {
  if (landing == nullptr) internal::failRuntime(site, pieces);
  pendingFailure.set(internal::joinText(pieces), site);
  landing->land();
}

// ExitSignal, StopSignal and what a host throws besides standard exceptions pass through.
Value LuaVM::Impl::callLanding(Value* frame, std::uint32_t count, Site site) {
  const internal::ProtectedCallScope scope;
  internal::FailureLanding here(landing);
  if (_setjmp(here.point()) != 0) return internal::failedCompletion();
  try {
    if (!frame->isFunction()) internal::failNotCallable(*this, *frame, site);
    return callAnyFrame(*this, frame, count, site);
  } catch (internal::ProtectedRuntimeError& error) {
    return pendingFailure.set(std::move(error));
  } catch (const std::bad_alloc&) {
    // There may be no memory for a message either.
    return pendingFailure.set(standard.outOfMemoryText, site);
  } catch (const std::exception& error) {
    return pendingFailure.set(std::string(internal::exceptionText(error)), site);
  }
}

Value LuaVM::Impl::callProtected(Value* frame, std::uint32_t count, Site site) {
  const internal::ValueStack::Mark mark = stack.markAt(frame);
  const Value completion = callLanding(frame, count, site);
  if (!isFailed(completion)) return completion;
  // The error goes no further. What is released may run scripts that fail.
  internal::PendingFailure taken = std::move(pendingFailure);
  trace.clear();
  stack.unwindTo(mark);
  pendingFailure = std::move(taken);
  return internal::failedCompletion();
}

MultiValue LuaVM::Impl::callHandle(internal::FunctionObject* function, ValueSpan arguments,
                                   Site site) {
  Value* const frame = stack.top();
  if (!stack.makeRoom(frame + 1 + arguments.size(), 0)) internal::failStackOverflow(site);
  frame[0] = retain(Value(function));
  for (std::size_t i = 0; i < arguments.size(); ++i) frame[1 + i] = retain(arguments[i]);
  const auto count = static_cast<std::uint32_t>(arguments.size());
  return callFromNative(*this, frame, count, site);
}

bool LuaVM::Impl::callPredicate(const Value& callee, const Value& first, const Value& second,
                                Site site) {
  Value* const frame = stack.top();
  Value* const end = frame + 3;
  if (!stack.hasRoom(end, 0) && !stack.makeRoom(end, 0)) internal::failStackOverflow(site);
  frame[0] = retain(callee);
  frame[1] = retain(first);
  frame[2] = retain(second);
  if (options.supervised) internal::Supervised::step(heap.meter(), site);
  using internal::OneResult;
  const Value result =
      options.supervised
          ? internal::callFixed<internal::Supervised, OneResult, 2>(*this, stack, frame, site)
          : internal::callFixed<internal::Unsupervised, OneResult, 2>(*this, stack, frame, site);
  drop(result);
  return result.isTruthy();
}

Value LuaVM::Impl::makeMain(internal::ResolvedChunk& chunk) {
  return Value(
      internal::FunctionObject::createClosure(heap, chunk.main, &chunk, chunk.main->name, 0));
}

MultiValue LuaVM::Impl::runChunk(internal::ResolvedChunk& chunk) {
  Value* const frame = stack.top();
  if (!stack.makeRoom(frame + 1, 0)) internal::failStackOverflow(chunk.main->site);
  frame[0] = makeMain(chunk);
  return callFromNative(*this, frame, 0, chunk.main->site);
}

}  // namespace tarvel::lua
