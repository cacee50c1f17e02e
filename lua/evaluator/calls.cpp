#include "lua/evaluator/call_forms.h"
#include "lua/evaluator/node_functions.h"
#include "lua/evaluator/variables.h"
#include "lua/lua_vm_impl.h"
#include "lua/value/native_class.h"
#include "lua/value/native_object.h"
#include "lua/value/table.h"

// The nodes of calls. They evaluate the callee and its arguments straight into the slots where the
// callee's frame will start.

namespace tarvel::lua::internal {

namespace {

// ---- The callee ---------------------------------------------------------------------------------

struct GlobalCallee {
  static Value load(const CallExpr* call, Value*) noexcept {
    return retain(*static_cast<const VariableExpr*>(call->callee)->cell);
  }
};

struct CapturedCallee {
  static Value load(const CallExpr* call, Value* base) noexcept {
    return retain(captureOf(static_cast<const VariableExpr*>(call->callee), base));
  }
};

struct SharedCallee {
  static Value load(const CallExpr* call, Value* base) noexcept {
    const auto* const variable = static_cast<const VariableExpr*>(call->callee);
    return retain(captureOf(variable, base).environment->slot);
  }
};

struct FrameCallee {
  static Value load(const CallExpr* call, Value* base) noexcept {
    return retain(slotAt(base, static_cast<const VariableExpr*>(call->callee)->offset));
  }
};

struct OtherCallee {
  static Value load(const CallExpr* call, Value* base) {
    return evaluateExpression(call->callee, base);
  }
};

// ---- Call nodes. Each returns all results; the single-value forms adjust. -----------------------

template <class Supervision, class Results, std::uint32_t Count>
[[gnu::always_inline]] inline Value callCounted(const CallExpr* call, Value* frame) {
  LuaVM::Impl& interpreter = *call->interpreter;
  Supervision::step(interpreter.heap.meter(), call->site);
  return callFixed<Supervision, Results, Count>(interpreter, interpreter.stack, frame, call->site);
}

// A call whose last argument was one that has given none or several values, or failed. `before` are
// the arguments before it, which stand in frame[1] on.
template <class Supervision>
[[gnu::noinline]] Value callWithExpanded(const CallExpr* call, Value* frame, std::uint32_t before,
                                         Value last) {
  LuaVM::Impl& interpreter = *call->interpreter;
  if (isFailed(last)) return last;
  // Several values stand where the call's frame started: behind the other arguments.
  const std::uint32_t count =
      before + (ReturnSignal::isSeveral(last) ? ReturnSignal::count(last) : 0);
  Supervision::step(interpreter.heap.meter(), call->site);
  return callAny<Supervision>(interpreter, frame, count, call->site);
}

template <class Callee>
struct FunctionCall {
  template <class Supervision, std::uint32_t Count>
  struct Of {
    template <class Results>
    [[gnu::always_inline]] static inline Value run(const Node* node, Value* base) {
      const CallExpr* const call = asCall(node);
      Value* const frame = &slotAt(base, call->frameOffset);
      frame[0] = Callee::load(call, base);
      evaluateArguments<Count>(call, frame + 1, base);
      return callCounted<Supervision, Results, Count>(call, frame);
    }
  };

