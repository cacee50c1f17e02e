#include <cstdint>

#include "lua/evaluator/assignments.h"
#include "lua/evaluator/execute.h"
#include "lua/evaluator/node_functions.h"
#include "lua/evaluator/places.h"
#include "lua/value/completion.h"
#include "lua/value/table.h"

// Assignments of one value where source, target or both are leaves (leaves.h): `x = a[i]`,
// `a[i + 1] = x`, `o.f = 0`. And the exchange of two elements. What they do not do in place goes
// the general way: from the start where the value could not be read, else with the value.

namespace tarvel::lua::internal {

namespace {

// ---- What is stored -----------------------------------------------------------------------------

// A source in place gives a borrowed value, or false where it cannot be read so this time.

struct FrameSource {
  static constexpr bool kInPlace = true;
  static bool tryLoad(const Expr* value, Value* base, Value& out) noexcept {
    out = slotAt(base, frameOffsetOf(*value));
    return true;
  }
};

struct LiteralSource {
  static constexpr bool kInPlace = true;
  static bool tryLoad(const Expr* value, Value*, Value& out) noexcept {
    out = static_cast<const LiteralExpr*>(value)->value;
    return true;
  }
};

template <bool (*Try)(const Expr*, Value*, Value&) noexcept>
struct LeafSource {
  static constexpr bool kInPlace = true;
  [[gnu::always_inline]] static bool tryLoad(const Expr* value, Value* base, Value& out) noexcept {
    return Try(value, base, out);
  }
};

struct AnySource {
  static constexpr bool kInPlace = false;
};

[[gnu::noinline]] Value endByDestroying(Value object) noexcept {
  destroyObject(object);
  return normalCompletion();
}

// Stores an owned value over another.
[[gnu::always_inline]] inline Value endByReplacing(Value& place, Value owned) noexcept {
  const Value old = place;
  place = owned;
  if (old.isCounted() && --old.object->count == 0) [[unlikely]]
    return endByDestroying(old);
  return normalCompletion();
}

// ---- Into a frame variable ----------------------------------------------------------------------

template <class Source>
Value storeInLocal(const Node* node, Value* base) {
  Value value;
  if (!Source::tryLoad(asAssignment(node)->value, base, value)) [[unlikely]]
    return storeLocal(node, base);
  return endByReplacing(slotAt(base, asAssignment(node)->targetOffset), retain(value));
}

// The slot owns nothing, because it is above the live locals or only ever holds scalars.
template <class Source>
Value storeInUnused(const Node* node, Value* base) {
  Value value;
  if (!Source::tryLoad(asAssignment(node)->value, base, value)) [[unlikely]]
    return storeScalarLocal(node, base);
  slotAt(base, asAssignment(node)->targetOffset) = retain(value);
  return normalCompletion();
}

// ---- Into an element ----------------------------------------------------------------------------

const Expr* targetOf(const Node* node, std::uint32_t number = 0) noexcept {
  return asAssignment(node)->targets[number].expression;
}

[[gnu::noinline]] Value storeBeyondArray(Table* table, std::int64_t key, Value owned) {
  table->setInteger(key, owned);
  return normalCompletion();
}

// For a key that is no integer, or an object that is no table. Takes over the value.
[[gnu::noinline]] Value storeUnderOtherKey(const Node* node, Value* base, Value value) {
  const auto* const index = static_cast<const IndexExpr*>(targetOf(node));
  Table* table = nullptr;
  const bool isPlain = index->elementBias == -1 && index->leaf != Leaf::ConstantElement;
  if (!isPlain || !tryTable(index, index->leaf == Leaf::Element, base, table))
    return storeInTarget(node, base, value);
  storeUnderKey(*table, retain(slotAt(base, index->keyOffset)), value, node->site);
  return normalCompletion();
}

// The value to be stored, owned. False where the source is not what its form is for; any other form
// than AnySource then has to give way to that.
template <class Source>
[[gnu::always_inline]] inline bool tryLoadValue(const Node* node, Value* base, Value& value) {
  const Expr* const source = asAssignment(node)->value;
  if constexpr (Source::kInPlace) {
    if (!Source::tryLoad(source, base, value)) return false;
    value = retain(value);
  } else {
    value = evaluateExpression(source, base);
  }
  return true;
}

template <bool InFrame, class Source>
struct ElementStore {
  static Value run(const Node* node, Value* base) {
    Value value;
    if (!tryLoadValue<Source>(node, base, value)) [[unlikely]]
      return ElementStore<InFrame, AnySource>::run(node, base);
    const auto* const index = static_cast<const IndexExpr*>(targetOf(node));
    Table* table = nullptr;
    std::int64_t key = 0;
    if (!tryTable(index, InFrame, base, table) || !tryKey(index, base, key)) [[unlikely]]
      return storeUnderOtherKey(node, base, value);
    const std::uint64_t position = static_cast<std::uint64_t>(key) - 1;
    if (position >= table->arraySize() || value.isNil()) [[unlikely]]
      return storeBeyondArray(table, key, value);
    return endByReplacing(table->element(static_cast<std::uint32_t>(position)), value);
  }
};

// ---- Into a field -------------------------------------------------------------------------------

[[gnu::noinline]] Value storeUnderName(Table* table, const FieldExpr* field, Value owned) {
  table->setString(field->name, owned, field->hint);
  return normalCompletion();
}

template <bool InFrame, class Source>
struct FieldStore {
  static Value run(const Node* node, Value* base) {
    Value value;
    if (!tryLoadValue<Source>(node, base, value)) [[unlikely]]
      return FieldStore<InFrame, AnySource>::run(node, base);
    const auto* const field = static_cast<const FieldExpr*>(targetOf(node));
    Table* table = nullptr;
    if (!tryTable(field, InFrame, base, table)) [[unlikely]]
      return storeInTarget(node, base, value);
    Value* const place = table->findHinted(field->name, field->hint);
    if (place == nullptr || value.isNil()) [[unlikely]]
      return storeUnderName(table, field, value);
    return endByReplacing(*place, value);
  }
};

// ---- Exchanging two elements --------------------------------------------------------------------

// `a[i], b[j] = b[j], a[i]`. Both keep their references, and neither border moves.
Value exchangeElements(const Node* node, Value* base) {
  Value* const first = findElement(targetOf(node, 0), base);
  Value* const second = findElement(targetOf(node, 1), base);
  if (first == nullptr || second == nullptr) [[unlikely]]
    return assignSeveral(node, base);
  const Value moved = *first;
  *first = *second;
  *second = moved;
  return normalCompletion();
}

// ---- Choosing -----------------------------------------------------------------------------------

// An element of a variable: storing another one does not change which this is.
bool isElementOfVariable(const Expr& expression) noexcept {
  return expression.leaf == Leaf::Element || expression.leaf == Leaf::ConstantElement ||
         (expression.leaf == Leaf::ElementOfLeaf &&
          static_cast<const IndexExpr&>(expression).object->leaf == Leaf::Shared);
}

template <template <class> class Store>
NodeFunction storeFrom(const Expr& value) noexcept {
  if (value.kind == ExprKind::Literal) return Store<LiteralSource>::run;
  switch (value.leaf) {
    case Leaf::Frame:
      return Store<FrameSource>::run;
    case Leaf::Field:
      return Store<LeafSource<tryField>>::run;
    case Leaf::Element:
      return Store<LeafSource<tryElement>>::run;
    case Leaf::None:
    case Leaf::Constant:
    case Leaf::Product:
    case Leaf::Negation:
      return Store<AnySource>::run;
    default:
      return Store<LeafSource<tryLeaf>>::run;
  }
}

template <class Source>
struct LocalStore {
  static constexpr NodeFunction run = storeInLocal<Source>;
};
template <>
struct LocalStore<AnySource> {
  static constexpr NodeFunction run = storeLocal;
};
template <class Source>
struct UnusedStore {
  static constexpr NodeFunction run = storeInUnused<Source>;
};
template <>
struct UnusedStore<AnySource> {
  static constexpr NodeFunction run = storeScalarLocal;
};
template <class Source>
using ElementOfFrameStore = ElementStore<true, Source>;
template <class Source>
using ElementOfLeafStore = ElementStore<false, Source>;
template <class Source>
using FieldOfFrameStore = FieldStore<true, Source>;
template <class Source>
using FieldOfLeafStore = FieldStore<false, Source>;

}  // namespace

Value storeEvaluated(const Node* node, Value* base) {
  switch (targetOf(node)->leaf) {
    case Leaf::Element:
    case Leaf::ConstantElement:
      return ElementOfFrameStore<AnySource>::run(node, base);
    case Leaf::ElementOfElement:
    case Leaf::ElementOfLeaf:
      return ElementOfLeafStore<AnySource>::run(node, base);
    case Leaf::Field:
      return FieldOfFrameStore<AnySource>::run(node, base);
    default:
      return FieldOfLeafStore<AnySource>::run(node, base);
  }
}

void chooseLocalStore(AssignmentStmt& statement, bool ownsNothing) {
  statement.execute = ownsNothing ? storeFrom<UnusedStore>(*statement.value)
                                  : storeFrom<LocalStore>(*statement.value);
}

bool chooseAccessStore(AssignmentStmt& statement) {
  const Expr& target = *statement.targets[0].expression;
  switch (target.leaf) {
    case Leaf::Element:
    case Leaf::ConstantElement:
      statement.execute = storeFrom<ElementOfFrameStore>(*statement.value);
      return true;
    case Leaf::ElementOfElement:
    case Leaf::ElementOfLeaf:
      statement.execute = storeFrom<ElementOfLeafStore>(*statement.value);
      return true;
    case Leaf::Field:
      statement.execute = storeFrom<FieldOfFrameStore>(*statement.value);
      return true;
    case Leaf::FieldOfLeaf:
      statement.execute = storeFrom<FieldOfLeafStore>(*statement.value);
      return true;
    default:
      return false;
  }
}

bool chooseExchange(AssignmentStmt& statement) {
  if (statement.targets.size != 2 || statement.values.size != 2) return false;
  for (std::uint32_t i = 0; i < 2; ++i) {
    const Expr& target = *statement.targets[i].expression;
    if (!isElementOfVariable(target) || !isSameLeaf(target, *statement.values[1 - i])) return false;
  }
  statement.execute = exchangeElements;
  return true;
}

}  // namespace tarvel::lua::internal
