#include <string>

#include "lua/evaluator/access_objects.h"
#include "lua/evaluator/execute.h"
#include "lua/evaluator/node_functions.h"
#include "lua/lua_vm_impl.h"
#include "lua/value/native_object.h"
#include "lua/value/table.h"

// Reading `o.name` and `o[k]`: from tables inline, from strings and native objects through
// indexValue.

namespace tarvel::lua {

using internal::describeValueType;
using internal::failRuntime;
using internal::Site;
using internal::StringObject;
using internal::TableKey;
using internal::Value;

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

// For what is no table, string or native object.
[[noreturn]] void failIndex(const Value& object, Site site) {
  failRuntime(site, std::string("attempt to index a ") + describeValueType(object) + " value");
}

}  // namespace

Value LuaVM::Impl::indexValue(const Value& object, const Value& key, Site site) {
  switch (object.tag) {
    case internal::kTable: {
      TableKey tableKey;
      if (!tryMakeKeyFromValue(key, tableKey))
        failRuntime(site, "table index must be a number, string, or boolean");
      return retain(tableGetByKey(object.table, tableKey));
    }
    case internal::kString:
      return stringMethod(*this, key, site);
    case internal::kUserData:
      if (!key.isString()) failRuntime(site, "userdata fields must be strings");
      if (object.native->handle == nullptr) failRuntime(site, "native object handle is empty");
      return nativeObjectField(*object.native, key.string);
    default:
      failIndex(object, site);
  }
}

Value LuaVM::Impl::indexField(const Value& object, StringObject* name, std::uint32_t& hint,
                              Site site) {
  if (object.isTable()) return retain(object.table->getString(name, hint));
  return indexValue(object, Value(name), site);
}

