#include "lua/frontend/scalars.h"

namespace tarvel::lua::internal {

namespace {

const LocalVariable* localOf(const Expr& variable) {
  return static_cast<const VariableExpr&>(variable).local();
}

// Whether the value is certainly nil, a boolean or a number, as far as the locals in it still count
// as scalar.
bool yieldsScalar(const Expr& expression) {
  switch (expression.kind) {
    case ExprKind::Literal:
      return !static_cast<const LiteralExpr&>(expression).value.isCounted();
    case ExprKind::Variable: {
      const LocalVariable* const variable = localOf(expression);
      return variable != nullptr && variable->scalar;
    }
    case ExprKind::Unary:
      return true;
    case ExprKind::Binary: {
      const auto& binary = static_cast<const BinaryExpr&>(expression);
      if (binary.op == TokenKind::And)
        return yieldsScalar(*binary.right);  // a false left operand is nil or false
      if (binary.op == TokenKind::Or)
        return yieldsScalar(*binary.left) && yieldsScalar(*binary.right);
      return true;
    }
    default:
      return false;
  }
}

// Whether it may be a copy of a local, so that more has to be known.
bool maySelectLocal(const Expr& expression) {
  return expression.kind == ExprKind::Variable || expression.op == TokenKind::And ||
         expression.op == TokenKind::Or;
}

}  // namespace

void ScalarFinder::note(const AssignmentStmt& statement) {
  const ArenaList<Expr*>& values = statement.values;
  for (std::size_t i = 0; i < statement.targets.size; ++i) {
    const Expr& target = *statement.targets[i].expression;
    if (target.kind != ExprKind::Variable) continue;
    LocalVariable* const variable = static_cast<const VariableExpr&>(target).local();
    if (variable == nullptr || !variable->scalar) continue;
    if (i >= values.size) {
      const bool mayReceive = !values.empty() && values[values.size - 1]->kind == ExprKind::Call;
      if (mayReceive) variable->scalar = false;
    } else if (!yieldsScalar(*values[i])) {
      variable->scalar = false;
    } else if (maySelectLocal(*values[i])) {
      noteInputs(*values[i], sources_.size());
      sources_.push_back({variable, values[i]});
    }
  }
}

// The locals whose being scalar decides whether the value is: those that it may be a copy of.
void ScalarFinder::noteInputs(const Expr& expression, std::size_t source) {
  if (expression.kind == ExprKind::Variable) {
    const LocalVariable* const variable = localOf(expression);
    if (variable != nullptr) dependents_[variable].push_back(source);
  } else if (expression.kind == ExprKind::Binary) {
    const auto& binary = static_cast<const BinaryExpr&>(expression);
    if (binary.op == TokenKind::Or) noteInputs(*binary.left, source);
    if (binary.op == TokenKind::And || binary.op == TokenKind::Or) {
      noteInputs(*binary.right, source);
    }
  }
}

// Starts from the variables that are not scalar whatever the others hold, and follows the copies.
void ScalarFinder::finish() {
  std::vector<const LocalVariable*> found;
  for (const auto& [variable, sources] : dependents_) {
    if (!variable->scalar) found.push_back(variable);
  }
  while (!found.empty()) {
    const auto dependents = dependents_.find(found.back());
    found.pop_back();
    if (dependents == dependents_.end()) continue;
    for (const std::size_t index : dependents->second) {
      const Source& source = sources_[index];
      if (!source.variable->scalar || yieldsScalar(*source.value)) continue;
      source.variable->scalar = false;
      found.push_back(source.variable);
    }
  }
}

}  // namespace tarvel::lua::internal
