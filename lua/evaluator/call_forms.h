#pragma once

#include "lua/evaluator/call_protocol.h"
#include "lua/evaluator/execute.h"

// The functions that a call node has, made from the one that gives all results of the call.

namespace tarvel::lua::internal {

inline const CallExpr* asCall(const Node* node) noexcept {
  return static_cast<const CallExpr*>(node);
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
void chooseResults(CallExpr& call) {
  call.executeMulti = Multi;
  call.execute = singleResult<Multi>;
  call.test = testResult<Multi>;
}

// Chooses `Form<Supervision, Count>::run` for the call's number of arguments, up to `kMostCounted`.
constexpr std::uint32_t kMostCounted = 4;
template <class Supervision, template <class, std::uint32_t> class Form, std::uint32_t Count = 0>
void chooseByCount(CallExpr& call) {
  if (call.arguments.size == Count) return chooseResults<Form<Supervision, Count>::run>(call);
  if constexpr (Count < kMostCounted) chooseByCount<Supervision, Form, Count + 1>(call);
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