namespace internal {

namespace {

// A field that is peeked at on something that is no table is a fresh method or an error. The access
// that peeks only wants to index it, which fails for every function alike, so a function that lives
// long enough stands in for the method.
Value borrowedStandIn(const Node* node, Value owned) {
  const OwnedValue guard(owned);
  return guard.get().isFunction() && guard.get().function->count == 1
             ? node->interpreter->standard.function.get()
             : guard.get();
}

// ---- Fields -------------------------------------------------------------------------------------

template <bool ObjectOwned>
[[gnu::noinline]] Value readFieldOfOther(const FieldExpr* node, Value object) {
  const OwnedValue guard(ObjectOwned ? object : Value());
  return node->interpreter->indexField(object, node->name, node->hint, node->site);
}

template <class Object>
Value readField(const Node* node, Value* base) {
  const auto* const field = static_cast<const FieldExpr*>(node);
  const Value object = Object::load(field, base);
  if (object.tag == kTable && !Object::kOwned) [[likely]] {
    return retain(object.table->getString(field->name, field->hint));
  }
  return readFieldOfOther<Object::kOwned>(field, object);
}

template <class Object>
Value peekField(const Node* node, Value* base) {
  const auto* const field = static_cast<const FieldExpr*>(node);
  const Value object = Object::load(field, base);
  if (object.tag == kTable) [[likely]]
    return object.table->getString(field->name, field->hint);
  return borrowedStandIn(node, readFieldOfOther<false>(field, object));
}

template <class Object>
bool testField(const Node* node, Value* base) {
  const auto* const field = static_cast<const FieldExpr*>(node);
  const Value object = Object::load(field, base);
  if (object.tag == kTable) [[likely]]
    return object.table->getString(field->name, field->hint).isTruthy();
  return borrowedStandIn(node, readFieldOfOther<false>(field, object)).isTruthy();
}

// ---- Indices ------------------------------------------------------------------------------------

struct FrameKey {
  static constexpr bool kOwned = false;
  static Value load(const IndexExpr* node, Value* base) noexcept {
    return slotAt(base, node->keyOffset);
  }
};

struct OtherKey {
  static constexpr bool kOwned = true;
  static Value load(const IndexExpr* node, Value* base) {
    return evaluateExpression(node->key, base);
  }
};

template <bool KeyOwned>
[[gnu::noinline]] Value readIndexOfOther(const IndexExpr* node, Value object, Value key) {
  const OwnedValue guard(KeyOwned ? key : Value());
  TableKey tableKey;
  if (object.tag == kTable && tryMakeKeyFromValue(key, tableKey)) [[likely]]
    return retain(object.table->get(tableKey));
  return node->interpreter->indexValue(object, key, node->site);
}

bool isArrayElement(Value object, Value key) noexcept {
  return object.tag == kTable && key.tag == kInteger &&
         static_cast<std::uint64_t>(key.integer) - 1 < object.table->arraySize();
}

// The object is not owned, and cannot change or go while the key is evaluated.
template <class Object, class Key>
Value readIndex(const Node* node, Value* base) {
  const auto* const index = static_cast<const IndexExpr*>(node);
  const Value object = Object::load(index, base);
  const Value key = Key::load(index, base);
  if (isArrayElement(object, key)) [[likely]] {
    return retain(object.table->element(static_cast<std::uint32_t>(key.integer - 1)));
  }
  return readIndexOfOther<Key::kOwned>(index, object, key);
}

template <class Object, class Key>
Value peekIndex(const Node* node, Value* base) {
  const auto* const index = static_cast<const IndexExpr*>(node);
  const Value object = Object::load(index, base);
  const Value key = Key::load(index, base);
  if (isArrayElement(object, key)) [[likely]] {
    return object.table->element(static_cast<std::uint32_t>(key.integer - 1));
  }
  TableKey tableKey;
  if (object.tag == kTable && tryMakeKeyFromValue(key, tableKey)) {
    const OwnedValue guard(Key::kOwned ? key : Value());
    return object.table->get(tableKey);
  }
  return borrowedStandIn(node, readIndexOfOther<Key::kOwned>(index, object, key));
}

template <bool KeyOwned>
[[gnu::noinline]] bool testIndexOfOther(const IndexExpr* node, Value object, Value key) {
  const OwnedValue value(readIndexOfOther<KeyOwned>(node, object, key));
  return value.get().isTruthy();
}

template <class Object, class Key>
bool testIndex(const Node* node, Value* base) {
  const auto* const index = static_cast<const IndexExpr*>(node);
  const Value object = Object::load(index, base);
  const Value key = Key::load(index, base);
  if (isArrayElement(object, key)) [[likely]] {
    return object.table->element(static_cast<std::uint32_t>(key.integer - 1)).isTruthy();
  }
  return testIndexOfOther<Key::kOwned>(index, object, key);
}

// The object must be kept while the key runs: in a slot, where an error finds it.
Value readIndexKeepingObject(const Node* node, Value* base) {
  const auto* const index = static_cast<const IndexExpr*>(node);
  Value& objectSlot = slotAt(base, index->temporariesOffset);
  objectSlot = evaluateExpression(index->object, base);
  const Value key = evaluateExpression(index->key, base);
  const Value result = readIndexOfOther<true>(index, objectSlot, key);
  clearSlot(objectSlot);
  return result;
}

template <class Object, class Key>
void chooseObjectAndKey(IndexExpr& index) {
  index.execute = readIndex<Object, Key>;
  index.peek = peekIndex<Object, Key>;
  index.test = testIndex<Object, Key>;
}

template <class Object>
void chooseKey(IndexExpr& index) {
  if (isFrameVariable(*index.key)) {
    chooseObjectAndKey<Object, FrameKey>(index);
  } else {
    chooseObjectAndKey<Object, OtherKey>(index);
  }
}

template <class Object>
void chooseFieldObject(FieldExpr& field) {
  field.execute = readField<Object>;
  field.peek = peekField<Object>;
  field.test = testField<Object>;
}

bool isGlobalVariable(const Expr& expression) noexcept {
  return expression.kind == ExprKind::Variable &&
         static_cast<const VariableExpr&>(expression).home == VariableHome::Global;
}

}  // namespace

void chooseField(FieldExpr& field) {
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
  if (isFrameVariable(*index.key)) index.keyOffset = frameOffsetOf(*index.key);
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

}  // namespace internal

}  // namespace tarvel::lua
