#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "lua/frontend/token.h"
#include "lua/value/memory_charge.h"

namespace tarvel::lua::internal {

// Rejects a chunk: throws UnparsedError, a std::runtime_error "chunkName:line:column: message".
// Lexer and parser report every fault of a source text through this, so all of them have one shape.
[[noreturn]] void failParse(const std::string& chunkName, std::uint32_t line, std::uint32_t column,
                            const std::string& message);

// Turns the text of one chunk into tokens. Borrows what it is given, which must outlive it; the
// tokens are charged to `memory`.
class Lexer {
 public:
  Lexer(std::string_view source, const std::string& chunkName, MemoryCharge& memory)
      : source_(source), chunkName_(chunkName), memory_(memory) {}

  // Returns all tokens of the text, the last of which is the only EndOfFile. Throws what failParse
  // throws at the first byte that fits no token and at a string or comment that does not end, and
  // std::bad_alloc. To be called once.
  std::vector<Token> tokenise();

 private:
  void skipBlanksAndComments();
  Token readToken();
  Token readName();
  Token readNumber();
  Token readQuotedString();
  Token readPunctuator();

  // Reads on from behind an opening "[[" to behind the closing "]]" and returns what is between
  // them, byte for byte. `line` and `column` are only what the error names when there is no end.
  std::string readLongString(std::uint32_t line, std::uint32_t column);

  // A token whose text is everything consumed since `start`, on this line.
  Token lexeme(TokenKind kind, std::size_t start) const;

  bool atEnd() const { return position_ == source_.size(); }
  bool startsWith(std::string_view text) const {
    return source_.substr(position_).starts_with(text);
  }
  // The byte `ahead` of the next one; a zero byte past the end, which no caller looks for.
  char peek(std::size_t ahead = 0) const {
    return position_ + ahead < source_.size() ? source_[position_ + ahead] : '\0';
  }
  char next();
  bool skip(char expected);
  std::uint32_t columnOf(std::size_t position) const {
    return static_cast<std::uint32_t>(position - lineStart_ + 1);
  }

  std::string_view source_;
  const std::string& chunkName_;
  MemoryCharge& memory_;
  std::size_t position_ = 0;   // of the next unread byte
  std::size_t lineStart_ = 0;  // position of the current line's first byte
  std::uint32_t line_ = 1;
};

}  // namespace tarvel::lua::internal
