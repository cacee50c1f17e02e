#include "lua/evaluator/access_objects.h"
#include "lua/evaluator/execute.h"
#include "lua/evaluator/node_functions.h"
#include "lua/evaluator/operators.h"
#include "lua/evaluator/variables.h"
#include "lua/lua_vm_impl.h"
#include "lua/value/environment.h"
#include "lua/value/table.h"

// Literals, unary and logical operators, table constructors and function expressions.

namespace tarvel::lua::internal {

namespace {

// ---- Literals -----------------------------------------------------------------------------------

Value evaluateScalarLiteral(const Node* node, Value*) {
  return static_cast<const LiteralExpr*>(node)->value;
}

Value evaluateStringLiteral(const Node* node, Value*) {
  return retain(static_cast<const LiteralExpr*>(node)->value);
}

bool testLiteral(const Node* node, Value*) {
  return static_cast<const LiteralExpr*>(node)->value.isTruthy();
}

// ---- Unary operators ----------------------------------------------------------------------------

Value operandOf(const Node* node, Value* base) {
  const Expr* const operand = static_cast<const UnaryExpr*>(node)->operand;
  return evaluateExpression(operand, base);
}

bool testNot(const Node* node, Value* base) {
  const Expr* const operand = static_cast<const UnaryExpr*>(node)->operand;
  return !evaluateCondition(operand, base);
}

Value evaluateNot(const Node* node, Value* base) { return Value(testNot(node, base)); }

Value evaluateNegation(const Node* node, Value* base) {
  const OwnedValue operand(operandOf(node, base));
  return negateValue(operand.get(), node->site);
}

Value evaluateNegatedNumber(const Node* node, Value*) {
  return static_cast<const UnaryExpr*>(node)->constant;
}

void chooseNegation(UnaryExpr& unary) {
  unary.execute = evaluateNegation;
  if (!isLiteral(*unary.operand) || !literalValue(*unary.operand).isNumber()) return;
  unary.constant = negateValue(literalValue(*unary.operand), unary.site);
  unary.execute = evaluateNegatedNumber;
  unary.leaf = Leaf::Constant;
}

Value evaluateLength(const Node* node, Value* base) {
  const OwnedValue operand(operandOf(node, base));
  return lengthOf(operand.get(), node->site);
}

Value peekLength(const Node* node, Value* base) {
  const Expr* const operand = static_cast<const UnaryExpr*>(node)->operand;
  const Value value = operand->peek(operand, base);
  return value.isTable() || value.isString() ? lengthOf(value, node->site) : notPeeked();
}

Value evaluatePeekedLength(const Node* node, Value* base) {
  const auto* const length = static_cast<const UnaryExpr*>(node);
  const Value value = length->operand->peek(length->operand, base);
  if (isPeeked(value)) [[likely]]
    return lengthOf(value, node->site);
  return evaluateLengthOfPath(length, base);
}

// ---- Logical operators --------------------------------------------------------------------------

Value evaluateAnd(const Node* node, Value* base) {
  const auto* const logic = static_cast<const BinaryExpr*>(node);
  const Value left = evaluateExpression(logic->left, base);
  if (!left.isTruthy()) return left;
  drop(left);
  return evaluateExpression(logic->right, base);
}

Value evaluateOr(const Node* node, Value* base) {
  const auto* const logic = static_cast<const BinaryExpr*>(node);
  const Value left = evaluateExpression(logic->left, base);
  return left.isTruthy() ? left : evaluateExpression(logic->right, base);
}

bool testAnd(const Node* node, Value* base) {
  const auto* const logic = static_cast<const BinaryExpr*>(node);
  return evaluateCondition(logic->left, base) && evaluateCondition(logic->right, base);
}

bool testOr(const Node* node, Value* base) {
  const auto* const logic = static_cast<const BinaryExpr*>(node);
  return evaluateCondition(logic->left, base) || evaluateCondition(logic->right, base);
}

// ---- Table constructors -------------------------------------------------------------------------

Value valueOf(const TableExpr::Field& field, Value* base) {
  return field.isConstant() ? retain(field.constant()) : evaluateExpression(field.value, base);
}

// A key is checked before the field's value is evaluated. A computed string key is kept in a slot
// meanwhile.
void constructKeyedField(const TableExpr::Field& field, Value* temporaries, Value* base) {
  Value& keySlot = temporaries[1];
  keySlot = evaluateExpression(field.key, base);
  TableKey key;
  if (!tryMakeKeyFromValue(keySlot, key))
    failRuntime(field.site, "table keys must be numbers, strings, or booleans");
  tableSetByKey(*temporaries[0].table, key, valueOf(field, base));
  clearSlot(keySlot);
}

Value evaluateTable(const Node* node, Value* base) {
  const auto* const constructor = static_cast<const TableExpr*>(node);
  Value* const temporaries = &slotAt(base, constructor->temporariesOffset);
  Table* const table = Table::create(node->interpreter->heap, constructor->positionalCount,
                                     constructor->fields.size - constructor->positionalCount);
  temporaries[0] = Value(table);
  std::int64_t position = 0;
  for (const TableExpr::Field& field : constructor->fields) {
    if (field.kind == TableExpr::FieldKind::Positional) {
      table->setInteger(++position, valueOf(field, base));
    } else if (field.kind == TableExpr::FieldKind::Named) {
      const Value value = valueOf(field, base);
      tableSetByKey(*table, TableKey::ofString(field.name), value);
    } else {
      constructKeyedField(field, temporaries, base);
    }
  }
  temporaries[0] = Value();
  return Value(table);
}

Value evaluateEmptyTable(const Node* node, Value*) {
  return Value(Table::create(node->interpreter->heap));
}

// ---- Function expressions -----------------------------------------------------------------------

// Borrowed.
Value valueToCapture(const CaptureSource& source, Value* base) noexcept {
  switch (source.from) {
    case CaptureSource::From::Slot:
      return slotAt(base, source.place);
    case CaptureSource::From::Capture:
      return runningFunction(base)->captures()[source.place];
    case CaptureSource::From::RunningFunction:
      break;
  }
  return base[-1];
}

Value makeScriptFunction(const Node* node, Value* base) {
  const auto* const expression = static_cast<const FunctionExpr*>(node);
  const ArenaList<CaptureSource>& captures = expression->captures;
  FunctionObject* const function = FunctionObject::createClosure(
      node->interpreter->heap, expression, expression->chunk, expression->name, captures.size);
  bool isSound = true;
  for (std::uint32_t i = 0; i < captures.size; ++i) {
    const Value captured = valueToCapture(captures[i], base);
    isSound &= (captured.tag == kEnvironment) == captures[i].isEnvironment;
    new (&function->captures()[i]) Value(retain(captured));
  }
  if (isSound) [[likely]]
    return Value(function);
  // The planner gave the variable a home, and its declaration made it.
  drop(Value(function));
  unreachable("attempted to capture a non-owning TarvelLua environment");
}

}  // namespace

[[gnu::noinline]] Value evaluateLengthOfPath(const UnaryExpr* length, Value* base) {
  const OwnedValue operand(evaluatePath(length->operand, base));
  return lengthOf(operand.get(), length->site);
}

Value evaluateHolding(Value held, const Expr* expression, Value* base) {
  OwnedValue guard(held);
  const LandingBarrier barrier(expression->interpreter->landing);
  const Value value = evaluateExpression(expression, base);
  guard.take();
  return value;
}

bool testValue(const Node* node, Value* base) {
  const Value value = node->execute(node, base);
  const bool truth = value.isTruthy();
  drop(value);
  return truth;
}

void chooseLiteral(LiteralExpr& literal) {
  literal.execute = literal.value.isCounted() ? evaluateStringLiteral : evaluateScalarLiteral;
  literal.test = testLiteral;
  literal.leaf = Leaf::Constant;
}

void chooseUnary(UnaryExpr& unary) {
  unary.test = testValue;
  switch (unary.op) {
    case TokenKind::Not:
      unary.execute = evaluateNot;
      unary.test = testNot;
      return;
    case TokenKind::Hash:
      unary.execute = unary.peekable ? evaluatePeekedLength : evaluateLength;
      unary.peek = peekLength;
      return;
    case TokenKind::Minus:
      return chooseNegation(unary);
    default:
      unreachable("not a unary operator");
  }
}

void chooseLogic(BinaryExpr& logic) {
  const bool isAnd = logic.op == TokenKind::And;
  logic.execute = isAnd ? evaluateAnd : evaluateOr;
  logic.test = isAnd ? testAnd : testOr;
}

void chooseTable(TableExpr& table) {
  table.execute = table.fields.empty() ? evaluateEmptyTable : evaluateTable;
  table.test = testValue;
}

void chooseFunction(FunctionExpr& function) {
  function.execute = makeScriptFunction;
  function.test = testValue;
}

}  // namespace tarvel::lua::internal
