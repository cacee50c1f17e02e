#include <string>

#include "lua/evaluator/execute.h"
#include "lua/evaluator/node_functions.h"
#include "lua/evaluator/supervision.h"
#include "lua/evaluator/variables.h"
#include "lua/lua_vm_impl.h"
#include "lua/value/completion.h"
#include "lua/value/host_stack.h"
#include "lua/value/native_class.h"
#include "lua/value/native_object.h"
#include "lua/value/table.h"

// Calls. The callee and its arguments are evaluated straight into the slots where the callee's
// frame will start: frame[0] holds the callee, frame[1] is the base of its frame. What stands there
// is owned by the slots; the call releases it when the callee is done, and an error leaves it to
// the sweep.
//
// Everything that makes a call has two forms, with the policies of supervision.h. A call is a step,
// counted where it is made: when callee and arguments are there.

namespace tarvel::lua {

namespace internal {

namespace {

[[noreturn, gnu::noinline]] void failNotCallable(const Value& callee, Site site) {
  failRuntime(site, std::string("attempt to call a ") + describeValueType(callee) + " value");
}

// Moves several values down to where the frame of the call started, over what the call has
// released.
Value settleSeveral(Value* frame, Value completion) noexcept {
  const std::uint32_t count = ReturnSignal::count(completion);
  Value* const from = completion.values;
  for (std::uint32_t i = 0; i < count; ++i) {
    frame[i] = from[i];
    from[i] = Value();
  }
  return ReturnSignal::severalValues(frame, count);
}

// Several values must not be released with the locals whose slots they have overwritten.
template <class Supervision>
[[gnu::noinline]] Value finishWithoutSingleValue(Value* frame, const FunctionExpr* body,
                                                 Value completion) {
  Value* end = &slotAt(frame + 1, body->releaseEnd);
  if (!ReturnSignal::isSeveral(completion)) {
    clearSlots(frame, end);
    return ReturnSignal::noValues();
  }
  if (completion.values < end) end = completion.values;
  clearSlots(frame, end);
  const Value settled = settleSeveral(frame, completion);
  Supervision::moved(ReturnSignal::count(settled), body->interpreter->heap.meter(), body->site);
  return settled;
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

[[noreturn, gnu::noinline]] void failStackOverflow(Site site) {
  failRuntime(site, "stack overflow", FailureKind::Stack);
}

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

template <class Supervision>
Value callNative(LuaVM::Impl& interpreter, Value* frame, std::uint32_t count, Site site) {
  const auto* const code = static_cast<const NativeCode*>(frame[0].function->code);
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
  typename Supervision::NativeCall call(interpreter, frame, site);
  if (code->direct != nullptr) {
    const Value completion = code->direct(interpreter, frame, count, site);
    call.returned();
    stack.setTop(outerTop);
    clearSlots(frame, end);
    return ReturnSignal::isSeveral(completion) ? settleSeveral(frame, completion) : completion;
  }
  MultiValue results = code->function(interpreter.self, ValueSpan(frame + 1, count), site);
  call.returned();
  stack.setTop(outerTop);
  clearSlots(frame, end);
  return settleResults<Supervision>(interpreter, frame, std::move(results), site);
}

// Any callee, any number of arguments.
template <class Supervision>
[[gnu::noinline]] Value callAny(LuaVM::Impl& interpreter, Value* frame, std::uint32_t count,
                                Site site) {
  const Value callee = frame[0];
  if (callee.tag != kFunction) failNotCallable(callee, site);
  const FunctionExpr* const body = callee.function->body;
  if (body == nullptr) return callNative<Supervision>(interpreter, frame, count, site);
  if (!interpreter.stack.makeRoom(&slotAt(frame, body->frameBytes), body->stackBytes))
    failStackOverflow(site);
  for (std::uint32_t i = count; i < body->parameterCount; ++i) frame[1 + i] = Value();
  for (std::uint32_t i = body->parameterCount; i < count; ++i) clearSlot(frame[1 + i]);
  return runBody<Supervision>(body, frame, site);
}

// The common case: a script function that takes exactly the arguments it gets, with room on both
// stacks.
template <class Supervision, std::uint32_t Count>
[[gnu::always_inline]] inline Value callFixed(LuaVM::Impl& interpreter, Value* frame,
                                              const Site& site) {
  Supervision::step(interpreter.heap.meter(), site);
  const Value callee = frame[0];
  if (callee.tag == kFunction) [[likely]] {
    const FunctionExpr* const body = callee.function->body;
    if (body != nullptr && body->parameterCount == Count) [[likely]] {
      if (interpreter.stack.hasRoom(&slotAt(frame, body->frameBytes), body->stackBytes))
          [[likely]] {
        return runBody<Supervision>(body, frame, site);
      }
    }
  }
  return callAny<Supervision>(interpreter, frame, Count, site);
}

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

const CallExpr* asCall(const Node* node) noexcept { return static_cast<const CallExpr*>(node); }

template <std::uint32_t Count>
[[gnu::always_inline]] inline void evaluateArguments(const CallExpr* call, Value* first,
                                                     Value* base) {
  for (std::uint32_t i = 0; i < Count; ++i) {
    const Expr* const argument = call->arguments[i];
    first[i] = evaluateExpression(argument, base);
  }
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
      return callFixed<Supervision, Count>(*call->interpreter, frame, call->site);
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

// Of no table. The method of a native object where the hint finds it takes no frame.
[[gnu::noinline]] Value lookUpMethodOfOther(const CallExpr* call, Value receiver, Value* base) {
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
    return callFixed<Supervision, Count + 1>(*call->interpreter, frame, call->site);
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

// ---- One value of a call ------------------------------------------------------------------------

[[gnu::noinline]] Value firstOf(Value completion) noexcept {
  if (!ReturnSignal::isSeveral(completion)) return Value();
  Value* const values = completion.values;
  const Value first = values[0];
  values[0] = Value();
  clearSlots(values + 1, values + ReturnSignal::count(completion));
  return first;
}

template <NodeFunction Multi>
Value singleResult(const Node* node, Value* base) {
  const Value result = Multi(node, base);
  return isSingleValue(result) ? result : firstOf(result);
}

template <NodeFunction Multi>
bool testResult(const Node* node, Value* base) {
  const Value result = singleResult<Multi>(node, base);
  drop(result);
  return result.isTruthy();
}

template <NodeFunction Multi>
void choose(CallExpr& call) {
  call.executeMulti = Multi;
  call.execute = singleResult<Multi>;
  call.test = testResult<Multi>;
}

// Chooses `Form<Count>::run` for the call's number of arguments.
template <class Supervision, template <class, std::uint32_t> class Form>
void chooseByCount(CallExpr& call) {
  switch (call.arguments.size) {
    case 0:
      return choose<Form<Supervision, 0>::run>(call);
    case 1:
      return choose<Form<Supervision, 1>::run>(call);
    case 2:
      return choose<Form<Supervision, 2>::run>(call);
    case 3:
      return choose<Form<Supervision, 3>::run>(call);
    case 4:
      return choose<Form<Supervision, 4>::run>(call);
    default:
      return choose<callWithMany<Supervision>>(call);
  }
}

bool takesItsArguments(const CallExpr& call, const FunctionExpr& function) noexcept {
  return function.parameterCount == call.arguments.size;
}

template <class Supervision>
void chooseFunctionCall(CallExpr& call, const VariableExpr& callee) {
  switch (callee.home) {
    case VariableHome::Frame:
      return chooseByCount<Supervision, FunctionCall<FrameCallee>::Of>(call);
    case VariableHome::OwnEnvironment:
      return chooseByCount<Supervision, FunctionCall<OtherCallee>::Of>(call);
    case VariableHome::CapturedValue:
      return chooseByCount<Supervision, FunctionCall<CapturedCallee>::Of>(call);
    case VariableHome::CapturedEnvironment:
      return chooseByCount<Supervision, FunctionCall<SharedCallee>::Of>(call);
    case VariableHome::RunningFunction:
      if (takesItsArguments(call, *callee.variable->function)) {
        return chooseByCount<Supervision, RunningFunctionCall>(call);
      }
      return chooseByCount<Supervision, FunctionCall<OtherCallee>::Of>(call);
    case VariableHome::Global:
      return chooseByCount<Supervision, FunctionCall<GlobalCallee>::Of>(call);
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
  if (lastMayExpand(call)) return choose<callWithMany<Supervision>>(call);
  if (call.object != nullptr) return chooseByCount<Supervision, MethodCall>(call);
  if (call.callee->kind == ExprKind::Variable) {
    return chooseFunctionCall<Supervision>(call, static_cast<const VariableExpr&>(*call.callee));
  }
  chooseByCount<Supervision, FunctionCall<OtherCallee>::Of>(call);
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
  return isSingleValue(result) ? result : firstOf(result);
}

void chooseCall(CallExpr& call) {
  call.interpreter->options.supervised ? chooseForm<Supervised>(call)
                                       : chooseForm<Unsupervised>(call);
}

void chooseCallStatement(ExpressionStmt& statement) { statement.execute = executeCallStatement; }

}  // namespace internal

// ---- Calls from native code ---------------------------------------------------------------------

using internal::MultiValue;
using internal::ReturnSignal;
using internal::Site;
using internal::Value;
using internal::ValueSpan;

namespace {

MultiValue takeResults(Value completion) {
  if (isSingleValue(completion)) return MultiValue(completion);
  MultiValue results;
  if (!ReturnSignal::isSeveral(completion)) return results;
  for (std::uint32_t i = 0; i < ReturnSignal::count(completion); ++i) {
    const Value value = completion.values[i];
    completion.values[i] = Value();
    results.push(value);
  }
  return results;
}

Value callSupervised(LuaVM::Impl& interpreter, Value* frame, std::uint32_t count, Site site) {
  internal::WorkMeter& meter = interpreter.heap.meter();
  internal::Supervised::step(meter, site);
  const Value completion = internal::callAny<internal::Supervised>(interpreter, frame, count, site);
  internal::OwnedValue single(isSingleValue(completion) ? completion : Value());
  const std::size_t moved =
      ReturnSignal::isSeveral(completion) ? ReturnSignal::count(completion) : 1;
  // Throws also for what has been counted since the last step, when no other step follows.
  internal::Supervised::moved(moved, meter, site);
  single.take();
  return completion;
}

MultiValue callFromNative(LuaVM::Impl& interpreter, Value* frame, std::uint32_t count, Site site) {
  if (interpreter.options.supervised)
    return takeResults(callSupervised(interpreter, frame, count, site));
  return takeResults(internal::callAny<internal::Unsupervised>(interpreter, frame, count, site));
}

}  // namespace

Value LuaVM::Impl::callFrame(Value* frame, std::uint32_t count, Site site) {
  if (options.supervised) return callSupervised(*this, frame, count, site);
  const internal::FunctionExpr* const body = frame->function->body;
  if (body != nullptr && body->parameterCount == count &&
      stack.hasRoom(&internal::slotAt(frame, body->frameBytes), body->stackBytes)) [[likely]] {
    return internal::runBody<internal::Unsupervised>(body, frame, site);
  }
  return internal::callAny<internal::Unsupervised>(*this, frame, count, site);
}

MultiValue LuaVM::Impl::callValue(const Value& callee, ValueSpan arguments, Site site) {
  if (!callee.isFunction()) internal::failNotCallable(callee, site);
  return callHandle(callee.function, arguments, site);
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
  Value result = options.supervised
                     ? internal::callFixed<internal::Supervised, 2>(*this, frame, site)
                     : internal::callFixed<internal::Unsupervised, 2>(*this, frame, site);
  if (!isSingleValue(result)) result = internal::firstOf(result);
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
