#include "lua/evaluator/call_forms.h"
#include "lua/evaluator/node_functions.h"
#include "lua/lua_vm_impl.h"
#include "lua/value/table.h"

// Calls of what is a leaf function when the script is loaded: `library.function(...)` with the
// library in a global, and global functions. Each call looks at what the name stands for now, and
// where that is something else goes the ordinary way.

namespace tarvel::lua::internal {

namespace {

// ---- The callee, borrowed; nil where the library is no table ------------------------------------

const Value& libraryOf(const FieldExpr& field) noexcept {
  return *static_cast<const VariableExpr*>(field.object)->cell;
}

struct MemberCallee {
  static Value find(const CallExpr* call) noexcept {
    const auto& field = static_cast<const FieldExpr&>(*call->callee);
    const Value library = libraryOf(field);
    return library.tag == kTable ? library.table->getString(field.name, field.hint) : Value();
  }
};

struct GlobalCallee {
  static Value find(const CallExpr* call) noexcept {
    return *static_cast<const VariableExpr*>(call->callee)->cell;
  }
};

const NativeCode* nativeCodeOf(Value callee) noexcept {
  if (callee.tag != kFunction || callee.function->body != nullptr) return nullptr;
  return internal::nativeCodeOf(callee.function);
}

// ---- Any number of arguments --------------------------------------------------------------------

template <class Supervision, std::uint32_t Count>
[[gnu::noinline]] Value callOrdinarily(const Node* node, Value* base) {
  const CallExpr* const call = asCall(node);
  Value* const frame = &slotAt(base, call->frameOffset);
  frame[0] = evaluateExpression(call->callee, base);
  evaluateArguments<Count>(call, frame + 1, base);
  Supervision::step(call->interpreter->heap.meter(), call->site);
  return callAny<Supervision>(*call->interpreter, frame, Count, call->site);
}

template <class Callee>
struct LeafCall {
  template <class Supervision, std::uint32_t Count>
  struct Of {
    template <class Results>
    [[gnu::always_inline]] static inline Value run(const Node* node, Value* base) {
      const CallExpr* const call = asCall(node);
      const Value callee = Callee::find(call);
      const NativeCode* const code = nativeCodeOf(callee);
      if (code == nullptr || code->leaf == nullptr) [[unlikely]]
        return Results::of(*node->interpreter, callOrdinarily<Supervision, Count>(node, base));
      const LeafFunction leaf = code->leaf;
      Value* const frame = &slotAt(base, call->frameOffset);
      // An argument may give the name another value, and this call is still of the old one.
      frame[0] = callee;
      ++callee.function->count;
      evaluateArguments<Count>(call, frame + 1, base);
      Supervision::step(call->interpreter->heap.meter(), call->site);
      return callLeaf<Supervision>(call->interpreter->self, leaf, frame, Count, call->site);
    }
  };
};

// ---- One argument, which needs no slot ----------------------------------------------------------

// The general form of a call whose callee and argument are known, both owned, and which has been
// counted.
template <class Supervision>
[[gnu::noinline]] Value callLeafInFrame(const CallExpr* call, Value* base, Value callee,
                                        Value argument) {
  Value* const frame = &slotAt(base, call->frameOffset);
  frame[0] = callee;
  frame[1] = argument;
  return callLeaf<Supervision>(call->interpreter->self, nativeCodeOf(callee)->leaf, frame, 1,
                               call->site);
}

template <class Callee>
UnaryFunction findUnary(const CallExpr* call, Value& callee) noexcept {
  callee = Callee::find(call);
  const NativeCode* const code = nativeCodeOf(callee);
  return code == nullptr ? nullptr : code->unary;
}

// The call where the callee has no short form.
template <class Supervision, class Callee, class Results>
[[gnu::noinline]] Value callWithoutShortForm(const Node* node, Value* base) {
  return LeafCall<Callee>::template Of<Supervision, 1>::template run<Results>(node, base);
}

// Nothing can release callee and argument meanwhile.
template <class Supervision, class Callee>
struct CallWithFrameVariable {
  template <class Results>
  [[gnu::always_inline]] static inline Value run(const Node* node, Value* base) {
    const CallExpr* const call = asCall(node);
    Value callee;
    const UnaryFunction unary = findUnary<Callee>(call, callee);
    if (unary == nullptr) [[unlikely]]
      return callWithoutShortForm<Supervision, Callee, Results>(node, base);
    const Value argument = slotAt(base, frameOffsetOf(*call->arguments[0]));
    Supervision::step(call->interpreter->heap.meter(), call->site);
    const Value result = unary(*call->interpreter, argument);
    if (result.tag != kNotAnswered) [[likely]]
      return result;
    return callLeafInFrame<Supervision>(call, base, retain(callee), retain(argument));
  }
};

// An argument that is counted goes into a slot, where an error finds it.
template <class Supervision, class Callee>
struct CallWithOneArgument {
  template <class Results>
  [[gnu::always_inline]] static inline Value run(const Node* node, Value* base) {
    const CallExpr* const call = asCall(node);
    Value callee;
    const UnaryFunction unary = findUnary<Callee>(call, callee);
    if (unary == nullptr) [[unlikely]]
      return callWithoutShortForm<Supervision, Callee, Results>(node, base);
    Value& calleeSlot = slotAt(base, call->frameOffset);
    calleeSlot = callee;
    ++callee.function->count;
    const Value argument = evaluateExpression(call->arguments[0], base);
    if (argument.isCounted()) [[unlikely]] {
      (&calleeSlot)[1] = argument;
      Supervision::step(call->interpreter->heap.meter(), call->site);
    } else {
      Supervision::step(call->interpreter->heap.meter(), call->site);
      const Value result = unary(*call->interpreter, argument);
      if (result.tag != kNotAnswered) [[likely]] {
        clearSlot(calleeSlot);
        return result;
      }
    }
    return callLeafInFrame<Supervision>(call, base, calleeSlot, argument);
  }
};

// ---- Choosing -----------------------------------------------------------------------------------

constexpr std::uint32_t kMostOfLibrary = 4;  // arguments that have a node function of their own

template <class Supervision, class Callee>
bool chooseForm(CallExpr& call, const NativeCode& code) {
  if (code.unary == nullptr || call.arguments.size != 1)
    return chooseByCount<Supervision, LeafCall<Callee>::template Of, kMostOfLibrary>(call);
  if (isFrameVariable(*call.arguments[0])) {
    chooseResults<CallWithFrameVariable<Supervision, Callee>>(call);
  } else {
    chooseResults<CallWithOneArgument<Supervision, Callee>>(call);
  }
  return true;
}

template <class Callee>
bool chooseWithCallee(CallExpr& call) {
  const NativeCode* const code = nativeCodeOf(Callee::find(&call));
  if (code == nullptr || code->leaf == nullptr) return false;
  return call.interpreter->options.supervised ? chooseForm<Supervised, Callee>(call, *code)
                                              : chooseForm<Unsupervised, Callee>(call, *code);
}

bool isGlobal(const Expr& expression) noexcept {
  return expression.kind == ExprKind::Variable &&
         static_cast<const VariableExpr&>(expression).home == VariableHome::Global;
}

}  // namespace

bool chooseLibraryCall(CallExpr& call) {
  if (isGlobal(*call.callee)) return chooseWithCallee<GlobalCallee>(call);
  if (call.callee->kind != ExprKind::Field) return false;
  if (!isGlobal(*static_cast<const FieldExpr&>(*call.callee).object)) return false;
  return chooseWithCallee<MemberCallee>(call);
}

}  // namespace tarvel::lua::internal
