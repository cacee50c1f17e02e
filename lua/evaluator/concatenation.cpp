#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <string>
#include <string_view>

#include "lua/evaluator/assignments.h"
#include "lua/evaluator/execute.h"
#include "lua/evaluator/leaves.h"
#include "lua/evaluator/node_functions.h"
#include "lua/evaluator/variables.h"
#include "lua/lua_vm_impl.h"
#include "lua/value/completion.h"
#include "lua/value/string_object.h"
#include "lua/value/table.h"

// `..`: a chain of operands becomes one string, or is appended to the variable, field or element
// that it starts with.

namespace tarvel::lua::internal {

namespace {

// One operand as text. Any two values concatenate, in their printable form.
class Piece {
 public:
  explicit Piece(const Value& value) {
    if (value.isString()) {
      text_ = value.string->view();
    } else if (value.isInteger()) {
      text_ = {digits_.data(),
               std::to_chars(digits_.data(), digits_.data() + digits_.size(), value.integer).ptr};
    } else {
      text_ = other_.emplace(value.toString());
    }
  }
  Piece(const Piece&) = delete;
  Piece& operator=(const Piece&) = delete;

  std::string_view text() const noexcept { return text_; }

 private:
  std::string_view text_;
  std::array<char, 24> digits_;
  std::optional<std::string> other_;
};

Value* piecesOf(const ConcatExpr* concat, Value* base) noexcept {
  return &slotAt(base, concat->temporariesOffset);
}

StringObject* joinTwo(Heap& heap, const Value& left, const Value& right) {
  const Piece first(left);
  const Piece second(right);
  StringObject* const text =
      StringObject::createUninitialized(heap, first.text().size() + second.text().size());
  std::copy(first.text().begin(), first.text().end(), text->data());
  std::copy(second.text().begin(), second.text().end(), text->data() + first.text().size());
  return text;
}

// Turns every piece into a string, and returns the length of all of them.
std::size_t convertPieces(Heap& heap, Value* first, Value* end) {
  std::size_t length = 0;
  for (Value* piece = first; piece != end; ++piece) {
    if (!piece->isString()) {
      replaceSlot(*piece, Value(StringObject::create(heap, Piece(*piece).text())));
    }
    length += piece->string->length;
  }
  return length;
}

StringObject* joinAll(Heap& heap, Value* first, Value* end) {
  StringObject* const text =
      StringObject::createUninitialized(heap, convertPieces(heap, first, end));
  char* next = text->data();
  for (Value* piece = first; piece != end; ++piece) {
    next = std::copy_n(piece->string->data(), piece->string->length, next);
  }
  return text;
}

// Out of line, because evaluateConcat's frame is open while the operands are evaluated: with what
// the pieces need for their digits it would be more of the host's stack than a level of the tree
// may take.
[[gnu::noinline]] Value joinPieces(const ConcatExpr* concat, Value* base) {
  Value* const first = piecesOf(concat, base);
  Value* const end = first + concat->operands.size;
  Heap& heap = concat->interpreter->heap;
  StringObject* const text =
      end - first == 2 ? joinTwo(heap, first[0], first[1]) : joinAll(heap, first, end);
  clearSlots(first, end);
  return Value(text);
}

// Evaluates the operands from number `first` on into their temporaries, left to right.
void evaluatePieces(const ConcatExpr* concat, std::uint32_t first, Value* base) {
  Value* const pieces = piecesOf(concat, base);
  for (std::uint32_t i = first; i < concat->operands.size; ++i) {
    pieces[i] = evaluateExpression(concat->operands[i], base);
  }
}

Value evaluateConcat(const Node* node, Value* base) {
  const auto* const concat = static_cast<const ConcatExpr*>(node);
  evaluatePieces(concat, 0, base);
  return joinPieces(concat, base);
}

// ---- Appending ----------------------------------------------------------------------------------

// Appends the text of the pieces to `text`, a slot that holds the only reference to a string, and
// empties their slots. Of several pieces all are strings, `length` bytes together. On failure
// (std::bad_alloc) nothing is appended.
void appendPieces(Heap& heap, Value& text, Value* first, Value* end, std::size_t length) {
  if (end - first == 1) {
    const Piece piece(*first);
    text.string = StringObject::reserveInPlace(heap, text.string, piece.text().size());
    text.string->append(piece.text());
  } else {
    text.string = StringObject::reserveInPlace(heap, text.string, length);
    for (Value* piece = first; piece != end; ++piece) text.string->append(piece->string->view());
  }
  clearSlots(first, end);
}

// `s = s .. x`: appends in place where nobody else holds the string. The old s is the left operand
// also when evaluating the others, or giving up what they were, changes s. So s is held meanwhile,
// and the append is in place only if s still is that very string.
Value appendToVariable(const Node* node, Value* base) {
  const auto* const statement = static_cast<const AssignmentStmt*>(node);
  const auto* const variable = static_cast<const VariableExpr*>(statement->targets[0].expression);
  const auto* const concat = static_cast<const ConcatExpr*>(statement->values[0]);
  Heap& heap = node->interpreter->heap;
  Value& held = *piecesOf(concat, base);
  held = retain(variableSlot(variable, base));
  evaluatePieces(concat, 1, base);
  Value* const first = &held + 1;
  Value* const end = &held + concat->operands.size;
  const std::size_t length = end - first > 1 ? convertPieces(heap, first, end) : 0;
  Value& target = variableSlot(variable, base);
  if (!held.isString() || !target.isString() || target.string != held.string ||
      held.string->count != 2) {
    Value text(StringObject::create(
        heap, held.isString() ? held.string->view() : std::string_view(held.toString())));
    clearSlot(held);
    held = text;
    appendPieces(heap, held, first, end, length);
    text = held;
    held = Value();
    replaceSlot(target, text);
    return normalCompletion();
  }
  clearSlot(held);
  appendPieces(heap, target, first, end, length);
  return normalCompletion();
}

bool appendsToItself(const AssignmentStmt& statement) noexcept {
  if (statement.isLocal || statement.values[0]->kind != ExprKind::Concat) return false;
  return isSameVariable(*statement.targets[0].expression,
                        *static_cast<const ConcatExpr*>(statement.values[0])->operands[0]);
}

// The place of an element or field whose object can be peeked at and whose key runs nothing, of one
// that is not nil; otherwise null.
Value* findAccess(const Expr* access, Value* base) {
  if (access->kind == ExprKind::Field) {
    const auto* const field = static_cast<const FieldExpr*>(access);
    const Value object = field->object->peek(field->object, base);
    return object.isTable() ? object.table->findHinted(field->name, field->hint) : nullptr;
  }
  const auto* const index = static_cast<const IndexExpr*>(access);
  const Value object = index->object->peek(index->object, base);
  if (!object.isTable()) return nullptr;
  const OwnedValue keyValue(evaluateExpression(index->key, base));
  TableKey key;
  return tryMakeKeyFromValue(keyValue.get(), key) ? object.table->find(key) : nullptr;
}

// Copying a text of so many bytes for every append is no more work than looking its place up. So
// short texts, of which tables may hold many, get no room for further appends.
constexpr std::size_t kLongText = 256;

// `o.f = o.f .. x`, `a[k] = a[k] .. x`: appends in place where only that field or element holds the
// string, also after the pieces have been evaluated.
Value appendToAccess(const Node* node, Value* base) {
  const AssignmentStmt* const statement = asAssignment(node);
  const auto* const concat = static_cast<const ConcatExpr*>(statement->value);
  evaluatePieces(concat, 0, base);
  Value& held = *piecesOf(concat, base);
  Value* const first = &held + 1;
  Value* const end = &held + concat->operands.size;
  if (held.isString() && held.string->count == 2 && held.string->length >= kLongText) {
    // What gives up an object can run a destructor, and is done before the place is looked up.
    const bool isPlain = end - first == 1 && (first->isString() || first->isNumber());
    Heap& heap = concat->interpreter->heap;
    const std::size_t length = isPlain ? 0 : convertPieces(heap, first, end);
    Value* const place = findAccess(statement->targets[0].expression, base);
    if (place != nullptr && place->isString() && place->string == held.string &&
        held.string->count == 2) {
      clearSlot(held);
      appendPieces(heap, *place, first, end, length);
      return normalCompletion();
    }
  }
  const Value text = joinPieces(concat, base);
  return storeInTarget(node, base, text);
}

// Whether two expressions consist of the same operators, variables, literals and names.
bool isSameExpression(const Expr& a, const Expr& b) noexcept {
  if (a.kind != b.kind || a.op != b.op) return false;
  switch (a.kind) {
    case ExprKind::Literal:
      return wordsOf(literalValue(a)) == wordsOf(literalValue(b));
    case ExprKind::Variable:
      return isSameVariable(a, b);
    case ExprKind::Unary:
      return isSameExpression(*static_cast<const UnaryExpr&>(a).operand,
                              *static_cast<const UnaryExpr&>(b).operand);
    case ExprKind::Binary: {
      const auto& left = static_cast<const BinaryExpr&>(a);
      const auto& right = static_cast<const BinaryExpr&>(b);
      return isSameExpression(*left.left, *right.left) &&
             isSameExpression(*left.right, *right.right);
    }
    case ExprKind::Field: {
      const auto& left = static_cast<const FieldExpr&>(a);
      const auto& right = static_cast<const FieldExpr&>(b);
      return left.name == right.name && isSameExpression(*left.object, *right.object);
    }
    case ExprKind::Index: {
      const auto& left = static_cast<const IndexExpr&>(a);
      const auto& right = static_cast<const IndexExpr&>(b);
      return isSameExpression(*left.object, *right.object) &&
             isSameExpression(*left.key, *right.key);
    }
    default:
      return false;
  }
}

bool canFindAccess(const Expr& access) noexcept {
  if (access.kind == ExprKind::Field) return static_cast<const FieldExpr&>(access).object->peekable;
  if (access.kind != ExprKind::Index) return false;
  const auto& index = static_cast<const IndexExpr&>(access);
  return index.object->peekable && !index.key->mayRunCode;
}

}  // namespace

void chooseConcat(ConcatExpr& concat) {
  concat.execute = evaluateConcat;
  concat.test = testValue;
}

bool chooseAppend(AssignmentStmt& statement) {
  if (!appendsToItself(statement)) return false;
  statement.execute = appendToVariable;
  return true;
}

bool chooseAppendToAccess(AssignmentStmt& statement) {
  if (statement.value->kind != ExprKind::Concat) return false;
  const Expr& target = *statement.targets[0].expression;
  const auto& concat = static_cast<const ConcatExpr&>(*statement.value);
  if (!canFindAccess(target) || !isSameExpression(target, *concat.operands[0])) return false;
  statement.execute = appendToAccess;
  return true;
}

}  // namespace tarvel::lua::internal