  // With a call as the last argument.
  template <class Supervision, std::uint32_t Count>
  struct OfCall {
    template <class Results>
    [[gnu::always_inline]] static inline Value run(const Node* node, Value* base) {
      const CallExpr* const call = asCall(node);
      Value* const frame = &slotAt(base, call->frameOffset);
      frame[0] = Callee::load(call, base);
      constexpr std::uint32_t kBefore = Count > 0 ? Count - 1 : 0;
      evaluateArguments<kBefore>(call, frame + 1, base);
      const auto* const lastCall = static_cast<const CallExpr*>(call->arguments[kBefore]);
      const Value last = evaluateExpressionMulti(lastCall, base);
      if (!isSingleValue(last)) [[unlikely]] {
        return Results::of(*call->interpreter,
                           callWithExpanded<Supervision>(call, frame, kBefore, last));
      }
      frame[Count] = last;
      return callCounted<Supervision, Results, Count>(call, frame);
    }
  };
};

// A function that calls itself by its name, with exactly the arguments that it takes.
template <class Supervision, std::uint32_t Count>
struct RunningFunctionCall {
  template <class Results>
  [[gnu::always_inline]] static inline Value run(const Node* node, Value* base) {
    const CallExpr* const call = asCall(node);
    Value* const frame = &slotAt(base, call->frameOffset);
    frame[0] = base[-1];
    ++frame[0].function->count;
    evaluateArguments<Count>(call, frame + 1, base);
    const FunctionExpr* const body = base[-1].function->body;
    Supervision::step(call->interpreter->heap.meter(), call->site);
    if (call->interpreter->stack.hasRoom(&slotAt(frame, body->frameBytes), body->stackBytes))
        [[likely]] {
      return runBody<Supervision, Results>(body, frame, call->site);
    }
    return Results::of(*call->interpreter,
                       callAny<Supervision>(*call->interpreter, frame, Count, call->site));
  }
};

[[gnu::noinline]] Value lookUpAnyMethod(const CallExpr* call, Value receiver, Value* base) {
  return indexField(call, receiver, call->methodName, call->hint, base);
}

// Where the hint finds it, it takes no frame.
[[gnu::noinline]] Value lookUpMethodOfNative(const CallExpr* call, Value receiver, Value* base) {
  const Value method = receiver.native->type.hintedMember(call->methodName, call->hint);
  if (method.tag == kFunction) [[likely]]
    return retain(method);
  return lookUpAnyMethod(call, receiver, base);
}

[[gnu::noinline]] Value lookUpMethodOfOther(const CallExpr* call, Value receiver, Value* base) {
  if (receiver.tag == kUserData) return lookUpMethodOfNative(call, receiver, base);
  if (receiver.tag == kString) {
    LuaVM::Impl& interpreter = *call->interpreter;
    const Value library = interpreter.globals.at(interpreter.standard.stringLibrarySlot);
    if (library.tag == kTable) {
      const Value method = library.table->getString(call->methodName, call->hint);
      if (!method.isNil()) return retain(method);
    }
  }
  return lookUpAnyMethod(call, receiver, base);
}

// The receiver is evaluated once, then the method is looked up, then the other arguments are
// evaluated.
[[gnu::always_inline]] inline void lookUpMethod(const CallExpr* call, Value* frame, Value* base) {
  const Value receiver = evaluateExpression(call->object, base);
  frame[1] = receiver;
  frame[0] = receiver.tag == kTable
                 ? retain(receiver.table->getString(call->methodName, call->hint))
                 : lookUpMethodOfOther(call, receiver, base);
}

template <class Supervision, std::uint32_t Count>
struct MethodCall {
  template <class Results>
  [[gnu::always_inline]] static inline Value run(const Node* node, Value* base) {
    const CallExpr* const call = asCall(node);
    Value* const frame = &slotAt(base, call->frameOffset);
    lookUpMethod(call, frame, base);
    evaluateArguments<Count>(call, frame + 2, base);
    return callCounted<Supervision, Results, Count + 1>(call, frame);
  }
};

// Any number of arguments, the last of which may be a call that gives several.
template <class Supervision>
struct CallWithMany {
  template <class Results>
  static Value run(const Node* node, Value* base) {
    const CallExpr* const call = asCall(node);
    Value* const frame = &slotAt(base, call->frameOffset);
    std::uint32_t count = 0;
    if (call->object != nullptr) {
      lookUpMethod(call, frame, base);
      count = 1;
    } else {
      frame[0] = evaluateExpression(call->callee, base);
    }
    if (!call->arguments.empty()) {
      count += evaluateExpressionList(call->arguments, frame + 1 + count, base);
    }
    Supervision::step(call->interpreter->heap.meter(), call->site);
    return Results::of(*call->interpreter,
                       callAny<Supervision>(*call->interpreter, frame, count, call->site));
  }
};

bool takesItsArguments(const CallExpr& call, const FunctionExpr& function) noexcept {
  return function.parameterCount == call.arguments.size;
}

bool lastMayExpand(const CallExpr& call) noexcept {
  return !call.arguments.empty() && call.arguments[call.arguments.size - 1]->kind == ExprKind::Call;
}

// Numbers of arguments that have node functions of their own.
constexpr std::uint32_t kMostOfFunction = 6;
constexpr std::uint32_t kMostBeforeCall = 4;
constexpr std::uint32_t kMostOfMethod = 5;

template <class Supervision, class Callee>
bool chooseFunctionForm(CallExpr& call) {
  using Function = FunctionCall<Callee>;
  return lastMayExpand(call)
             ? chooseByCount<Supervision, Function::template OfCall, kMostBeforeCall>(call)
             : chooseByCount<Supervision, Function::template Of, kMostOfFunction>(call);
}

template <class Supervision>
bool chooseFunctionCall(CallExpr& call) {
  if (call.callee->kind != ExprKind::Variable)
    return chooseFunctionForm<Supervision, OtherCallee>(call);
  const auto& callee = static_cast<const VariableExpr&>(*call.callee);
  switch (callee.home) {
    case VariableHome::Frame:
      return chooseFunctionForm<Supervision, FrameCallee>(call);
    case VariableHome::OwnEnvironment:
      break;
    case VariableHome::CapturedValue:
      return chooseFunctionForm<Supervision, CapturedCallee>(call);
    case VariableHome::CapturedEnvironment:
      return chooseFunctionForm<Supervision, SharedCallee>(call);
    case VariableHome::RunningFunction:
      if (lastMayExpand(call) || !takesItsArguments(call, *callee.variable->function)) break;
      return chooseByCount<Supervision, RunningFunctionCall, kMostOfFunction>(call);
    case VariableHome::Global:
      return chooseFunctionForm<Supervision, GlobalCallee>(call);
  }
  return chooseFunctionForm<Supervision, OtherCallee>(call);
}

template <class Supervision>
bool chooseForm(CallExpr& call) {
  if (call.object == nullptr) {
    return (!lastMayExpand(call) && chooseLibraryCall(call)) ||
           chooseFunctionCall<Supervision>(call);
  }
  return !lastMayExpand(call) && chooseByCount<Supervision, MethodCall, kMostOfMethod>(call);
}

}  // namespace

void chooseCall(CallExpr& call) {
  if (call.interpreter->options.supervised) {
    if (!chooseForm<Supervised>(call)) chooseResults<CallWithMany<Supervised>>(call);
  } else if (!chooseForm<Unsupervised>(call)) {
    chooseResults<CallWithMany<Unsupervised>>(call);
  }
}

}  // namespace tarvel::lua::internal
