#include "lua/evaluator/concatenation.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string>
#include <string_view>

#include "lua/evaluator/execute.h"
#include "lua/evaluator/node_functions.h"
#include "lua/lua_vm_impl.h"
#include "lua/value/string_object.h"

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
      value.appendTo(other_);
      text_ = other_;
    }
  }
  Piece(const Piece&) = delete;
  Piece& operator=(const Piece&) = delete;

  std::string_view text() const noexcept { return text_; }

 private:
  std::string_view text_;
  std::array<char, 24> digits_;
  std::string other_;
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

Value evaluateConcat(const Node* node, Value* base) {
  const auto* const concat = static_cast<const ConcatExpr*>(node);
  evaluatePieces(concat, 0, base);
  Value* const first = piecesOf(concat, base);
  Value* const end = first + concat->operands.size;
  Heap& heap = node->interpreter->heap;
  StringObject* const text =
      end - first == 2 ? joinTwo(heap, first[0], first[1]) : joinAll(heap, first, end);
  clearSlots(first, end);
  return Value(text);
}

}  // namespace

void evaluatePieces(const ConcatExpr* concat, std::uint32_t first, Value* base) {
  Value* const pieces = piecesOf(concat, base);
  for (std::uint32_t i = first; i < concat->operands.size; ++i) {
    pieces[i] = evaluateExpression(concat->operands[i], base);
  }
}

void appendPieces(const ConcatExpr* concat, std::uint32_t first, Value& text, Value* base) {
  Heap& heap = concat->interpreter->heap;
  Value* const begin = piecesOf(concat, base) + first;
  Value* const end = piecesOf(concat, base) + concat->operands.size;
  if (end - begin == 1) {
    const Piece piece(*begin);
    text.string = StringObject::reserveInPlace(heap, text.string, piece.text().size());
    text.string->append(piece.text());
  } else {
    text.string = StringObject::reserveInPlace(heap, text.string, convertPieces(heap, begin, end));
    for (Value* piece = begin; piece != end; ++piece) text.string->append(piece->string->view());
  }
  clearSlots(begin, end);
}

void chooseConcat(ConcatExpr& concat) {
  concat.execute = evaluateConcat;
  concat.test = testValue;
}

}  // namespace tarvel::lua::internal
