#pragma once

#include "lua/evaluator/execute.h"
#include "lua/evaluator/supervision.h"
#include "lua/frontend/syntax_tree.h"
#include "lua/value/completion.h"
#include "lua/value/value_stack.h"

// How a call is made once the callee and its arguments stand in the slots where the callee's frame
// starts: frame[0] holds the callee, frame[1] is the base of its frame. What stands there is owned
// by the slots; the call releases it when the callee is done, and an error leaves it to the sweep.
// The results are those of evaluateExpressionMulti.
//
// Everything that makes a call has two forms, with the policies of supervision.h. A call is a step,
// which whoever makes it counts when callee and arguments are there.

namespace tarvel::lua::internal {

// The first value of a completion that is no single value, owned; the others are released.
Value firstOf(Value completion) noexcept;

// Ends a call whose body returned none or several values.
template <class Supervision>
Value finishWithoutSingleValue(Value* frame, const FunctionExpr* body, Value completion);

// Any callee, any number of arguments.
template <class Supervision>
Value callAny(LuaVM::Impl& interpreter, Value* frame, std::uint32_t count, Site site);

// The code of a native function.
inline const NativeCode* nativeCodeOf(const FunctionObject* function) noexcept {
  return static_cast<const NativeCode*>(function->code);
}

// Calls the leaf function in frame[0], of the interpreter `vm`, with `count` arguments.
template <class Supervision>
[[gnu::always_inline]] inline Value callLeaf(LuaVM& vm, LeafFunction leaf, Value* frame,
                                             std::uint32_t count, const Site& site) {
  Value* const end = frame + 1 + count;
  typename Supervision::NativeCall call(vm, frame, site);
  const Value result = leaf(vm, ValueSpan(frame + 1, count), site);
  call.returned();
  clearSlots(frame, end);
  return result;
}

// Runs a script function whose parameters stand in frame[1] on, all of them set.
template <class Supervision>
[[gnu::always_inline]] inline Value runBody(const FunctionExpr* body, Value* frame,
                                            const Site& site) {
  typename Supervision::ScriptCall call(body, frame, site);
  const Value completion = executeStatement(body->entry, frame + 1);
  call.returned();
  if (!isSingleValue(completion)) [[unlikely]]
    return finishWithoutSingleValue<Supervision>(frame, body, completion);
  clearSlots(frame + 1, &slotAt(frame + 1, body->releaseEnd));
  clearSlot(frame[0]);
  return completion;
}

// The common case: a script function that takes exactly the arguments it gets, with room on both
// stacks. Everything else is out of line, so that recursion keeps to few instructions.
template <class Supervision, std::uint32_t Count>
[[gnu::always_inline]] inline Value callFixed(LuaVM::Impl& interpreter, const ValueStack& stack,
                                              Value* frame, const Site& site) {
  const Value callee = frame[0];
  if (callee.tag == kFunction) [[likely]] {
    const FunctionExpr* const body = callee.function->body;
    if (body != nullptr && body->parameterCount == Count) [[likely]] {
      if (stack.hasRoom(&slotAt(frame, body->frameBytes), body->stackBytes)) [[likely]] {
        return runBody<Supervision>(body, frame, site);
      }
    }
  }
  return callAny<Supervision>(interpreter, frame, Count, site);
}

}  // namespace tarvel::lua::internal
