#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "lua/frontend/token.h"
#include "lua/value/site_table.h"

namespace tarvel::lua::internal {

// Rejects a chunk: throws UnparsedError, a std::runtime_error "chunkName:line:column: message".
// Lexer and parser report every fault of a source text through this, so all of them have one shape.
[[noreturn]] void failParse(const std::string& chunkName, Place place, const std::string& message);

// Turns the text of one chunk into tokens, one after the other. Borrows what it is given, which
// must outlive it and its tokens.
class Lexer {
 public:
  Lexer(std::string_view source, const std::string& chunkName)
      : source_(source), chunkName_(chunkName) {}

  // The next token; from the end of the text on, EndOfFile. Throws what failParse throws at the
  // first byte that fits no token and at a string or comment that does not end.
  Token next();

  // Whether the next token is `=`.
  bool isAtAssign();

  // Rejects the chunk because of a token that has been read. Deliberate: a text that does not
  // consist of tokens is rejected for that, wherever it is, and for nothing else.
  [[noreturn]] void reject(const Token& token, const std::string& message);

 private:
  void skipBlanksAndComments();
  Token readName();
  Token readNumber();
  Token readQuotedString();
  Token readLongString();
  Token readPunctuator();

  // Reads on from behind an opening "[[" to behind the closing "]]" and returns what is between
  // them, byte for byte. `start` is only what the error names when there is no end.
  std::string_view readLongBracket(std::size_t start);

  // A token that consists of everything from `start` to the next unread byte.
  Token lexeme(TokenKind kind, std::size_t start) const {
    return {kind, false, start, source_.substr(start, position_ - start)};
  }

  [[noreturn]] void failAt(std::size_t position, const std::string& message) const;

  bool atEnd() const { return position_ == source_.size(); }
  // The byte `ahead` of the next one; a zero byte past the end, which no caller looks for.
  char peek(std::size_t ahead = 0) const {
    return position_ + ahead < source_.size() ? source_[position_ + ahead] : '\0';
  }
  bool skip(char expected);

  std::string_view source_;
  const std::string& chunkName_;
  std::size_t position_ = 0;  // of the next unread byte
};

// The contents of a string literal: the bytes of its token with the escapes in them decoded.
void appendDecoded(std::string& contents, std::string_view text);

}  // namespace tarvel::lua::internal
