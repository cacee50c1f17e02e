#include <cstdlib>
#include <string>
#include <type_traits>

#include "lua/evaluator/access_objects.h"
#include "lua/evaluator/execute.h"
#include "lua/evaluator/native_access.h"
#include "lua/evaluator/node_functions.h"
#include "lua/lua_vm_impl.h"
#include "lua/value/table.h"

// Reading `o.name` and `o[k]`: from tables inline, from strings and native objects through
// indexValue. What may be peeked at, and when: access_objects.h.

namespace tarvel::lua::internal {

namespace {

// Strings have no fields of their own, only the methods that the global `string` has at this
// moment.
Value stringMethod(LuaVM::Impl& interpreter, const Value& key, Site site) {
  if (key.isString()) {
    const Value library = interpreter.globals.at(interpreter.standard.stringLibrarySlot);
    if (library.isTable()) {
      const Value method = library.table->getString(key.string);
      if (!method.isNil()) return retain(method);
    }
  }
  failRuntime(site, "string indexing only supports library methods");
}

constexpr std::string_view kNilIndex = "attempt to index a nil value";

// For what is no table, string or native object. Nil, which scripts index by mistake, needs no
// exception: who has something to release for the object or the key has looked for it before.
[[noreturn]] void failIndex(const Node* node, const Value& object) {
  if (object.isNil()) node->interpreter->raiseAt(node->site, {kNilIndex});
  failRuntime(node->site, {"attempt to index a ", describeValueType(object), " value"});
}

// Takes over the key.
[[noreturn, gnu::noinline]] void failIndexOfNil(const Node* node, Value key) {
  drop(key);
  node->interpreter->raiseAt(node->site, {kNilIndex});
}

}  // namespace

Value indexValue(const Node* node, const Value& object, const Value& key, Value* base) {
  switch (object.tag) {
    case kTable: {
      TableKey tableKey;
      if (!tryMakeKeyFromValue(key, tableKey))
        failRuntime(node->site, "table index must be a number, string, or boolean");
      return retain(tableGetByKey(object.table, tableKey));
    }
    case kString:
      return stringMethod(*node->interpreter, key, node->site);
    case kUserData: {
      if (!key.isString()) failRuntime(node->site, "userdata fields must be strings");
      std::uint32_t hint = 0;
      return readNativeField(node, *object.native, key.string, hint, base);
    }
    default:
      failIndex(node, object);
  }
}

Value indexField(const Node* node, const Value& object, StringObject* name, std::uint32_t& hint,
                 Value* base) {
  if (object.isTable()) return retain(object.table->getString(name, hint));
  if (object.tag == kUserData) return readNativeField(node, *object.native, name, hint, base);
  return indexValue(node, object, Value(name), base);
}

namespace {

// ---- Fields -------------------------------------------------------------------------------------

// Of any object: borrowed, not peeked, or owned and taken over.
template <bool ObjectOwned>
[[gnu::noinline]] Value readFieldOfOther(const FieldExpr* node, Value object, Value* base) {
  if (!ObjectOwned && isPeeked(object) && !object.isNil())
    return indexField(node, object, node->name, node->hint, base);
  if (!isPeeked(object)) object = evaluatePath(node->object, base);
  if (object.isNil()) failIndexOfNil(node, Value());
  const OwnedValue guard(object);
  return indexField(node, object, node->name, node->hint, base);
}

template <class Object>
Value readField(const Node* node, Value* base) {
  const auto* const field = static_cast<const FieldExpr*>(node);
  const Value object = Object::load(field, base);
  if (object.tag == kTable && !Object::kOwned) [[likely]] {
    return retain(object.table->getString(field->name, field->hint));
  }
  return readFieldOfOther<Object::kOwned>(field, object, base);
}

template <class Object>
Value peekField(const Node* node, Value* base) {
  const auto* const field = static_cast<const FieldExpr*>(node);
  const Value object = Object::load(field, base);
  if (object.tag == kTable) [[likely]]
    return object.table->getString(field->name, field->hint);
  return notPeeked();
}

[[gnu::noinline]] bool testFieldOfOther(const FieldExpr* node, Value object, Value* base) {
  const OwnedValue value(readFieldOfOther<false>(node, object, base));
  return value.get().isTruthy();
}

template <class Object>
bool testField(const Node* node, Value* base) {
  const auto* const field = static_cast<const FieldExpr*>(node);
  const Value object = Object::load(field, base);
  if (object.tag == kTable) [[likely]]
    return object.table->getString(field->name, field->hint).isTruthy();
  return testFieldOfOther(field, object, base);
}

// ---- Indices ------------------------------------------------------------------------------------

struct FrameKey {
  static constexpr bool kOwned = false;
  static Value load(const IndexExpr* node, Value* base) noexcept {
    return slotAt(base, node->keyOffset);
  }
};

// May be kNotPeeked.
struct PeekedKey {
  static constexpr bool kOwned = false;
  static Value load(const IndexExpr* node, Value* base) { return node->key->peek(node->key, base); }
};

struct OtherKey {
  static constexpr bool kOwned = true;
  static Value load(const IndexExpr* node, Value* base) {
    return evaluateExpression(node->key, base);
  }
};

bool isArrayElement(Value object, Value key) noexcept {
  return object.tag == kTable && key.tag == kInteger &&
         static_cast<std::uint64_t>(key.integer) - 1 < object.table->arraySize();
}

Value arrayElement(Value object, Value key) noexcept {
  return object.table->element(static_cast<std::uint32_t>(key.integer - 1));
}

// Takes over both operands.
Value readIndexOfKept(const IndexExpr* node, Value& objectSlot, Value key, Value* base) {
  if (objectSlot.isNil()) failIndexOfNil(node, key);
  const OwnedValue guard(key);
  const Value result = indexValue(node, objectSlot, key, base);
  clearSlot(objectSlot);
  return result;
}

// The object must be kept while the key runs: in a slot, where an error finds it.
Value readIndexKeepingObject(const Node* node, Value* base) {
  const auto* const index = static_cast<const IndexExpr*>(node);
  Value& objectSlot = slotAt(base, index->temporariesOffset);
  objectSlot = evaluateExpression(index->object, base);
  const Value key = evaluateExpression(index->key, base);
  if (isArrayElement(objectSlot, key)) [[likely]] {
    const Value result = retain(arrayElement(objectSlot, key));
    clearSlot(objectSlot);
    return result;
  }
  return readIndexOfKept(index, objectSlot, key, base);
}

// As that one, for what could not be peeked at.
[[gnu::noinline]] Value readIndexOfPath(const IndexExpr* index, Value* base) {
  Value& objectSlot = slotAt(base, index->temporariesOffset);
  objectSlot = evaluatePath(index->object, base);
  const Value key = evaluatePath(index->key, base);
  return readIndexOfKept(index, objectSlot, key, base);
}

// For an object that is borrowed. Starts over where not both operands could be peeked at.
template <class Key>
[[gnu::noinline]] Value readIndexOfOther(const IndexExpr* node, Value object, Value key,
                                         Value* base) {
  if (!isPeeked(key)) return readIndexOfPath(node, base);
  if (object.isNil()) failIndexOfNil(node, Key::kOwned ? key : Value());
  const OwnedValue guard(Key::kOwned ? key : Value());
  TableKey tableKey;
  if (object.tag == kTable && tryMakeKeyFromValue(key, tableKey)) [[likely]]
    return retain(object.table->get(tableKey));
  return indexValue(node, object, key, base);
}

// An object in a frame variable stays whatever the key runs, and need not be kept at hand
// meanwhile.
template <class Object, class Key>
constexpr bool kKeyFirst = std::is_same_v<Object, FrameObject>&& Key::kOwned;

template <class Object, class Key>
inline Value loadObjectBefore(const IndexExpr* index, Value* base) {
  return kKeyFirst<Object, Key> ? Value() : Object::load(index, base);
}

// Not peeked where an object that is no table has to be left to the general way before the key runs
// anything.
template <class Object, class Key>
inline Value loadKeyBehind(const IndexExpr* index, Value* base, Value object) {
  if constexpr (!std::is_same_v<Object, FrameObject>) {
    if (object.tag != kTable) [[unlikely]]
      return notPeeked();
  }
  return Key::load(index, base);
}

template <class Object, class Key>
inline Value loadObjectAfter(const IndexExpr* index, Value* base, Value object) {
  return kKeyFirst<Object, Key> ? Object::load(index, base) : object;
}

template <class Object, class Key>
Value readIndex(const Node* node, Value* base) {
  const auto* const index = static_cast<const IndexExpr*>(node);
  const Value before = loadObjectBefore<Object, Key>(index, base);
  const Value key = loadKeyBehind<Object, Key>(index, base, before);
  const Value object = loadObjectAfter<Object, Key>(index, base, before);
  if (isArrayElement(object, key)) [[likely]]
    return retain(arrayElement(object, key));
  return readIndexOfOther<Key>(index, object, key, base);
}

template <bool KeyOwned>
[[gnu::noinline]] Value peekIndexOfOther(Value object, Value key) {
  if (!isPeeked(key)) return notPeeked();
  const OwnedValue guard(KeyOwned ? key : Value());
  TableKey tableKey;
  return object.tag == kTable && tryMakeKeyFromValue(key, tableKey) ? object.table->get(tableKey)
                                                                    : notPeeked();
}

template <class Object, class Key>
Value peekIndex(const Node* node, Value* base) {
  const auto* const index = static_cast<const IndexExpr*>(node);
  const Value before = loadObjectBefore<Object, Key>(index, base);
  const Value key = loadKeyBehind<Object, Key>(index, base, before);
  const Value object = loadObjectAfter<Object, Key>(index, base, before);
  if (isArrayElement(object, key)) [[likely]]
    return arrayElement(object, key);
  return peekIndexOfOther<Key::kOwned>(object, key);
}

template <class Key>
[[gnu::noinline]] bool testIndexOfOther(const IndexExpr* node, Value object, Value key,
                                        Value* base) {
  const OwnedValue value(readIndexOfOther<Key>(node, object, key, base));
  return value.get().isTruthy();
}

template <class Object, class Key>
bool testIndex(const Node* node, Value* base) {
  const auto* const index = static_cast<const IndexExpr*>(node);
  const Value before = loadObjectBefore<Object, Key>(index, base);
  const Value key = loadKeyBehind<Object, Key>(index, base, before);
  const Value object = loadObjectAfter<Object, Key>(index, base, before);
  if (isArrayElement(object, key)) [[likely]]
    return arrayElement(object, key).isTruthy();
  return testIndexOfOther<Key>(index, object, key, base);
}

template <class Object, class Key>
void chooseObjectAndKey(IndexExpr& index) {
  index.execute = readIndex<Object, Key>;
  index.peek = peekIndex<Object, Key>;
  index.test = testIndex<Object, Key>;
}

// The key is one that may be evaluated while the object is borrowed.
template <class Object>
void chooseKey(IndexExpr& index) {
  if (isFrameVariable(*index.key)) {
    chooseObjectAndKey<Object, FrameKey>(index);
  } else if (index.key->peekable) {
    chooseObjectAndKey<Object, PeekedKey>(index);
  } else {
    chooseObjectAndKey<Object, OtherKey>(index);
  }
}

constexpr std::int64_t kMostBias = 1 << 30;

template <class Object>
void chooseFieldObject(FieldExpr& field) {
  field.execute = readField<Object>;
  field.peek = peekField<Object>;
  field.test = testField<Object>;
}

// ---- In place -----------------------------------------------------------------------------------

bool isLeafObject(const Expr& object) noexcept {
  return object.leaf == Leaf::Shared || object.leaf == Leaf::Element || object.leaf == Leaf::Field;
}

Leaf fieldLeaf(const FieldExpr& field) noexcept {
  if (field.object->leaf == Leaf::Frame) return Leaf::Field;
  return isLeafObject(*field.object) ? Leaf::FieldOfLeaf : Leaf::None;
}

// Notes in the node what to add to a key that is a frame variable, or `i + 2` or `i - 1` with one
// i. A key that is neither is no leaf.
bool placeKey(IndexExpr& index) noexcept {
  if (isFrameVariable(*index.key)) {
    index.keyOffset = frameOffsetOf(*index.key);
    return true;
  }
  if (index.key->kind != ExprKind::Binary) return false;
  const auto& sum = static_cast<const BinaryExpr&>(*index.key);
  if (sum.left->leaf != Leaf::Frame || sum.right->leaf != Leaf::Constant) return false;
  if (sum.op != TokenKind::Plus && sum.op != TokenKind::Minus) return false;
  const Value distance = literalValue(*sum.right);
  if (!distance.isInteger() || std::abs(distance.integer) > kMostBias) return false;
  const auto bias = static_cast<std::int32_t>(distance.integer);
  index.keyOffset = frameOffsetOf(*sum.left);
  index.elementBias += sum.op == TokenKind::Plus ? bias : -bias;
  return true;
}

Leaf indexLeaf(IndexExpr& index) noexcept {
  const Expr& object = *index.object;
  if (placeKey(index)) {
    if (object.leaf == Leaf::Frame) return Leaf::Element;
    if (object.leaf == Leaf::Element) return Leaf::ElementOfElement;
    return isLeafObject(object) ? Leaf::ElementOfLeaf : Leaf::None;
  }
  if (index.key->leaf != Leaf::Constant || object.leaf != Leaf::Frame) return Leaf::None;
  const Value key = literalValue(*index.key);
  if (!key.isInteger() || key.integer < 1 || key.integer > kMostBias) return Leaf::None;
  index.elementBias = static_cast<std::int32_t>(key.integer - 1);
  return Leaf::ConstantElement;
}

bool isGlobalVariable(const Expr& expression) noexcept {
  return expression.kind == ExprKind::Variable &&
         static_cast<const VariableExpr&>(expression).home == VariableHome::Global;
}

}  // namespace

Value evaluatePath(const Expr* path, Value* base) {
  if (!path->peekable) return evaluateExpression(path, base);
  switch (path->kind) {
    case ExprKind::Field:
      return readFieldOfOther<false>(static_cast<const FieldExpr*>(path), notPeeked(), base);
    case ExprKind::Index:
      return readIndexOfPath(static_cast<const IndexExpr*>(path), base);
    case ExprKind::Unary:
      return evaluateLengthOfPath(static_cast<const UnaryExpr*>(path), base);
    default:
      return evaluateExpression(path, base);
  }
}

void chooseField(FieldExpr& field) {
  field.leaf = fieldLeaf(field);
  if (isFrameVariable(*field.object)) {
    field.objectOffset = frameOffsetOf(*field.object);
    chooseFieldObject<FrameObject>(field);
  } else if (isGlobalVariable(*field.object)) {
    chooseFieldObject<GlobalObject>(field);
  } else if (field.object->peekable) {
    chooseFieldObject<PeekedObject>(field);
  } else {
    field.execute = readField<OwnedObject>;
    field.test = testValue;
  }
}

void chooseIndex(IndexExpr& index) {
  index.leaf = indexLeaf(index);
  if (isFrameVariable(*index.object)) {
    index.objectOffset = frameOffsetOf(*index.object);
    chooseKey<FrameObject>(index);
  } else if (index.peekable) {
    chooseKey<PeekedObject>(index);
  } else {
    index.execute = readIndexKeepingObject;
    index.test = testValue;
  }
}

}  // namespace tarvel::lua::internal
