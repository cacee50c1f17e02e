#include "cli/hints/operand_hints.h"

#include <cstddef>
#include <utility>
#include <vector>

namespace tarvel::lua::internal {

namespace {

struct Operand {
  enum class Type { Number, String, Chain, Other };

  Type type = Type::Other;  // Number and String: this is sure
  Chain chain = {};
};

// How tight an operator binds; 0 for what is none.
int rankOf(TokenKind kind) {
  if (isComparison(kind)) return 1;
  if (kind == TokenKind::DotDot) return 2;
  if (kind == TokenKind::Plus || kind == TokenKind::Minus) return 3;
  return isArithmetic(kind) ? 4 : 0;
}

// What an operator gives that did not fail.
Operand resultOf(TokenKind op) {
  if (isArithmetic(op) || op == TokenKind::Hash) return {Operand::Type::Number};
  return {op == TokenKind::DotDot ? Operand::Type::String : Operand::Type::Other};
}

Operand asOperand(const ScriptTokens& tokens, Chain chain) {
  if (chain.isEmpty()) return {};
  if (chain.steps.size() > 1) return {Operand::Type::Chain, std::move(chain)};
  switch (tokens.kind(chain.begin())) {
    case TokenKind::Integer:
    case TokenKind::Number:
      return {Operand::Type::Number};
    case TokenKind::String:
      return {Operand::Type::String, std::move(chain)};
    case TokenKind::Identifier:
      return {Operand::Type::Chain, std::move(chain)};
    default:
      return {};
  }
}

Operand operandBefore(const ScriptTokens& tokens, std::size_t op) {
  const std::size_t first = startOfChain(tokens, op - 1);
  if (first == ScriptTokens::kNone) return {};
  const TokenKind before = tokens.kind(first - 1);
  if (before == TokenKind::Hash || before == TokenKind::Not) return resultOf(before);
  if (before == TokenKind::Minus && !endsOperand(tokens.kind(first - 2))) return resultOf(before);
  const int rank = rankOf(tokens.kind(op));
  const bool isGrouped = rankOf(before) > rank || (rankOf(before) == rank && rank > 2);
  return isGrouped ? resultOf(before) : asOperand(tokens, readChain(tokens, first));
}

// `rank` is that of the operator in front.
Operand operandAt(const ScriptTokens& tokens, std::size_t first, int rank) {
  if (isOperator(tokens.kind(first))) return resultOf(tokens.kind(first));
  Chain chain = readChain(tokens, first);
  if (chain.isEmpty()) return {};
  const TokenKind next = tokens.kind(chain.end());
  return rankOf(next) > rank ? resultOf(next) : asOperand(tokens, std::move(chain));
}

std::string quoted(const ScriptCode& code, const Operand& operand) {
  return quotedText(code.tokens, operand.chain, operand.chain.steps.size());
}

std::string firstAbsence(const ScriptCode& code, const std::vector<Operand>& operands) {
  for (const Operand& operand : operands) {
    std::string hint = absenceHint(code, operand.chain, operand.chain.steps.size());
    if (!hint.empty()) return hint;
  }
  return {};
}

// On operands that should all be numbers.
std::string notNumbersHint(const ScriptCode& code, const std::vector<Operand>& operands) {
  if (std::string hint = firstAbsence(code, operands); !hint.empty()) return hint;
  std::string names;
  for (const Operand& operand : operands) {
    if (operand.type == Operand::Type::Other) return {};
    if (operand.type == Operand::Type::Number) continue;
    names += (names.empty() ? "" : " or ") + quoted(code, operand);
  }
  if (names.empty()) return {};
  return names + " is no number here; a string needs tonumber(s)";
}

// The comma or the `do` behind the bound that begins here.
std::size_t endOfBound(const ScriptTokens& tokens, std::size_t first) {
  std::size_t i = first;
  while (i < tokens.size() && !tokens.is(i, TokenKind::Comma) && !tokens.is(i, TokenKind::Do)) {
    const std::size_t close = tokens.closingBracket(i);
    i = (close == ScriptTokens::kNone ? i : close) + 1;
  }
  return i;
}

bool isDigits(const ScriptTokens& tokens, const Operand& operand) {
  return operand.type == Operand::Type::String &&
         tokens[operand.chain.begin()].text.find_first_not_of("0123456789.- ") == std::string::npos;
}

}  // namespace

std::string arithmeticHint(const ScriptCode& code) {
  const TokenKind op = code.tokens.kind(code.failed);
  const std::vector<Operand> operands{operandBefore(code.tokens, code.failed),
                                      operandAt(code.tokens, code.failed + 1, rankOf(op))};
  if (op == TokenKind::Plus) {
    for (const Operand& operand : operands) {
      if (operand.type == Operand::Type::String && !isDigits(code.tokens, operand)) {
        return "+ does not join strings: write a .. b";
      }
    }
  }
  return notNumbersHint(code, operands);
}

std::string comparisonHint(const ScriptCode& code) {
  using Type = Operand::Type;
  const int rank = rankOf(code.tokens.kind(code.failed));
  const Operand left = operandBefore(code.tokens, code.failed);
  const Operand right = operandAt(code.tokens, code.failed + 1, rank);
  if (std::string hint = firstAbsence(code, {left, right}); !hint.empty()) return hint;
  if (left.type == Type::Other || right.type == Type::Other) return {};
  for (const auto& [known, other] : {std::pair(left, right), std::pair(right, left)}) {
    if (known.type == Type::Number && other.type == Type::Chain) {
      return quoted(code, other) + " is no number here; a string needs tonumber(s)";
    }
    if (known.type == Type::String && other.type == Type::Chain) {
      return quoted(code, other) + " is no string here; a number needs tostring(n)";
    }
  }
  return "numbers and strings have no common order: write tonumber(s) or tostring(n)";
}

std::string negationHint(const ScriptCode& code) {
  return notNumbersHint(code, {operandAt(code.tokens, code.failed + 1, rankOf(TokenKind::Star))});
}

std::string lengthHint(const ScriptCode& code) {
  const Operand operand = operandAt(code.tokens, code.failed + 1, rankOf(TokenKind::Star));
  std::string hint = firstAbsence(code, {operand});
  if (!hint.empty() || operand.type != Operand::Type::Chain) return hint;
  return quoted(code, operand) + " is neither a string nor a table here";
}

std::string loopBoundsHint(const ScriptCode& code) {
  std::vector<Operand> bounds;
  std::size_t end = code.failed + 2;  // the `=` behind the variable, then a comma or the `do`
  do {
    const std::size_t first = end + 1;
    end = endOfBound(code.tokens, first);
    Operand bound = operandAt(code.tokens, first, rankOf(TokenKind::DotDot));
    const bool isWhole = bound.chain.isEmpty() || bound.chain.end() == end;
    bounds.push_back(isWhole ? std::move(bound) : Operand());
  } while (code.tokens.is(end, TokenKind::Comma));
  return notNumbersHint(code, bounds);
}

}  // namespace tarvel::lua::internal
