#pragma once

#include <utility>

#include "lua/evaluator/call_protocol.h"
#include "lua/evaluator/execute.h"

// The functions that a call node has, made from the one that gives all results of the call.

namespace tarvel::lua::internal {

inline const CallExpr* asCall(const Node* node) noexcept {
  return static_cast<const CallExpr*>(node);
}

// The completion that an error becomes.
[[gnu::cold]] Value keepFailure(LuaVM::Impl& interpreter, ProtectedRuntimeError&& error) noexcept;

// For whoever looks at the completion anyway: an error that comes up to here goes on as one, so
// that not every call on its way has to be unwound. Where a call is an operand, this would only
// mean to raise it again.
template <class Form>
Value allResults(const Node* node, Value* base) {
  try {
    return Form::template run<AllResults>(node, base);
  } catch (ProtectedRuntimeError& error) {
    return keepFailure(*node->interpreter, std::move(error));
  }
}

template <class Form>
Value oneResult(const Node* node, Value* base) {
  return Form::template run<OneResult>(node, base);
}

template <class Form>
bool testResult(const Node* node, Value* base) {
  const Value result = Form::template run<OneResult>(node, base);
  drop(result);
  return result.isTruthy();
}

template <class Form>
void chooseResults(CallExpr& call) {
  call.executeMulti = allResults<Form>;
  call.execute = oneResult<Form>;
  call.test = testResult<Form>;
}

// Chooses Form<Supervision, Count> for the call's number of arguments, from `Count` to `Most`;
// false when there are more.
template <class Supervision, template <class, std::uint32_t> class Form, std::uint32_t Most,
          std::uint32_t Count = 0>
bool chooseByCount(CallExpr& call) {
  if constexpr (Count > Most) {
    return false;
  } else {
    if (call.arguments.size != Count)
      return chooseByCount<Supervision, Form, Most, Count + 1>(call);
    chooseResults<Form<Supervision, Count>>(call);
    return true;
  }
}

template <std::uint32_t Count>
[[gnu::always_inline]] inline void evaluateArguments(const CallExpr* call, Value* first,
                                                     Value* base) {
  for (std::uint32_t i = 0; i < Count; ++i) {
    const Expr* const argument = call->arguments[i];
    first[i] = evaluateExpression(argument, base);
  }
}

// In library_calls.cpp. Where the callee is, as it looks now, a leaf function of a library: true,
// and the call has its functions.
bool chooseLibraryCall(CallExpr& call);

}  // namespace tarvel::lua::internal
