#pragma once

#include "lua/frontend/syntax_tree.h"

// How nodes are executed: through the functions chosen for them. An expression's value is owned by
// the caller.

namespace tarvel::lua::internal {

// Returns the statement's completion; also for an expression that stands as the statement which
// returns it, and for a block.
inline Value executeStatement(const Node* statement, Value* base) {
  return statement->execute(statement, base);
}

inline Value evaluateExpression(const Expr* expression, Value* base) {
  return expression->execute(expression, base);
}

// All values of a call: one, or a ReturnSignal completion.
inline Value evaluateExpressionMulti(const CallExpr* call, Value* base) {
  return call->executeMulti(call, base);
}

inline bool evaluateCondition(const Expr* condition, Value* base) {
  return condition->test(condition, base);
}

// In calls.cpp, for only calls have several values. Evaluates a list of one or more expressions
// into consecutive slots, the planned temporaries of the list. Only a call at the end contributes
// all its values. Returns the number of values.
std::uint32_t evaluateExpressionList(const ArenaList<Expr*>& expressions, Value* slots,
                                     Value* base);

}  // namespace tarvel::lua::internal
