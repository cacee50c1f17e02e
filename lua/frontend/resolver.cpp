#include "lua/frontend/resolver.h"

#include "lua/value/errors.h"
#include "lua/value/string_object.h"

namespace tarvel::lua::internal {

void Resolver::resolveChunk() {
  function_ = chunk_.main;
  resolveBlock(*chunk_.main->body, chunk_.main->parameters, false);
  findScalars();
}

// ---- Scopes -------------------------------------------------------------------------------------

LocalVariable* Resolver::declare(Name& name) {
  auto* const variable = chunk_.arena.make<LocalVariable>(name, function_);
  *nextOfScope_ = variable;
  nextOfScope_ = &variable->next;
  shadowed_.push_back({name, name.local});
  name.local = variable;
  return variable;
}

void Resolver::bind(VariableExpr& expression) {
  Name& name = *expression.name;
  if (LocalVariable* const variable = name.local) {
    expression.variable = variable;
    expression.home = VariableHome::Frame;
    if (variable->declaredIn != function_) variable->captured = true;
    return;
  }
  if (name.cell == nullptr) name.cell = &globals_.at(globals_.slotOf(name.text->view()));
  expression.cell = name.cell;
}

void Resolver::resolveBlock(Block& block, const ArenaList<Name*>& arriving, bool arrivingScalar) {
  LocalVariable** const nextOfOuter = nextOfScope_;
  const std::size_t firstShadowed = shadowed_.size();
  nextOfScope_ = &block.variables;
  for (Name* name : arriving) {
    LocalVariable* const variable = declare(*name);
    variable->arriving = true;
    variable->scalar = arrivingScalar;
  }
  resolveStatements(block.statements);
  for (; shadowed_.size() > firstShadowed; shadowed_.pop_back()) {
    shadowed_.back().name.local = shadowed_.back().local;
  }
  nextOfScope_ = nextOfOuter;
}

// ---- Statements ---------------------------------------------------------------------------------

void Resolver::resolveStatements(const ArenaList<Node*>& statements) {
  for (Node* statement : statements) resolveStatement(static_cast<Stmt&>(*statement));
}

void Resolver::resolveStatement(Stmt& statement) {
  switch (statement.kind) {
    case StmtKind::Expression:
      return resolveExpression(static_cast<ExpressionStmt&>(statement).expression);
    case StmtKind::Assignment:
      return resolveAssignment(static_cast<AssignmentStmt&>(statement));
    case StmtKind::FunctionDeclaration:
      return resolveFunctionDeclaration(static_cast<FunctionDeclarationStmt&>(statement));
    case StmtKind::If:
      return resolveIf(static_cast<IfStmt&>(statement));
    case StmtKind::While: {
      auto& loop = static_cast<WhileStmt&>(statement);
      resolveExpression(loop.condition);
      return resolveBlock(*loop.body, {}, false);
    }
    case StmtKind::NumericFor: {
      auto& loop = static_cast<NumericForStmt&>(statement);
      resolveExpression(loop.start);
      resolveExpression(loop.limit);
      resolveExpression(loop.step);
      return resolveBlock(*loop.body, {&loop.variable, 1}, true);
    }
    case StmtKind::GenericFor: {
      auto& loop = static_cast<GenericForStmt&>(statement);
      resolveExpressions(loop.iterators);
      return resolveBlock(*loop.body, loop.names, false);
    }
    case StmtKind::Return:
      return resolveExpressions(static_cast<ReturnStmt&>(statement).values);
    case StmtKind::Break:
      return;
  }
  unreachable("unable to resolve statement");
}

// The values are resolved before the names are declared, so in `local x = x` the right one is the
// outer x.
void Resolver::resolveAssignment(AssignmentStmt& statement) {
  resolveExpressions(statement.values);
  for (AssignTarget& target : statement.targets) {
    if (!statement.isLocal) {
      resolveTarget(target);
      noteAssigned(target);
      continue;
    }
    auto* const name = static_cast<VariableExpr*>(target.expression);
    declare(*name->name);
    bind(*name);
  }
  for (std::size_t i = 0; i < statement.targets.size; ++i)
    noteSource(statement.targets[i], statement.values, i);
}

// A local function's name is declared before its body, which can therefore call itself.
void Resolver::resolveFunctionDeclaration(FunctionDeclarationStmt& statement) {
  if (statement.isLocal) {
    auto* const name = static_cast<VariableExpr*>(statement.target.expression);
    declare(*name->name)->function = statement.function;
    bind(*name);
  } else {
    resolveTarget(statement.target);
    noteAssigned(statement.target);
  }
  if (LocalVariable* const variable = localOf(statement.target)) variable->scalar = false;
  resolveFunction(*statement.function);
}

void Resolver::resolveIf(IfStmt& statement) {
  for (IfStmt::Branch& branch : statement.branches) {
    resolveExpression(branch.condition);
    resolveBlock(*branch.body, {}, false);
  }
  if (statement.elseBody != nullptr) resolveBlock(*statement.elseBody, {}, false);
}

void Resolver::resolveTarget(AssignTarget& target) { resolveExpression(target.expression); }

// The local that the target is, once it is bound; null for anything else.
LocalVariable* Resolver::localOf(const AssignTarget& target) noexcept {
  if (target.expression->kind != ExprKind::Variable) return nullptr;
  return static_cast<VariableExpr*>(target.expression)->local();
}

void Resolver::noteAssigned(const AssignTarget& target) noexcept {
  if (LocalVariable* const variable = localOf(target)) variable->assigned = true;
}

// ---- Expressions --------------------------------------------------------------------------------

void Resolver::resolveExpressions(const ArenaList<Expr*>& expressions) {
  for (Expr* expression : expressions) resolveExpression(expression);
}

void Resolver::resolveExpression(Expr* expression) {
  if (expression == nullptr) return;
  switch (expression->kind) {
    case ExprKind::Literal:
      return;
    case ExprKind::Variable:
      return bind(static_cast<VariableExpr&>(*expression));
    case ExprKind::Unary:
      return resolveExpression(static_cast<UnaryExpr*>(expression)->operand);
    case ExprKind::Binary: {
      auto& binary = static_cast<BinaryExpr&>(*expression);
      resolveExpression(binary.left);
      return resolveExpression(binary.right);
    }
    case ExprKind::Concat:
      return resolveExpressions(static_cast<ConcatExpr*>(expression)->operands);
    case ExprKind::Table:
      for (TableExpr::Field& field : static_cast<TableExpr*>(expression)->fields) {
        resolveExpression(field.key);
        resolveExpression(field.value);
      }
      return;
    case ExprKind::Field:
      return resolveExpression(static_cast<FieldExpr*>(expression)->object);
    case ExprKind::Index: {
      auto& index = static_cast<IndexExpr&>(*expression);
      resolveExpression(index.object);
      return resolveExpression(index.key);
    }
    case ExprKind::Call: {
      auto& call = static_cast<CallExpr&>(*expression);
      resolveExpression(call.object != nullptr ? call.object : call.callee);
      return resolveExpressions(call.arguments);
    }
    case ExprKind::Function:
      return resolveFunction(static_cast<FunctionExpr&>(*expression));
  }
}

void Resolver::resolveFunction(FunctionExpr& function) {
  FunctionExpr* const enclosing = function_;
  function_ = &function;
  resolveBlock(*function.body, function.parameters, false);
  function_ = enclosing;
}

// ---- Scalars ------------------------------------------------------------------------------------

// Records what the target at `index` may receive from an expression list.
void Resolver::noteSource(const AssignTarget& target, const ArenaList<Expr*>& values,
                          std::size_t index) {
  LocalVariable* const variable = localOf(target);
  if (variable == nullptr) return;
  if (index < values.size) {
    sources_.push_back({variable, values[index]});
  } else if (!values.empty() && values[values.size - 1]->kind == ExprKind::Call) {
    variable->scalar = false;
  }
}

// Whether the value is certainly nil, a boolean or a number, as far as the locals in it still count
// as scalar.
bool Resolver::yieldsScalar(const Expr& expression) {
  switch (expression.kind) {
    case ExprKind::Literal:
      return !static_cast<const LiteralExpr&>(expression).value.isCounted();
    case ExprKind::Variable: {
      const LocalVariable* const variable = static_cast<const VariableExpr&>(expression).local();
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

// The locals whose being scalar decides whether the value is: those that it may be a copy of.
void Resolver::noteInputs(const Expr& expression, std::size_t source) {
  if (expression.kind == ExprKind::Variable) {
    LocalVariable* const variable = static_cast<const VariableExpr&>(expression).local();
    if (variable != nullptr) dependents_[variable].push_back(source);
  } else if (expression.kind == ExprKind::Binary) {
    const auto& binary = static_cast<const BinaryExpr&>(expression);
    if (binary.op == TokenKind::Or) noteInputs(*binary.left, source);
    if (binary.op == TokenKind::And || binary.op == TokenKind::Or) {
      noteInputs(*binary.right, source);
    }
  }
}

// Starts from the values that are not scalar whatever the locals hold, and follows the copies.
void Resolver::findScalars() {
  for (std::size_t i = 0; i < sources_.size(); ++i) noteInputs(*sources_[i].value, i);
  std::vector<const LocalVariable*> found;
  const auto examine = [&](const Source& source) {
    if (!source.variable->scalar || yieldsScalar(*source.value)) return;
    source.variable->scalar = false;
    found.push_back(source.variable);
  };
  for (const Source& source : sources_) examine(source);
  for (const auto& [variable, sources] : dependents_) {
    if (!variable->scalar) found.push_back(variable);
  }
  while (!found.empty()) {
    const auto dependents = dependents_.find(found.back());
    found.pop_back();
    if (dependents == dependents_.end()) continue;
    for (const std::size_t source : dependents->second) examine(sources_[source]);
  }
}

}  // namespace tarvel::lua::internal
