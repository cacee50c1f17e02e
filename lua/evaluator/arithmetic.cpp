#include <cmath>
#include <cstdint>

#include "lua/evaluator/execute.h"
#include "lua/evaluator/node_functions.h"
#include "lua/evaluator/operands.h"
#include "lua/evaluator/operators.h"
#include "lua/value/completion.h"
#include "lua/value/number_rules.h"

// The nodes of `+`, `-`, `*`, `/` and `%`. Two integers and two floats are done in place;
// everything else, errors included, goes through the operators' rules out of line, so that the
// common path needs no frame of its own.

namespace tarvel::lua::internal {

namespace {

// Each operator: its result for two integers and for two floats, where that takes no more than a
// few instructions. False leaves the case to the rules out of line.

struct Add {
  static constexpr TokenKind kToken = TokenKind::Plus;
  static bool integers(std::int64_t a, std::int64_t b, Value& out) noexcept {
    out.tag = kInteger;
    return !__builtin_add_overflow(a, b, &out.integer);
  }
  static bool floats(double a, double b, Value& out) noexcept {
    out = Value(a + b);
    return isClearlyFractional(out.number);
  }
};

struct Subtract {
  static constexpr TokenKind kToken = TokenKind::Minus;
  static bool integers(std::int64_t a, std::int64_t b, Value& out) noexcept {
    out.tag = kInteger;
    return !__builtin_sub_overflow(a, b, &out.integer);
  }
  static bool floats(double a, double b, Value& out) noexcept {
    out = Value(a - b);
    return isClearlyFractional(out.number);
  }
};

struct Multiply {
  static constexpr TokenKind kToken = TokenKind::Star;
  static bool integers(std::int64_t a, std::int64_t b, Value& out) noexcept {
    out.tag = kInteger;
    return !__builtin_mul_overflow(a, b, &out.integer);
  }
  static bool floats(double a, double b, Value& out) noexcept {
    out = Value(a * b);
    return isClearlyFractional(out.number);
  }
};

struct Divide {
  static constexpr TokenKind kToken = TokenKind::Slash;
  static bool integers(std::int64_t a, std::int64_t b, Value& out) noexcept {
    out = Value(static_cast<double>(a) / static_cast<double>(b));
    return b != 0;
  }
  static bool floats(double a, double b, Value& out) noexcept {
    out = Value(a / b);
    return !isZeroDivisor(b);
  }
};

struct Modulo {
  static constexpr TokenKind kToken = TokenKind::Percent;
  static bool integers(std::int64_t a, std::int64_t b, Value& out) noexcept {
    // A 32-bit division is several times as fast on many processors.
    if (static_cast<std::uint64_t>(a | b) >> 32 != 0 || b == 0) return false;
    out = Value(
        static_cast<std::int64_t>(static_cast<std::uint32_t>(a) % static_cast<std::uint32_t>(b)));
    return true;
  }
  static bool floats(double, double, Value&) noexcept { return false; }
};

// What the operator's inline cases leave. Takes over the owned operands.
template <class Op, class Left, class Right>
[[gnu::noinline]] Value finishArithmetic(const Node* node, Value* base, Value ownedLeft,
                                         Value ownedRight) {
  const OwnedValue leftGuard(ownedLeft);
  const OwnedValue rightGuard(ownedRight);
  const auto* const binary = static_cast<const BinaryExpr*>(node);
  return evaluateArithmetic(reload<Left>(binary, base, ownedLeft), Op::kToken,
                            reload<Right>(binary, base, ownedRight), node->line);
}

template <class Op>
inline bool tryArithmetic(Value left, Value right, Value& out) noexcept {
  if (left.tag == kInteger && right.tag == kInteger) [[likely]] {
    return Op::integers(left.integer, right.integer, out);
  }
  if (left.tag == kFloat && right.tag == kFloat) [[likely]] {
    return Op::floats(left.number, right.number, out);
  }
  double a = 0;
  double b = 0;
  if (!tryAsFloat(left, a) || !tryAsFloat(right, b)) return false;
  return Op::floats(a, b, out);
}

template <class Op>
struct Arithmetic {
  using Result = Value;

