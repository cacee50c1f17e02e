#include "cli/hints/script_tokens.h"

#include <algorithm>
#include <stdexcept>

#include "lua/frontend/lexer.h"
#include "lua/value/heap.h"
#include "lua/value/memory_charge.h"

namespace tarvel::lua::internal {

namespace {

// The offset of the place; the source's size where there is no such place.
std::size_t offsetOf(std::string_view source, Place place) {
  std::size_t lineStart = 0;
  for (std::uint32_t line = 1; line < place.line; ++line) {
    lineStart = source.find('\n', lineStart);
    if (lineStart == std::string_view::npos) return source.size();
    ++lineStart;
  }
  return std::min(lineStart + place.column - 1, source.size());
}

std::string textOf(const Token& token) {
  if (!token.hasEscapes) return std::string(token.text);
  std::string contents;
  appendDecoded(contents, token.text);
  return contents;
}

std::vector<ScriptToken> tokenise(std::string_view source) {
  const HeapOwner heap;
  MemoryCharge memory(heap.get());
  const std::string chunkName;
  Lexer lexer(source, chunkName);
  std::vector<ScriptToken> tokens;
  std::uint32_t line = 1;
  std::size_t lineStart = 0;
  std::size_t lineEnd = source.find('\n');
  for (Token token; tokens.empty() || token.kind != TokenKind::EndOfFile;) {
    token = lexer.next();
    for (; lineEnd < token.position; lineEnd = source.find('\n', lineStart)) {
      lineStart = lineEnd + 1;
      ++line;
    }
    // Twice, because the vector doubles as it grows.
    memory.add(2 * sizeof(ScriptToken) + token.text.size());
    const auto column = static_cast<std::uint32_t>(token.position - lineStart + 1);
    tokens.push_back({token.kind, textOf(token), {line, column}});
  }
  return tokens;
}

bool opensBracket(TokenKind kind) {
  return kind == TokenKind::LeftParen || kind == TokenKind::LeftBracket ||
         kind == TokenKind::LeftBrace;
}

bool closesBracket(TokenKind kind) {
  return kind == TokenKind::RightParen || kind == TokenKind::RightBracket ||
         kind == TokenKind::RightBrace;
}

}  // namespace

ScriptTokens::ScriptTokens(std::string_view source, Place place)
    : source_(source), offset_(offsetOf(source, place)) {
  try {
    tokens_ = tokenise(source);
  } catch (const std::runtime_error&) {
    tokens_ = tokenise(textBefore());
  }
  const auto isThere = [place](const ScriptToken& token) {
    return token.place.line == place.line && token.place.column == place.column;
  };
  const auto found = std::ranges::find_if(tokens_, isThere);
  if (found != tokens_.end()) failed_ = static_cast<std::size_t>(found - tokens_.begin());
}

bool ScriptTokens::isWord(std::size_t index, std::string_view text) const {
  const ScriptToken& token = (*this)[index];
  return token.kind != TokenKind::String && token.text == text;
}

bool ScriptTokens::touchesNext(std::size_t index) const {
  const ScriptToken& token = (*this)[index];
  const ScriptToken& next = (*this)[index + 1];
  return token.place.line == next.place.line &&
         token.place.column + token.text.size() == next.place.column;
}

std::size_t ScriptTokens::closingBracket(std::size_t open) const {
  std::size_t depth = 0;
  for (std::size_t i = open; i < size(); ++i) {
    if (opensBracket(kind(i))) ++depth;
    if (depth == 0) return kNone;
    if (closesBracket(kind(i)) && --depth == 0) return i;
  }
  return kNone;
}

std::size_t ScriptTokens::openingBracket(std::size_t close) const {
  std::size_t depth = 0;
  for (std::size_t i = close; i < size(); --i) {
    if (closesBracket(kind(i))) ++depth;
    if (depth == 0) return kNone;
    if (opensBracket(kind(i)) && --depth == 0) return i;
  }
  return kNone;
}

std::string_view ScriptTokens::textBehind(std::size_t index) const {
  const ScriptToken& token = (*this)[index];
  const std::string_view text = source_.substr(offsetOf(source_, token.place));
  return text.substr(std::min(token.text.size(), text.size()));
}

std::string ScriptTokens::text(std::size_t index) const {
  const ScriptToken& token = (*this)[index];
  return token.kind == TokenKind::String ? '"' + token.text + '"' : token.text;
}

bool endsOperand(TokenKind kind) {
  switch (kind) {
    case TokenKind::Identifier:
    case TokenKind::Integer:
    case TokenKind::Number:
    case TokenKind::String:
    case TokenKind::Nil:
    case TokenKind::True:
    case TokenKind::False:
    case TokenKind::RightParen:
    case TokenKind::RightBracket:
    case TokenKind::RightBrace:
    case TokenKind::End:
      return true;
    default:
      return false;
  }
}

bool isOperator(TokenKind kind) {
  return isArithmetic(kind) || isComparison(kind) || kind == TokenKind::DotDot ||
         kind == TokenKind::And || kind == TokenKind::Or || kind == TokenKind::Not ||
         kind == TokenKind::Hash;
}

}  // namespace tarvel::lua::internal
