#include "lua/frontend/lexer.h"

#include <algorithm>
#include <array>

#include "lua/value/errors.h"

namespace tarvel::lua::internal {

namespace {

// Classes of bytes are spelled out because those of the standard library depend on the locale.
bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isHexDigit(char c) { return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }
bool isNameStart(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }

struct Keyword {
  std::string_view text;
  TokenKind kind;
};

// By length, so that a name is compared only with the few keywords of its own length.
constexpr Keyword kKeywords[] = {
    {"do", TokenKind::Do},
    {"if", TokenKind::If},
    {"in", TokenKind::In},
    {"or", TokenKind::Or},
    {"and", TokenKind::And},
    {"end", TokenKind::End},
    {"for", TokenKind::For},
    {"nil", TokenKind::Nil},
    {"not", TokenKind::Not},
    {"else", TokenKind::Else},
    {"then", TokenKind::Then},
    {"true", TokenKind::True},
    {"break", TokenKind::Break},
    {"false", TokenKind::False},
    {"local", TokenKind::Local},
    {"while", TokenKind::While},
    {"elseif", TokenKind::Elseif},
    {"return", TokenKind::Return},
    {"function", TokenKind::Function},
};
constexpr std::size_t kLongestKeyword = 8;  // bytes

// Element n: how many keywords are shorter than n bytes.
constexpr auto kShorterKeywords = [] {
  std::array<std::size_t, kLongestKeyword + 2> shorter{};
  for (std::size_t length = 0; length < shorter.size(); ++length) {
    for (const Keyword& keyword : kKeywords) shorter[length] += keyword.text.size() < length;
  }
  return shorter;
}();
static_assert(kShorterKeywords.back() == std::size(kKeywords));

TokenKind kindOfName(std::string_view name) {
  if (name.size() > kLongestKeyword) return TokenKind::Identifier;
  const Keyword* end = kKeywords + kShorterKeywords[name.size() + 1];
  for (const Keyword* keyword = kKeywords + kShorterKeywords[name.size()]; keyword != end;
       ++keyword) {
    if (keyword->text == name) return keyword->kind;
  }
  return TokenKind::Identifier;
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

void failParse(const std::string& chunkName, std::uint32_t line, std::uint32_t column,
               const std::string& message) {
  throw UnparsedError(FailureKind::Syntax, chunkName, line, column, message);
}

std::vector<Token> Lexer::tokenise() {
  std::vector<Token> tokens;
  for (skipBlanksAndComments(); !atEnd(); skipBlanksAndComments()) {
    Token token = readToken();
    // Twice, because the vector doubles as it grows.
    memory_.add(2 * sizeof(Token) + token.text.size());
    tokens.push_back(std::move(token));
  }
  tokens.push_back(lexeme(TokenKind::EndOfFile, position_));
  return tokens;
}

// Only long brackets without `=` exist: `--[==[` starts a comment of one line.
void Lexer::skipBlanksAndComments() {
  for (;;) {
    while (!atEnd() && isBlank(source_[position_])) next();
    if (!startsWith("--")) return;
    if (startsWith("--[[")) {
      position_ += 4;
      readLongString(line_, columnOf(position_));
    } else {
      position_ = std::min(source_.find('\n', position_), source_.size());
    }
  }
}

Token Lexer::readToken() {
  const char first = source_[position_];
  if (isNameStart(first)) return readName();
  if (isDigit(first)) return readNumber();
  if (first == '"' || first == '\'') return readQuotedString();
  if (startsWith("[[")) {
    Token token = lexeme(TokenKind::String, position_);
    position_ += 2;
    token.text = readLongString(token.line, token.column);
    return token;
  }
  return readPunctuator();
}

Token Lexer::readName() {
  const std::size_t start = position_;
  while (isNameStart(peek()) || isDigit(peek())) ++position_;
  return lexeme(kindOfName(source_.substr(start, position_ - start)), start);
}

// There are no exponents, and a dot belongs to a number only if a digit follows: `1..2` is a
// concatenation.
Token Lexer::readNumber() {
  const std::size_t start = position_;
  if (peek() == '0' && (peek(1) == 'x' || peek(1) == 'X')) {
    position_ += 2;
    while (isHexDigit(peek())) ++position_;
    return lexeme(TokenKind::Integer, start);
  }
  while (isDigit(peek())) ++position_;
  if (peek() != '.' || !isDigit(peek(1))) return lexeme(TokenKind::Integer, start);
  ++position_;
  while (isDigit(peek())) ++position_;
  return lexeme(TokenKind::Number, start);
}

Token Lexer::readQuotedString() {
  Token token = lexeme(TokenKind::String, position_);
  const char quote = next();
  for (;;) {
    const std::size_t start = position_;
    while (!atEnd() && source_[position_] != quote && source_[position_] != '\\') next();
    token.text.append(source_, start, position_ - start);
    if (atEnd()) failParse(chunkName_, token.line, token.column, "unterminated string literal");
    if (next() == quote) return token;
    if (atEnd()) failParse(chunkName_, token.line, token.column, "unterminated string escape");
    token.text += unescape(next());
  }
}

std::string Lexer::readLongString(std::uint32_t line, std::uint32_t column) {
  const std::size_t start = position_;
  const std::size_t end = source_.find("]]", start);
  if (end == std::string_view::npos) {
    failParse(chunkName_, line, column, "unterminated long string literal");
  }
  while (position_ < end + 2) next();
  return std::string(source_.substr(start, end - start));
}

Token Lexer::readPunctuator() {
  const std::size_t start = position_;
  const char first = next();
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
      failParse(chunkName_, line_, columnOf(start), "unexpected '~'");
    default:
      failParse(chunkName_, line_, columnOf(start),
                std::string("unexpected character '") + first + "'");
  }
}

Token Lexer::lexeme(TokenKind kind, std::size_t start) const {
  return {kind, std::string(source_.substr(start, position_ - start)), line_, columnOf(start)};
}

char Lexer::next() {
  const char c = source_[position_++];
  if (c == '\n') {
    ++line_;
    lineStart_ = position_;
  }
  return c;
}

bool Lexer::skip(char expected) {
  if (peek() != expected) return false;
  ++position_;
  return true;
}

}  // namespace tarvel::lua::internal
