#include "lua/frontend/lexer.h"

#include <algorithm>
#include <array>

#include "lua/value/errors.h"

namespace tarvel::lua::internal {

namespace {

// ---- Bytes --------------------------------------------------------------------------------------

// Classes of bytes are spelled out because those of the standard library depend on the locale.
enum ByteClass : std::uint8_t { kBlank = 1, kDigit = 2, kHexDigit = 4, kNameStart = 8 };

constexpr std::uint8_t classesOf(char c) {
  const bool isLower = c >= 'a' && c <= 'z';
  const bool isUpper = c >= 'A' && c <= 'Z';
  const bool isDigit = c >= '0' && c <= '9';
  const bool isHexLetter = (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
  unsigned classes = 0;
  if (c == ' ' || (c >= '\t' && c <= '\r')) classes |= kBlank;
  if (isDigit) classes |= kDigit;
  if (isDigit || isHexLetter) classes |= kHexDigit;
  if (isLower || isUpper || c == '_') classes |= kNameStart;
  return static_cast<std::uint8_t>(classes);
}

constexpr auto kClasses = [] {
  std::array<std::uint8_t, 256> classes{};
  for (std::size_t i = 0; i < classes.size(); ++i) classes[i] = classesOf(static_cast<char>(i));
  return classes;
}();

bool isIn(unsigned classes, char c) { return (kClasses[static_cast<unsigned char>(c)] & classes); }

// The first position from `position` on whose byte is in none of the classes.
std::size_t skipClass(unsigned classes, std::string_view source, std::size_t position) {
  while (position < source.size() && isIn(classes, source[position])) ++position;
  return position;
}

// ---- Keywords -----------------------------------------------------------------------------------

// In the order of their kinds, which is that of the alphabet.
constexpr std::string_view kKeywords[] = {
    "and", "break", "do",  "else", "elseif", "end",    "false", "for",  "function", "if",
    "in",  "local", "nil", "not",  "or",     "return", "then",  "true", "while"};
constexpr std::size_t kShortestKeyword = 2;  // bytes
constexpr std::size_t kLongestKeyword = 8;

// Element n: how many keywords begin with one of the first n letters of the alphabet.
constexpr auto kKeywordsBefore = [] {
  std::array<std::uint8_t, 'z' - 'a' + 2> before{};
  for (std::size_t letter = 0; letter < before.size(); ++letter) {
    for (const std::string_view keyword : kKeywords) {
      before[letter] += static_cast<std::size_t>(keyword[0] - 'a') < letter;
    }
  }
  return before;
}();

TokenKind kindOfName(std::string_view name) {
  const auto letter = static_cast<std::size_t>(name[0]) - 'a';
  if (name.size() < kShortestKeyword || name.size() > kLongestKeyword || letter > 'z' - 'a') {
    return TokenKind::Identifier;
  }
  for (std::size_t i = kKeywordsBefore[letter]; i < kKeywordsBefore[letter + 1]; ++i) {
    if (kKeywords[i] == name) {
      return static_cast<TokenKind>(static_cast<std::size_t>(TokenKind::And) + i);
    }
  }
  return TokenKind::Identifier;
}

// ---- Places and escapes -------------------------------------------------------------------------

Place placeOf(std::string_view source, std::size_t position) {
  const std::string_view before = source.substr(0, position);
  const std::size_t lineStart = before.rfind('\n') + 1;  // 0 where there is none
  return {static_cast<std::uint32_t>(std::ranges::count(before, '\n') + 1),
          static_cast<std::uint32_t>(position - lineStart + 1)};
}

// What a backslash followed by `c` stands for. Deliberate: an unknown
// escape is the byte itself, so that `\%` and `\/` in texts made for other tools are read.
char unescape(char c) {
  switch (c) {
    case 'n':
      return '\n';
    case 'r':
      return '\r';
    case 't':
      return '\t';
    case '0':
      return '\0';
    default:
      return c;
  }
}

}  // namespace

void appendDecoded(std::string& contents, std::string_view text) {
  for (std::size_t position = 0;;) {
    const std::size_t backslash = text.find('\\', position);
    contents.append(text.substr(position, backslash - position));
    if (backslash == std::string_view::npos) return;
    contents += unescape(text[backslash + 1]);
    position = backslash + 2;
  }
}

// ---- Failures -----------------------------------------------------------------------------------

void failParse(const std::string& chunkName, Place place, const std::string& message) {
  throw UnparsedError(FailureKind::Syntax, chunkName, place.line, place.column, message);
}

void Lexer::failAt(std::size_t position, const std::string& message) const {
  failParse(chunkName_, placeOf(source_, position), message);
}

void Lexer::reject(const Token& token, const std::string& message) {
  while (next().kind != TokenKind::EndOfFile) continue;
  failAt(token.position, message);
}

// ---- Tokens -------------------------------------------------------------------------------------

// Only long brackets without `=` exist: `--[==[` starts a comment of one line.
void Lexer::skipBlanksAndComments() {
  for (;;) {
    position_ = skipClass(kBlank, source_, position_);
    if (peek() != '-' || peek(1) != '-') return;
    if (peek(2) == '[' && peek(3) == '[') {
      position_ += 4;
      readLongBracket(position_);
    } else {
      position_ = std::min(source_.find('\n', position_), source_.size());
    }
  }
}

Token Lexer::next() {
  skipBlanksAndComments();
  if (atEnd()) return lexeme(TokenKind::EndOfFile, position_);
  const char first = source_[position_];
  if (isIn(kNameStart, first)) return readName();
  if (isIn(kDigit, first)) return readNumber();
  if (first == '"' || first == '\'') return readQuotedString();
  if (first == '[' && peek(1) == '[') return readLongString();
  return readPunctuator();
}

bool Lexer::isAtAssign() {
  skipBlanksAndComments();
  return peek() == '=' && peek(1) != '=';
}

Token Lexer::readName() {
  const std::size_t start = position_;
  position_ = skipClass(kNameStart | kDigit, source_, start + 1);
  return lexeme(kindOfName(source_.substr(start, position_ - start)), start);
}

// There are no exponents, and a dot belongs to a number only if a digit follows: `1..2` is a
// concatenation.
Token Lexer::readNumber() {
  const std::size_t start = position_;
  if (peek() == '0' && (peek(1) == 'x' || peek(1) == 'X')) {
    position_ = skipClass(kHexDigit, source_, start + 2);
    return lexeme(TokenKind::Integer, start);
  }
  position_ = skipClass(kDigit, source_, start + 1);
  if (peek() != '.' || !isIn(kDigit, peek(1))) return lexeme(TokenKind::Integer, start);
  position_ = skipClass(kDigit, source_, position_ + 1);
  return lexeme(TokenKind::Number, start);
}

Token Lexer::readQuotedString() {
  const std::size_t start = position_;
  const char quote = source_[start];
  bool hasEscapes = false;
  for (++position_;; position_ += 2) {
    while (!atEnd() && source_[position_] != quote && source_[position_] != '\\') ++position_;
    if (atEnd()) failAt(start, "unterminated string literal");
    if (source_[position_] == quote) break;
    if (position_ + 1 == source_.size()) failAt(start, "unterminated string escape");
    hasEscapes = true;
  }
  ++position_;
  return {TokenKind::String, hasEscapes, start, source_.substr(start + 1, position_ - start - 2)};
}

Token Lexer::readLongString() {
  const std::size_t start = position_;
  position_ += 2;
  return {TokenKind::String, false, start, readLongBracket(start)};
}

std::string_view Lexer::readLongBracket(std::size_t start) {
  const std::size_t end = source_.find("]]", position_);
  if (end == std::string_view::npos) failAt(start, "unterminated long string literal");
  const std::string_view contents = source_.substr(position_, end - position_);
  position_ = end + 2;
  return contents;
}

Token Lexer::readPunctuator() {
  const std::size_t start = position_;
  const char first = source_[position_++];
  switch (first) {
    case '(':
      return lexeme(TokenKind::LeftParen, start);
    case ')':
      return lexeme(TokenKind::RightParen, start);
    case '{':
      return lexeme(TokenKind::LeftBrace, start);
    case '}':
      return lexeme(TokenKind::RightBrace, start);
    case '[':
      return lexeme(TokenKind::LeftBracket, start);
    case ']':
      return lexeme(TokenKind::RightBracket, start);
    case ',':
      return lexeme(TokenKind::Comma, start);
    case ';':
      return lexeme(TokenKind::Semicolon, start);
    case ':':
      return lexeme(TokenKind::Colon, start);
    case '+':
      return lexeme(TokenKind::Plus, start);
    case '-':
      return lexeme(TokenKind::Minus, start);
    case '*':
      return lexeme(TokenKind::Star, start);
    case '/':
      return lexeme(TokenKind::Slash, start);
    case '%':
      return lexeme(TokenKind::Percent, start);
    case '#':
      return lexeme(TokenKind::Hash, start);
    case '.':
      return lexeme(skip('.') ? TokenKind::DotDot : TokenKind::Dot, start);
    case '=':
      return lexeme(skip('=') ? TokenKind::Equal : TokenKind::Assign, start);
    case '<':
      return lexeme(skip('=') ? TokenKind::LessEqual : TokenKind::Less, start);
    case '>':
      return lexeme(skip('=') ? TokenKind::GreaterEqual : TokenKind::Greater, start);
    case '~':
      if (skip('=')) return lexeme(TokenKind::NotEqual, start);
      failAt(start, "unexpected '~'");
    default:
      failAt(start, std::string("unexpected character '") + first + "'");
  }
}

bool Lexer::skip(char expected) {
  if (peek() != expected) return false;
  ++position_;
  return true;
}

}  // namespace tarvel::lua::internal
