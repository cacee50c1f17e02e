#include "lua/evaluator/assignments.h"

#include <cassert>
#include <string>

#include "lua/evaluator/access_objects.h"
#include "lua/evaluator/execute.h"
#include "lua/evaluator/native_access.h"
#include "lua/evaluator/node_functions.h"
#include "lua/evaluator/variables.h"
#include "lua/lua_vm_impl.h"
#include "lua/value/completion.h"
#include "lua/value/table.h"

// Assignments, local declarations and function declarations. All values are evaluated first, then
// each target in turn receives its own: the object, the check that it is a table, the key.

namespace tarvel::lua::internal {

namespace {

[[noreturn, gnu::noinline]] void failTableIndex(Site site) {
  failRuntime(site, "table index must be a number, string, or boolean");
}

// ---- Storing into one target, whatever it is ----------------------------------------------------

// Each takes the value from a slot that owns it, which an error leaves to the sweep. `node` is the
// statement.

[[gnu::noinline]] void storeIntoNative(const Node* node, const Value& object, StringObject* name,
                                       std::uint32_t& hint, Value& valueSlot, Value* base) {
  assignNativeField(node, *object.native, name, hint, valueSlot, base);
  clearSlot(valueSlot);
}

void storeIntoField(const Node* node, const FieldExpr* field, Value& valueSlot, Value* base) {
  Value& objectSlot = slotAt(base, field->temporariesOffset + sizeof(Value));
  objectSlot = evaluateExpression(field->object, base);
  if (objectSlot.isTable()) {
    const Value value = valueSlot;
    valueSlot = Value();
    objectSlot.table->setString(field->name, value, field->hint);
  } else {
    requireAssignable(objectSlot, node->site);
    storeIntoNative(node, objectSlot, field->name, field->hint, valueSlot, base);
  }
  clearSlot(objectSlot);
}

void storeIntoIndex(const Node* node, const IndexExpr* index, Value& valueSlot, Value* base) {
  Value& objectSlot = slotAt(base, index->temporariesOffset + sizeof(Value));
  objectSlot = evaluateExpression(index->object, base);
  if (!objectSlot.isTable()) requireAssignable(objectSlot, node->site);
  const OwnedValue keyValue(evaluateExpression(index->key, base));
  if (objectSlot.isTable()) {
    TableKey key;
    if (!tryMakeKeyFromValue(keyValue.get(), key)) failTableIndex(node->site);
    const Value value = valueSlot;
    valueSlot = Value();
    tableSetByKey(*objectSlot.table, key, value);
  } else {
    if (!keyValue.get().isString()) failRuntime(node->site, "userdata fields must be strings");
    std::uint32_t hint = 0;
    storeIntoNative(node, objectSlot, keyValue.get().string, hint, valueSlot, base);
  }
  clearSlot(objectSlot);
}

void assignTarget(const Node* node, const AssignTarget& target, Value& valueSlot, Value* base) {
  switch (target.expression->kind) {
    case ExprKind::Field:
      return storeIntoField(node, static_cast<const FieldExpr*>(target.expression), valueSlot,
                            base);
    case ExprKind::Index:
      return storeIntoIndex(node, static_cast<const IndexExpr*>(target.expression), valueSlot,
                            base);
    default: {
      Value& variable = variableSlot(static_cast<const VariableExpr*>(target.expression), base);
      if (&variable == &valueSlot) return;
      const Value value = valueSlot;
      valueSlot = Value();
      replaceSlot(variable, value);
      return;
    }
  }
}

Value singleValue(const Node* node, Value* base) {
  const Expr* const value = asAssignment(node)->value;
  return evaluateExpression(value, base);
}

}  // namespace

// The slot is above the live locals or holds a scalar: nothing to release.
Value storeScalarLocal(const Node* node, Value* base) {
  const Value value = singleValue(node, base);
  slotAt(base, asAssignment(node)->targetOffset) = value;
  return normalCompletion();
}

Value storeLocal(const Node* node, Value* base) {
  const Value value = singleValue(node, base);
  replaceSlot(slotAt(base, asAssignment(node)->targetOffset), value);
  return normalCompletion();
}

// Takes over the value. Also for an object that is no table.
[[gnu::noinline]] Value storeInTarget(const Node* node, Value* base, Value value) {
  const AssignmentStmt* const statement = asAssignment(node);
  Value& slot = slotAt(base, statement->temporariesOffset);
  slot = value;
  assignTarget(node, statement->targets[0], slot, base);
  return normalCompletion();
}

[[gnu::noinline]] void storeUnderKey(Table& table, Value ownedKey, Value value, Site site) {
  const OwnedValue keyGuard(ownedKey);
  OwnedValue valueGuard(value);
  TableKey key;
  if (!tryMakeKeyFromValue(ownedKey, key)) failTableIndex(site);
  tableSetByKey(table, key, valueGuard.take());
}

namespace {

// ---- One variable -------------------------------------------------------------------------------

Value storeGlobal(const Node* node, Value* base) {
  const Value value = singleValue(node, base);
  replaceSlot(*static_cast<const VariableExpr*>(asAssignment(node)->targets[0].expression)->cell,
              value);
  return normalCompletion();
}

Value storeVariable(const Node* node, Value* base) {
  const Value value = singleValue(node, base);
  replaceSlot(
      variableSlot(static_cast<const VariableExpr*>(asAssignment(node)->targets[0].expression),
                   base),
      value);
  return normalCompletion();
}

// ---- One field or element, of an object that a variable holds -----------------------------------

template <class Access>
const Access* onlyTarget(const Node* node) noexcept {
  return static_cast<const Access*>(asAssignment(node)->targets[0].expression);
}

Value storeField(const Node* node, Value* base) {
  const Value value = singleValue(node, base);
  const auto* const target = onlyTarget<FieldExpr>(node);
  const Value object = VariableObject::load(target, base);
  if (object.tag != kTable) [[unlikely]]
    return storeInTarget(node, base, value);
  object.table->setString(target->name, value, target->hint);
  return normalCompletion();
}

// The object cannot change while the key is evaluated, or is kept in a slot. A value that owns
// something waits in another, where an error finds it.
template <class Object, bool KeepsObject>
inline Value storeElementOf(const Node* node, Value* base) {
  const Value value = singleValue(node, base);
  const auto* const target = onlyTarget<IndexExpr>(node);
  const Value object = Object::load(target, base);
  if (object.tag != kTable) [[unlikely]]
    return storeInTarget(node, base, value);
  Value& waiting = slotAt(base, target->temporariesOffset);
  Value& kept = *(&waiting + 1);
  waiting = value;
  if constexpr (KeepsObject) kept = retain(object);
  const Value key = evaluateExpression(target->key, base);
  waiting = Value();
  if (key.tag == kInteger) [[likely]] {
    object.table->setInteger(key.integer, value);
  } else {
    storeUnderKey(*object.table, key, value, node->site);
  }
  if constexpr (KeepsObject) clearSlot(kept);
  return normalCompletion();
}

template <class Object>
Value storeElement(const Node* node, Value* base) {
  return storeElementOf<Object, false>(node, base);
}

Value storeElementKeepingObject(const Node* node, Value* base) {
  return storeElementOf<VariableObject, true>(node, base);
}

// Any other single target.
Value storeAnywhere(const Node* node, Value* base) {
  const Value value = singleValue(node, base);
  return storeInTarget(node, base, value);
}

// ---- Several values or targets ------------------------------------------------------------------

// Evaluates the values into consecutive slots: as many as there are targets, or more where values
// are surplus. Returns the number of slots used.
std::uint32_t evaluateValues(const AssignmentStmt* statement, Value* slots, Value* base) {
  std::uint32_t count = evaluateExpressionList(statement->values, slots, base);
  while (count < statement->targets.size) slots[count++] = Value();
  return count;
}

}  // namespace

Value assignSeveral(const Node* node, Value* base) {
  const AssignmentStmt* const statement = asAssignment(node);
  Value* const slots = &slotAt(base, statement->temporariesOffset);
  const std::uint32_t count = evaluateValues(statement, slots, base);
  // The targets' temporaries start where the surplus values stand.
  clearSlots(slots + statement->targets.size, slots + count);
  for (std::uint32_t i = 0; i < statement->targets.size; ++i) {
    assignTarget(node, statement->targets[i], slots[i], base);
  }
  return normalCompletion();
}

namespace {

// As many values as targets, which are frame variables.
Value assignLocals(const Node* node, Value* base) {
  const AssignmentStmt* const statement = asAssignment(node);
  Value* const slots = &slotAt(base, statement->temporariesOffset);
  const std::uint32_t count = statement->targets.size;
  for (std::uint32_t i = 0; i < count; ++i) {
    slots[i] = evaluateExpression(statement->values[i], base);
  }
  for (std::uint32_t i = 0; i < count; ++i) {
    const Value value = slots[i];
    slots[i] = Value();
    replaceSlot(slotAt(base, frameOffsetOf(*statement->targets[i].expression)), value);
  }
  return normalCompletion();
}

// ---- Declarations -------------------------------------------------------------------------------

// The values of a declaration are evaluated where the locals will live: in slots above the live
// locals, which own nothing yet.

Value declareNil(const Node* node, Value* base) {
  const AssignmentStmt* const statement = asAssignment(node);
  Value* const slots = &slotAt(base, statement->temporariesOffset);
  for (std::uint32_t i = 0; i < statement->targets.size; ++i) slots[i] = Value();
  return normalCompletion();
}

Value declareSeveral(const Node* node, Value* base) {
  const AssignmentStmt* const statement = asAssignment(node);
  Value* const slots = &slotAt(base, statement->temporariesOffset);
  const std::uint32_t count = evaluateValues(statement, slots, base);
  clearSlots(slots + statement->targets.size, slots + count);
  return normalCompletion();
}

// Any declaration of which some locals live in environments.
template <NodeFunction Declare>
Value declareShared(const Node* node, Value* base) {
  Declare(node, base);
  for (const AssignTarget& target : asAssignment(node)->targets) {
    const auto& name = static_cast<const VariableExpr&>(*target.expression);
    if (name.home == VariableHome::OwnEnvironment) {
      moveToEnvironment(node->interpreter->heap, slotAt(base, name.offset));
    }
  }
  return normalCompletion();
}

const VariableExpr* declaredVariable(const Node* node) noexcept {
  const auto* const statement = static_cast<const FunctionDeclarationStmt*>(node);
  return static_cast<const VariableExpr*>(statement->target.expression);
}

Value makeDeclaredFunction(const Node* node, Value* base) {
  const Expr* const function = static_cast<const FunctionDeclarationStmt*>(node)->function;
  return evaluateExpression(function, base);
}

Value declareFunction(const Node* node, Value* base) {
  const Value function = makeDeclaredFunction(node, base);
  slotAt(base, declaredVariable(node)->offset) = function;
  return normalCompletion();
}

// The function may capture its own name, which therefore gets its home first.
Value declareSharedFunction(const Node* node, Value* base) {
  Value& slot = slotAt(base, declaredVariable(node)->offset);
  slot = Value();
  moveToEnvironment(node->interpreter->heap, slot);
  const Value function = makeDeclaredFunction(node, base);
  slot.environment->slot = function;
  return normalCompletion();
}

// `function f`, where f is a global or a local that was declared before.
Value storeFunctionInVariable(const Node* node, Value* base) {
  const Value function = makeDeclaredFunction(node, base);
  replaceSlot(variableSlot(declaredVariable(node), base), function);
  return normalCompletion();
}

// `function a.b`.
Value storeFunctionInField(const Node* node, Value* base) {
  const auto* const statement = static_cast<const FunctionDeclarationStmt*>(node);
  const auto* const target = static_cast<const FieldExpr*>(statement->target.expression);
  Value& slot = slotAt(base, target->temporariesOffset);
  slot = makeDeclaredFunction(node, base);
  storeIntoField(node, target, slot, base);
  return normalCompletion();
}

// ---- Choosing -----------------------------------------------------------------------------------

bool hasArithmeticValue(const AssignmentStmt& statement) noexcept {
  return statement.value->kind == ExprKind::Binary &&
         isArithmetic(static_cast<const BinaryExpr*>(statement.value)->op);
}

// A slot that holds a number when its arithmetic succeeds holds nothing to release.
bool isOperandOf(const BinaryExpr& operation, const VariableExpr& variable) noexcept {
  const auto isVariable = [&](const Expr& operand) {
    return isFrameVariable(operand) && frameOffsetOf(operand) == variable.offset;
  };
  return isVariable(*operation.left) || isVariable(*operation.right);
}

void chooseVariableStore(AssignmentStmt& statement, const VariableExpr& target) {
  if (chooseAppend(statement)) return;
  if (target.home == VariableHome::Global) {
    statement.execute = storeGlobal;
  } else if (target.home != VariableHome::Frame && !statement.isLocal) {
    statement.execute = storeVariable;
  } else if (target.home != VariableHome::Frame) {
    statement.targetOffset = target.offset;
    statement.execute = declareShared<storeScalarLocal>;
  } else {
    statement.targetOffset = target.offset;
    const bool ownsNothing = target.variable->scalar || statement.isLocal;
    if (chooseCallStore(statement, ownsNothing)) return;
    const bool isArithmetic = hasArithmeticValue(statement);
    if (isArithmetic &&
        (ownsNothing || isOperandOf(static_cast<const BinaryExpr&>(*statement.value), target))) {
      chooseArithmeticStore(statement);
    } else {
      chooseLocalStore(statement, ownsNothing);
    }
  }
}

// For a target that is no leaf.
NodeFunction fieldStore(const FieldExpr& target) noexcept {
  return target.object->kind == ExprKind::Variable ? storeField : storeAnywhere;
}

NodeFunction indexStore(const IndexExpr& target) noexcept {
  if (isFrameVariable(*target.object)) return storeElement<FrameObject>;
  if (target.object->kind != ExprKind::Variable) return storeAnywhere;
  return target.key->mayRunCode ? storeElementKeepingObject : storeElement<VariableObject>;
}

bool allInFrame(const AssignmentStmt& statement) noexcept {
  for (const AssignTarget& target : statement.targets) {
    if (!isFrameVariable(*target.expression)) return false;
  }
  return true;
}

template <NodeFunction Declare>
NodeFunction declaration(const AssignmentStmt& statement) noexcept {
  return allInFrame(statement) ? Declare : declareShared<Declare>;
}

}  // namespace

void chooseAssignment(AssignmentStmt& statement) {
  if (statement.values.empty()) {
    statement.execute = declaration<declareNil>(statement);
    return;
  }
  if (statement.targets.size != 1 || statement.values.size != 1) {
    if (statement.isLocal) {
      statement.execute = declaration<declareSeveral>(statement);
    } else if (!chooseExchange(statement)) {
      const bool isPlain = statement.targets.size == statement.values.size && allInFrame(statement);
      statement.execute = isPlain ? assignLocals : assignSeveral;
    }
    return;
  }
  const Expr& target = *statement.targets[0].expression;
  statement.value = statement.values[0];
  if (target.kind == ExprKind::Variable) {
    chooseVariableStore(statement, static_cast<const VariableExpr&>(target));
  } else if (chooseAppendToAccess(statement) || chooseUpdate(statement) ||
             chooseAccessStore(statement)) {
    return;
  } else if (target.kind == ExprKind::Field) {
    statement.execute = fieldStore(static_cast<const FieldExpr&>(target));
  } else {
    statement.execute = indexStore(static_cast<const IndexExpr&>(target));
  }
}

void chooseFunctionDeclaration(FunctionDeclarationStmt& statement) {
  const Expr& target = *statement.target.expression;
  if (target.kind == ExprKind::Field) {
    statement.execute = storeFunctionInField;
  } else if (!statement.isLocal) {
    statement.execute = storeFunctionInVariable;
  } else {
    statement.execute = isFrameVariable(target) ? declareFunction : declareSharedFunction;
  }
}

}  // namespace tarvel::lua::internal
