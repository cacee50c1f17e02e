#include "lua/evaluator/call_protocol.h"
#include "lua/evaluator/execute.h"
#include "lua/evaluator/node_functions.h"
#include "lua/lua_vm_impl.h"

// What looks at all results of a call: the call as a statement, as the value of a variable of the
// frame, and as the last of a list. The first two hand a failure on.

namespace tarvel::lua::internal {

namespace {

[[gnu::noinline]] Value discard(LuaVM::Impl& interpreter, Value result) {
  if (isFailed(result)) return result;
  drop(firstOf(interpreter, result));
  return normalCompletion();
}

Value executeCallStatement(const Node* node, Value* base) {
  const CallExpr* const call = static_cast<const ExpressionStmt*>(node)->expression;
  const Value result = evaluateExpressionMulti(call, base);
  if (!isSingleValue(result)) [[unlikely]]
    return isFailedOrSeveral(result) ? discard(*node->interpreter, result) : normalCompletion();
  drop(result);
  return normalCompletion();
}

// The slot is above the live locals, or holds a scalar, where `OwnsNothing`.
template <bool OwnsNothing>
Value storeCall(const Node* node, Value* base) {
  const auto* const statement = static_cast<const AssignmentStmt*>(node);
  Value value = evaluateExpressionMulti(static_cast<const CallExpr*>(statement->value), base);
  if (!isSingleValue(value)) [[unlikely]] {
    if (isFailed(value)) return value;
    value = firstOf(*node->interpreter, value);
  }
  Value& slot = slotAt(base, statement->targetOffset);
  if constexpr (OwnsNothing) {
    slot = value;
  } else {
    replaceSlot(slot, value);
  }
  return normalCompletion();
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
  } else if (isFailed(result)) {
    last->interpreter->raisePending();
  }
  return count;
}

void chooseCallStatement(ExpressionStmt& statement) { statement.execute = executeCallStatement; }

bool chooseCallStore(AssignmentStmt& statement, bool ownsNothing) {
  if (statement.value->kind != ExprKind::Call) return false;
  statement.execute = ownsNothing ? storeCall<true> : storeCall<false>;
  return true;
}

}  // namespace tarvel::lua::internal
