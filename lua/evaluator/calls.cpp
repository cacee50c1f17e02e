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

template <class Supervision, std::uint32_t Count>
[[gnu::always_inline]] inline Value callCounted(const CallExpr* call, Value* frame) {
  LuaVM::Impl& interpreter = *call->interpreter;
  Supervision::step(interpreter.heap.meter(), call->site);
  return callFixed<Supervision, Count>(interpreter, interpreter.stack, frame, call->site);
}

template <class Callee>
struct FunctionCall {
  template <class Supervision, std::uint32_t Count>
  struct Of {
    [[gnu::always_inline]] static inline Value run(const Node* node, Value* base) {
      const CallExpr* const call = asCall(node);
      Value* const frame = &slotAt(base, call->frameOffset);
      frame[0] = Callee::load(call, base);
      evaluateArguments<Count>(call, frame + 1, base);
      return callCounted<Supervision, Count>(call, frame);
    }
  };
};

// A function that calls itself by its name, with exactly the arguments that it takes.
template <class Supervision, std::uint32_t Count>
struct RunningFunctionCall {
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
      return runBody<Supervision>(body, frame, call->site);
    }
    return callAny<Supervision>(*call->interpreter, frame, Count, call->site);
  }
};

[[gnu::noinline]] Value lookUpAnyMethod(const CallExpr* call, Value receiver, Value* base) {
  return indexField(call, receiver, call->methodName, call->hint, base);
}

// Of no table. The method of a string, or of a native object where the hint finds it, takes no
// frame.
[[gnu::noinline]] Value lookUpMethodOfOther(const CallExpr* call, Value receiver, Value* base) {
  if (receiver.tag == kString) {
    LuaVM::Impl& interpreter = *call->interpreter;
    const Value library = interpreter.globals.at(interpreter.standard.stringLibrarySlot);
    if (library.tag == kTable) {
      const Value method = library.table->getString(call->methodName, call->hint);
      if (!method.isNil()) return retain(method);
    }
  }
  if (receiver.tag == kUserData) [[likely]] {
    const Value method = receiver.native->type.hintedMember(call->methodName, call->hint);
    if (method.tag == kFunction) [[likely]]
      return retain(method);
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
  [[gnu::always_inline]] static inline Value run(const Node* node, Value* base) {
    const CallExpr* const call = asCall(node);
    Value* const frame = &slotAt(base, call->frameOffset);
    lookUpMethod(call, frame, base);
    evaluateArguments<Count>(call, frame + 2, base);
    return callCounted<Supervision, Count + 1>(call, frame);
  }
};

// Any number of arguments, the last of which may be a call that gives several.
template <class Supervision>
Value callWithMany(const Node* node, Value* base) {
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
  return callAny<Supervision>(*call->interpreter, frame, count, call->site);
}

bool takesItsArguments(const CallExpr& call, const FunctionExpr& function) noexcept {
  return function.parameterCount == call.arguments.size;
}

template <class Supervision, template <class, std::uint32_t> class Form>
void chooseFixed(CallExpr& call) {
  if (call.arguments.size > kMostCounted) return chooseResults<callWithMany<Supervision>>(call);
  chooseByCount<Supervision, Form>(call);
}

template <class Supervision>
void chooseFunctionCall(CallExpr& call, const VariableExpr& callee) {
  switch (callee.home) {
    case VariableHome::Frame:
      return chooseFixed<Supervision, FunctionCall<FrameCallee>::Of>(call);
    case VariableHome::OwnEnvironment:
      return chooseFixed<Supervision, FunctionCall<OtherCallee>::Of>(call);
    case VariableHome::CapturedValue:
      return chooseFixed<Supervision, FunctionCall<CapturedCallee>::Of>(call);
    case VariableHome::CapturedEnvironment:
      return chooseFixed<Supervision, FunctionCall<SharedCallee>::Of>(call);
    case VariableHome::RunningFunction:
      if (takesItsArguments(call, *callee.variable->function)) {
        return chooseFixed<Supervision, RunningFunctionCall>(call);
      }
      return chooseFixed<Supervision, FunctionCall<OtherCallee>::Of>(call);
    case VariableHome::Global:
      return chooseFixed<Supervision, FunctionCall<GlobalCallee>::Of>(call);
  }
}

// A call as a statement discards all its results.
Value executeCallStatement(const Node* node, Value* base) {
  const CallExpr* const call = static_cast<const ExpressionStmt*>(node)->expression;
  const Value result = evaluateExpressionMulti(call, base);
  drop(isSingleValue(result) ? result : firstOf(result));
  return normalCompletion();
}

bool lastMayExpand(const CallExpr& call) noexcept {
  return !call.arguments.empty() && call.arguments[call.arguments.size - 1]->kind == ExprKind::Call;
}

template <class Supervision>
void chooseForm(CallExpr& call) {
  if (lastMayExpand(call)) return chooseResults<callWithMany<Supervision>>(call);
  if (call.object != nullptr) return chooseFixed<Supervision, MethodCall>(call);
  if (chooseLibraryCall(call)) return;
  if (call.callee->kind == ExprKind::Variable) {
    return chooseFunctionCall<Supervision>(call, static_cast<const VariableExpr&>(*call.callee));
  }
  chooseFixed<Supervision, FunctionCall<OtherCallee>::Of>(call);
}

}  // namespace

std::uint32_t evaluateExpressionList(const ArenaList<Expr*>& expressions, Value* slots,
                                     Value* base) {
  std::uint32_t count = 0;
  for (; count + 1 < expressions.size; ++count) {
    slots[count] = evaluateExpression(expressions[count], base);
  }
  const Expr* const last = expressions[count];
  const Value result = last->kind == ExprKind::Call
                           ? evaluateExpressionMulti(static_cast<const CallExpr*>(last), base)
                           : evaluateExpression(last, base);
  if (isSingleValue(result)) {
    slots[count++] = result;
  } else if (ReturnSignal::isSeveral(result)) {
    count += ReturnSignal::count(result);  // they stand where the call's frame started: here
  }
  return count;
}

void chooseCall(CallExpr& call) {
  call.interpreter->options.supervised ? chooseForm<Supervised>(call)
                                       : chooseForm<Unsupervised>(call);
}

void chooseCallStatement(ExpressionStmt& statement) { statement.execute = executeCallStatement; }

}  // namespace tarvel::lua::internal
