#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tarvel::lua::internal {

// The numbers are fixed. Punctuation and operators come first, then the keywords in alphabetical
// order.
enum class TokenKind : std::uint8_t {
  Identifier = 0,
  Integer = 1,
  Number = 2,
  String = 3,
  LeftParen = 4,
  RightParen = 5,
  LeftBrace = 6,
  RightBrace = 7,
  LeftBracket = 8,
  RightBracket = 9,
  Comma = 10,
  Semicolon = 11,
  Dot = 12,
  DotDot = 13,
  Colon = 14,
  Plus = 15,
  Minus = 16,
  Star = 17,
  Slash = 18,
  Percent = 19,
  Hash = 20,
  Assign = 21,
  Equal = 22,
  NotEqual = 23,
  Less = 24,
  LessEqual = 25,
  Greater = 26,
  GreaterEqual = 27,
  And = 28,
  Break = 29,
  Do = 30,
  Else = 31,
  Elseif = 32,
  End = 33,
  False = 34,
  For = 35,
  Function = 36,
  If = 37,
  In = 38,
  Local = 39,
  Nil = 40,
  Not = 41,
  Or = 42,
  Return = 43,
  Then = 44,
  True = 45,
  While = 46,
  EndOfFile = 47,
};

// `+`, `-`, `*`, `/` and `%`.
constexpr bool isArithmetic(TokenKind kind) noexcept {
  switch (kind) {
    case TokenKind::Plus:
    case TokenKind::Minus:
    case TokenKind::Star:
    case TokenKind::Slash:
    case TokenKind::Percent:
      return true;
    default:
      return false;
  }
}

// `==`, `~=` and the four that order.
constexpr bool isComparison(TokenKind kind) noexcept {
  switch (kind) {
    case TokenKind::Equal:
    case TokenKind::NotEqual:
    case TokenKind::Less:
    case TokenKind::LessEqual:
    case TokenKind::Greater:
    case TokenKind::GreaterEqual:
      return true;
    default:
      return false;
  }
}

struct Token {
  TokenKind kind = TokenKind::EndOfFile;
  bool hasEscapes = false;     // a string literal: its text is to be decoded
  std::size_t position = 0;    // of the first byte in the source
  std::string_view text = {};  // in the source: the lexeme; of a string literal, what it delimits
};

}  // namespace tarvel::lua::internal
