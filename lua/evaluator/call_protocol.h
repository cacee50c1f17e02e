#pragma once

#include "lua/evaluator/execute.h"
#include "lua/evaluator/supervision.h"
#include "lua/frontend/syntax_tree.h"
#include "lua/value/completion.h"
#include "lua/value/value_stack.h"

// How a call is made once the callee and its arguments stand in the slots where the callee's frame
// starts: frame[0] holds the callee, frame[1] is the base of its frame. What stands there is owned
// by the slots; the call releases it when the callee is done, and an error leaves it to the sweep.
// The result is a completion: one value, or a ReturnSignal, or a failed one.
//
// Everything that makes a call has two forms, with the policies of supervision.h. A call is a step,
// which whoever makes it counts when callee and arguments are there.

namespace tarvel::lua::internal {

// The first value of a completion that is no single value, owned; the others are released. Raises a
// failed one.
Value firstOf(LuaVM::Impl& interpreter, Value completion);

// Ends a call whose body returned several values.
template <class Supervision>
Value finishWithSeveral(Value* frame, const FunctionExpr* body, Value completion);

// Any callee, any number of arguments.
template <class Supervision>
Value callAny(LuaVM::Impl& interpreter, Value* frame, std::uint32_t count, Site site);

// Moves several values down to where the frame of the call started, over what the call has
// released.
Value settleSeveral(Value* frame, Value completion) noexcept;

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

// What a node wants of a call's completion: all of it, or one value.
struct AllResults {
  static Value none() noexcept { return ReturnSignal::noValues(); }
  static Value of(LuaVM::Impl&, Value completion) noexcept { return completion; }
};
struct OneResult {
  static Value none() noexcept { return Value(); }
  static Value of(LuaVM::Impl& interpreter, Value completion) {
    return isSingleValue(completion) ? completion : firstOf(interpreter, completion);
  }
};

// Ends releaseFrame from a slot on that held the last reference to its object: the slots up to
// `end`, then the callee's, where that is not null. Returns the completion.
Value destroyAndRelease(Value* slot, Value* end, Value* callee, Value completion) noexcept;

// Releases a frame whose body has returned one value or none, and returns that. As long as no
// object has to be destroyed, nothing is called and the value can stay in its registers.
[[gnu::always_inline]] inline Value releaseFrame(const FunctionExpr* body, Value* frame,
                                                 Value completion) noexcept {
  Value* const end = &slotAt(frame + 1, body->releaseEnd);
  for (Value* slot = frame + 1; slot != end; ++slot) {
    if (!slot->isCounted()) continue;
    if (--slot->object->count == 0) [[unlikely]]
      return destroyAndRelease(slot, end, frame, completion);
    slot->tag = kNil;
  }
  if (--frame->object->count == 0) [[unlikely]]
    return destroyAndRelease(frame, frame + 1, nullptr, completion);
  frame->tag = kNil;
  return completion;
}

// Runs a script function whose parameters stand in frame[1] on, all of them set.
template <class Supervision, class Results>
[[gnu::always_inline]] inline Value runBody(const FunctionExpr* body, Value* frame,
                                            const Site& site) {
  typename Supervision::ScriptCall call(body, frame, site);
  Value completion = executeStatement(body->entry, frame + 1);
  if (!isSingleValue(completion)) [[unlikely]] {
    if (isFailed(completion)) {
      call.failed(*body->interpreter);
      return Results::of(*body->interpreter, completion);
    }
    if (ReturnSignal::isSeveral(completion)) {
      call.returned();
      return Results::of(*body->interpreter,
                         finishWithSeveral<Supervision>(frame, body, completion));
    }
    completion = Results::none();
  }
  call.returned();
  return releaseFrame(body, frame, completion);
}

// The common case: a script function that takes exactly the arguments it gets, with room on both
// stacks. Everything else is out of line, so that recursion keeps to few instructions.
template <class Supervision, class Results, std::uint32_t Count>
[[gnu::always_inline]] inline Value callFixed(LuaVM::Impl& interpreter, const ValueStack& stack,
                                              Value* frame, const Site& site) {
  const Value callee = frame[0];
  if (callee.tag == kFunction) [[likely]] {
    const FunctionExpr* const body = callee.function->body;
    if (body != nullptr && body->parameterCount == Count) [[likely]] {
      if (stack.hasRoom(&slotAt(frame, body->frameBytes), body->stackBytes)) [[likely]]
        return runBody<Supervision, Results>(body, frame, site);
    } else if (body == nullptr) {
      const NativeCode::DirectCall whole = nativeCodeOf(callee.function)->whole;
      if (whole != nullptr) return Results::of(interpreter, whole(interpreter, frame, Count, site));
    }
  }
  return Results::of(interpreter, callAny<Supervision>(interpreter, frame, Count, site));
}

}  // namespace tarvel::lua::internal
