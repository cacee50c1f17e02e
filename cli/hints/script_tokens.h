#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "lua/frontend/token.h"
#include "lua/value/site_table.h"

namespace tarvel::lua::internal {

struct ScriptToken {
  TokenKind kind;
  std::string text;  // as written; of a string literal, the decoded contents
  Place place;       // of the first byte
};

// A script's tokens, for a look around the place where it failed. Borrows the source.
class ScriptTokens {
 public:
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  // Takes all of the source or, where not all of it consists of tokens, what stands before the
  // place. Throws std::runtime_error where not even that does.
  ScriptTokens(std::string_view source, Place place);

  // The token that begins at the place, which is size() at the end of what was taken; kNone where
  // none does.
  std::size_t failed() const { return failed_; }
  // Without the end.
  std::size_t size() const { return tokens_.size() - 1; }
  // What stands in the source before the place, and from it on.
  std::string_view textBefore() const { return source_.substr(0, offset_); }
  std::string_view textAfter() const { return source_.substr(offset_); }

  // The end for every index outside, such as that before the first.
  const ScriptToken& operator[](std::size_t index) const {
    return index < tokens_.size() ? tokens_[index] : tokens_.back();
  }
  TokenKind kind(std::size_t index) const { return (*this)[index].kind; }
  bool is(std::size_t index, TokenKind kind) const { return (*this)[index].kind == kind; }
  // Whether it is this name, or this number.
  bool isWord(std::size_t index, std::string_view text) const;
  // Whether the next token follows without a blank. For all but strings.
  bool touchesNext(std::size_t index) const;

  // The bracket that belongs to the one at the index; kNone where it is missing, and where there is
  // no such bracket.
  std::size_t closingBracket(std::size_t open) const;
  std::size_t openingBracket(std::size_t close) const;

  // The source from behind a token on. For all but strings.
  std::string_view textBehind(std::size_t index) const;

  // As written, but a string always in double quotes.
  std::string text(std::size_t index) const;

 private:
  std::string_view source_;
  std::size_t offset_;  // of the place
  std::vector<ScriptToken> tokens_;
  std::size_t failed_ = kNone;
};

// What a chain of fields and calls may end with, and an operand.
bool endsOperand(TokenKind kind);

// Whether it takes one operand more on its right.
bool isOperator(TokenKind kind);

}  // namespace tarvel::lua::internal