  template <class Left, class Right>
  static Value apply(const Node* node, Value* base, Value left, Value right) {
    Value result;
    if (tryArithmetic<Op>(left, right, result)) [[likely]]
      return result;
    return finishArithmetic<Op, Left, Right>(node, base, onlyOwned<Left>(left),
                                             onlyOwned<Right>(right));
  }

  [[gnu::noinline]] static Value rightAfterCounted(const Node* node, Value* base, Value left) {
    const OwnedValue leftGuard(left);
    const auto* const binary = static_cast<const BinaryExpr*>(node);
    const OwnedValue right(evaluateExpression(binary->right, base));
    return evaluateArithmetic(left, Op::kToken, right.get(), node->line);
  }

  template <class Left, class Right>
  struct Execute {
    [[gnu::flatten]] static Value run(const Node* node, Value* base) {
      return withOperands<Arithmetic, Left, Right>(static_cast<const BinaryExpr*>(node), node,
                                                   base);
    }
  };
};

// `x = a + b`, where x is a frame variable that never owns anything: one node for the statement.
template <class Op>
struct ArithmeticStore {
  using Result = Value;

  template <class Left, class Right>
  static Value apply(const Node* node, Value* base, Value left, Value right) {
    Value result;
    if (!tryArithmetic<Op>(left, right, result)) [[unlikely]] {
      return finish<Left, Right>(node, base, onlyOwned<Left>(left), onlyOwned<Right>(right));
    }
    slotAt(base, static_cast<const AssignmentStmt*>(node)->targetOffset) = result;
    return normalCompletion();
  }

  template <class Left, class Right>
  [[gnu::noinline]] static Value finish(const Node* node, Value* base, Value ownedLeft,
                                        Value ownedRight) {
    const auto* const statement = static_cast<const AssignmentStmt*>(node);
    slotAt(base, statement->targetOffset) =
        finishArithmetic<Op, Left, Right>(statement->value, base, ownedLeft, ownedRight);
    return normalCompletion();
  }

  [[gnu::noinline]] static Value rightAfterCounted(const Node* node, Value* base, Value left) {
    const auto* const statement = static_cast<const AssignmentStmt*>(node);
    slotAt(base, statement->targetOffset) =
        Arithmetic<Op>::rightAfterCounted(statement->value, base, left);
    return normalCompletion();
  }

  template <class Left, class Right>
  struct Execute {
    [[gnu::flatten]] static Value run(const Node* node, Value* base) {
      const auto* const value =
          static_cast<const BinaryExpr*>(static_cast<const AssignmentStmt*>(node)->value);
      return withOperands<ArithmeticStore, Left, Right>(value, node, base);
    }
  };
};

// The entry of `Form`, Arithmetic or ArithmeticStore, for an operator and its operands' shapes.
template <template <class> class Form>
NodeFunction functionFor(TokenKind op, OperandShapes shapes) noexcept {
  switch (op) {
    case TokenKind::Plus:
      return chooseByShapes<Form<Add>::template Execute, NodeFunction>(shapes);
    case TokenKind::Minus:
      return chooseByShapes<Form<Subtract>::template Execute, NodeFunction>(shapes);
    case TokenKind::Star:
      return chooseByShapes<Form<Multiply>::template Execute, NodeFunction>(shapes);
    case TokenKind::Slash:
      return chooseByShapes<Form<Divide>::template Execute, NodeFunction>(shapes);
    default:
      return chooseByShapes<Form<Modulo>::template Execute, NodeFunction>(shapes);
  }
}

}  // namespace

void chooseArithmetic(BinaryExpr& node) {
  node.execute = functionFor<Arithmetic>(node.op, noteOperands(node));
  node.test = testValue;
}

void chooseArithmeticStore(AssignmentStmt& statement) {
  const auto& value = static_cast<const BinaryExpr&>(*statement.value);
  statement.execute = functionFor<ArithmeticStore>(value.op, operandShapes(value));
}

}  // namespace tarvel::lua::internal
