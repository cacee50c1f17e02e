#include "lua/evaluator/frame_planner.h"

#include <algorithm>
#include <new>
#include <utility>

#include "lua/value/errors.h"
#include "lua/value/host_stack.h"
#include "lua/value/string_object.h"

namespace tarvel::lua::internal {

namespace {

constexpr std::uint32_t kMostFrameSlots = std::uint32_t{1} << 24;

SlotOffset offsetOf(std::uint32_t slot) {
  if (slot > kMostFrameSlots) throw std::bad_alloc();
  return slot * static_cast<SlotOffset>(sizeof(Value));
}

// What noting one capture takes of memory while a chunk is planned.
constexpr std::size_t kBytesPerCapture = 96;

// The function is the variable's value for as long as the variable can be seen.
bool isNamedBy(const FunctionExpr& function, const LocalVariable& variable) {
  return variable.function == &function && !variable.inEnvironment();
}

bool runsNothing(const Expr* expression) noexcept { return !expression->mayRunCode; }
bool isLiteral(const Expr* expression) noexcept { return expression->kind == ExprKind::Literal; }

// The operands of a chain with those of chains in parentheses that it starts with, as far as
// `(a .. b) .. c` may be done as `a .. b .. c`: what runs for c must not see that the value of b is
// given up later.
std::vector<Expr*> joinedOperands(const ConcatExpr& outermost) {
  std::vector<const ConcatExpr*> chains{&outermost};
  bool runsLater = false;
  while (chains.back()->operands[0]->kind == ExprKind::Concat) {
    const ArenaList<Expr*>& outer = chains.back()->operands;
    const auto* const chain = static_cast<const ConcatExpr*>(outer[0]);
    const ArenaList<Expr*>& inner = chain->operands;
    runsLater = runsLater || !std::all_of(outer.begin() + 1, outer.end(), runsNothing);
    if (runsLater && !std::all_of(inner.begin() + 1, inner.end(), isLiteral)) break;
    chains.push_back(chain);
  }
  std::vector<Expr*> operands{chains.back()->operands[0]};
  for (; !chains.empty(); chains.pop_back()) {
    const ArenaList<Expr*>& own = chains.back()->operands;
    operands.insert(operands.end(), own.begin() + 1, own.end());
  }
  return operands;
}

}  // namespace

std::uint32_t FramePlanner::planChunk() {
  planFunction(*chunk_.main);
  return largestFrame_;
}

void FramePlanner::planFunction(FunctionExpr& function) {
  OpenFunction open{&function, open_, {}, {}};
  open_ = &open;
  function.parameterCount = function.parameters.size;
  planBlock(*function.body, 0);
  function.captures = chunk_.arena.list(open.captures);
  function.releaseEnd = function.body->releaseEnd;
  function.frameBytes = offsetOf(open.frameSlots + 1);
  function.stackBytes = stack_cost::kCall + function.nesting * stack_cost::kTreeLevel;
  largestFrame_ = std::max(largestFrame_, open.frameSlots + 1);
  open_ = open.enclosing;
}

// ---- Statements ---------------------------------------------------------------------------------

void FramePlanner::planBlock(Block& block, Top top) {
  for (LocalVariable* variable = block.variables; variable != nullptr && variable->arriving;
       variable = variable->next) {
    top = declare(*variable, top);
  }
  use(top);
  for (Node* statement : block.statements) {
    top = planStatement(static_cast<Stmt&>(*statement), top);
  }
  planRelease(block);
}

// The slots from the first to the last that may own something when the block ends.
void FramePlanner::planRelease(Block& block) {
  const auto include = [&](SlotOffset offset) {
    const bool isFirst = block.releaseEnd == 0;
    block.releaseOffset = isFirst ? offset : std::min(block.releaseOffset, offset);
    block.releaseEnd = std::max(block.releaseEnd, offset + static_cast<SlotOffset>(sizeof(Value)));
  };
  for (const LocalVariable* variable = block.variables; variable != nullptr;
       variable = variable->next) {
    if (variable->inEnvironment() || !variable->scalar) include(variable->offset);
  }
}

FramePlanner::Top FramePlanner::declare(LocalVariable& variable, Top top) {
  variable.offset = offsetOf(top);
  use(top + 1);
  return top + 1;
}

FramePlanner::Top FramePlanner::planStatement(Stmt& statement, Top top) {
  switch (statement.kind) {
    case StmtKind::Expression:
      planExpression(static_cast<ExpressionStmt&>(statement).expression, top);
      return top;
    case StmtKind::Assignment:
      return planAssignment(static_cast<AssignmentStmt&>(statement), top);
    case StmtKind::FunctionDeclaration:
      return planFunctionDeclaration(static_cast<FunctionDeclarationStmt&>(statement), top);
    case StmtKind::If:
      planIf(static_cast<IfStmt&>(statement), top);
      return top;
    case StmtKind::While: {
      auto& loop = static_cast<WhileStmt&>(statement);
      planExpression(loop.condition, top);
      planBlock(*loop.body, top);
      return top;
    }
    case StmtKind::NumericFor:
      planNumericFor(static_cast<NumericForStmt&>(statement), top);
      return top;
    case StmtKind::GenericFor:
      planGenericFor(static_cast<GenericForStmt&>(statement), top);
      return top;
    case StmtKind::Return: {
      auto& result = static_cast<ReturnStmt&>(statement);
      result.temporariesOffset = offsetOf(top);
      planList(result.values, top);
      return top;
    }
    case StmtKind::Break:
      return top;
  }
  unreachable("no frame for a statement of this kind");
}

FramePlanner::Top FramePlanner::planAssignment(AssignmentStmt& statement, Top top) {
  statement.temporariesOffset = offsetOf(top);
  planList(statement.values, top);
  const Top afterValues = top + std::max(statement.values.size, statement.targets.size);
  use(afterValues);
  Top next = top;
  for (AssignTarget& target : statement.targets) {
    if (statement.isLocal) {
      auto& name = static_cast<VariableExpr&>(*target.expression);
      next = declare(*name.variable, next);
      planVariable(name);
    } else {
      planTarget(*target.expression, afterValues);
    }
  }
  return next;
}

FramePlanner::Top FramePlanner::planFunctionDeclaration(FunctionDeclarationStmt& statement,
                                                        Top top) {
  if (statement.isLocal)
    top = declare(*static_cast<VariableExpr&>(*statement.target.expression).variable, top);
  planTarget(*statement.target.expression, top);
  planFunction(*statement.function);
  return top;
}

// A field or index target uses up to three temporaries: the value while the target is evaluated,
// the object, the key.
void FramePlanner::planTarget(Expr& target, Top top) {
  use(top + 3);
  if (target.kind == ExprKind::Variable) {
    planVariable(static_cast<VariableExpr&>(target));
  } else if (target.kind == ExprKind::Field) {
    auto& field = static_cast<FieldExpr&>(target);
    planExpression(field.object, top + 1);
    field.temporariesOffset = offsetOf(top);
  } else {
    auto& index = static_cast<IndexExpr&>(target);
    planExpression(index.object, top + 1);
    planExpression(index.key, top + 2);
    index.temporariesOffset = offsetOf(top);
  }
}

void FramePlanner::planIf(IfStmt& statement, Top top) {
  for (IfStmt::Branch& branch : statement.branches) {
    planExpression(branch.condition, top);
    planBlock(*branch.body, top);
  }
  if (statement.elseBody != nullptr) planBlock(*statement.elseBody, top);
}

void FramePlanner::planNumericFor(NumericForStmt& loop, Top top) {
  planExpression(loop.start, top);
  planExpression(loop.limit, top);
  planExpression(loop.step, top);
  loop.variableOffset = offsetOf(top);
  planBlock(*loop.body, top);
}

void FramePlanner::planGenericFor(GenericForStmt& loop, Top top) {
  loop.iteratorOffset = offsetOf(top);
  planList(loop.iterators, top);
  use(top + 1);
  loop.firstNameOffset = offsetOf(top + 1);
  planBlock(*loop.body, top + 1);
}

// ---- Expressions --------------------------------------------------------------------------------

// The values of a list stand in consecutive slots until all are there.
void FramePlanner::planList(const ArenaList<Expr*>& expressions, Top top) {
  use(top + expressions.size);
  for (std::uint32_t i = 0; i < expressions.size; ++i) planExpression(expressions[i], top + i);
}

void FramePlanner::planExpression(Expr* expression, Top top) {
  if (expression == nullptr) return;
  use(top + 1);
  switch (expression->kind) {
    case ExprKind::Literal:
      return;
    case ExprKind::Variable:
      return planVariable(static_cast<VariableExpr&>(*expression));
    case ExprKind::Unary:
      return planUnary(static_cast<UnaryExpr&>(*expression), top);
    case ExprKind::Binary: {
      auto& binary = static_cast<BinaryExpr&>(*expression);
      planExpression(binary.left, top);
      return planExpression(binary.right, top);
    }
    case ExprKind::Concat:
      return planConcat(static_cast<ConcatExpr&>(*expression), top);
    case ExprKind::Table:
      return planTable(static_cast<TableExpr&>(*expression), top);
    case ExprKind::Field: {
      auto& field = static_cast<FieldExpr&>(*expression);
      planExpression(field.object, top);
      field.peekable = field.object->peekable;
      return;
    }
    case ExprKind::Index: {
      auto& index = static_cast<IndexExpr&>(*expression);
      index.temporariesOffset = offsetOf(top);
      planExpression(index.object, top);
      planExpression(index.key, top + 1);
      index.peekable = index.object->peekable && (index.key->peekable || !index.key->mayRunCode);
      return;
    }
    case ExprKind::Call:
      return planCall(static_cast<CallExpr&>(*expression), top);
    case ExprKind::Function:
      return planFunction(static_cast<FunctionExpr&>(*expression));
  }
}

void FramePlanner::planConcat(ConcatExpr& concat, Top top) {
  if (concat.operands[0]->kind == ExprKind::Concat)
    concat.operands = chunk_.arena.list(joinedOperands(concat));
  concat.temporariesOffset = offsetOf(top);
  planList(concat.operands, top);
}

void FramePlanner::planUnary(UnaryExpr& unary, Top top) {
  planExpression(unary.operand, top);
  unary.peekable = unary.op == TokenKind::Hash && unary.operand->peekable;
}

void FramePlanner::planTable(TableExpr& table, Top top) {
  table.temporariesOffset = offsetOf(top);
  use(top + 2);
  for (TableExpr::Field& field : table.fields) {
    const bool isKeyed = field.kind == TableExpr::FieldKind::Keyed;
    if (isKeyed) planExpression(field.key, top + 1);
    if (!field.isConstant()) planExpression(field.value, isKeyed ? top + 2 : top + 1);
  }
}

void FramePlanner::planCall(CallExpr& call, Top top) {
  call.frameOffset = offsetOf(top);
  const Top firstArgument = call.object != nullptr ? top + 2 : top + 1;
  // A receiver stands in its argument's slot before the method is looked up.
  planExpression(call.object != nullptr ? call.object : call.callee,
                 call.object != nullptr ? top + 1 : top);
  use(firstArgument);
  planList(call.arguments, firstArgument);
}

void FramePlanner::planVariable(VariableExpr& expression) {
  if (expression.peekable) return;  // another mention
  expression.peekable = true;
  const LocalVariable* const variable = expression.local();
  if (variable == nullptr) {
    expression.cell = &globals_.at(globals_.slotOf(expression.name->text->view()));
    return;
  }
  if (variable->declaredIn == open_->function) {
    expression.home =
        variable->inEnvironment() ? VariableHome::OwnEnvironment : VariableHome::Frame;
    expression.offset = variable->offset;
  } else if (isNamedBy(*open_->function, *variable)) {
    expression.home = VariableHome::RunningFunction;
  } else {
    expression.home =
        variable->inEnvironment() ? VariableHome::CapturedEnvironment : VariableHome::CapturedValue;
    expression.captureIndex = captureIndex(*open_, *variable);
  }
}

// ---- Captures -----------------------------------------------------------------------------------

// The place of a variable of an outer function among what `open` captures.
std::uint32_t FramePlanner::captureIndex(OpenFunction& open, const LocalVariable& variable) {
  if (const auto known = open.captureIndices.find(&variable); known != open.captureIndices.end()) {
    return known->second;
  }
  memory_.add(kBytesPerCapture);
  const CaptureSource source = captureSource(*open.enclosing, variable);
  const auto index = static_cast<std::uint32_t>(open.captures.size());
  open.captures.push_back(source);
  open.captureIndices.emplace(&variable, index);
  return index;
}

// Where `maker` finds a variable for a closure that it makes. A function between the variable's own
// and the one that names it has to capture it, too.
CaptureSource FramePlanner::captureSource(OpenFunction& maker, const LocalVariable& variable) {
  using From = CaptureSource::From;
  const bool isEnvironment = variable.inEnvironment();
  if (variable.declaredIn == maker.function) {
    return {From::Slot, isEnvironment, variable.offset};
  }
  if (isNamedBy(*maker.function, variable)) return {From::RunningFunction, false, 0};
  return {From::Capture, isEnvironment, captureIndex(maker, variable)};
}

}  // namespace tarvel::lua::internal
