#include "lua/evaluator/execute.h"
#include "lua/evaluator/node_functions.h"
#include "lua/value/completion.h"

// The nodes of `if`, but for those that a comparison is fused into: comparisons.cpp has them.

namespace tarvel::lua::internal {

namespace {

Value executeIf(const Node* node, Value* base) {
  const auto* const statement = static_cast<const IfStmt*>(node);
  if (!evaluateCondition(statement->condition, base)) return normalCompletion();
  return executeStatement(statement->thenNode, base);
}

// `if not x`.
Value executeIfNot(const Node* node, Value* base) {
  const auto* const statement = static_cast<const IfStmt*>(node);
  if (evaluateCondition(statement->condition, base)) return normalCompletion();
  return executeStatement(statement->thenNode, base);
}

Value executeIfElse(const Node* node, Value* base) {
  const auto* const statement = static_cast<const IfStmt*>(node);
  const Node* const chosen = evaluateCondition(statement->condition, base)
                                 ? statement->thenNode
                                 : statement->otherwiseNode;
  return executeStatement(chosen, base);
}

// Many branches: each tested in turn, without taking more of the host's stack for each.
Value executeLadder(const Node* node, Value* base) {
  const auto* const statement = static_cast<const IfStmt*>(node);
  for (const IfStmt::Branch& branch : statement->branches) {
    if (!evaluateCondition(branch.condition, base)) continue;
    return executeStatement(branch.body, base);
  }
  const Node* const otherwise = statement->otherwiseNode;
  return otherwise == nullptr ? normalCompletion() : executeStatement(otherwise, base);
}

bool isNegation(const Expr& condition) noexcept {
  return condition.kind == ExprKind::Unary &&
         static_cast<const UnaryExpr&>(condition).op == TokenKind::Not;
}

}  // namespace

void chooseIf(IfStmt& statement) {
  if (chooseFusedIf(statement)) return;
  const bool hasElse = statement.otherwiseNode != nullptr;
  if (!hasElse && isNegation(*statement.condition)) {
    statement.condition = static_cast<const UnaryExpr&>(*statement.condition).operand;
    statement.execute = executeIfNot;
    return;
  }
  statement.execute = hasElse ? executeIfElse : executeIf;
}

void chooseLadder(IfStmt& statement) { statement.execute = executeLadder; }

}  // namespace tarvel::lua::internal
