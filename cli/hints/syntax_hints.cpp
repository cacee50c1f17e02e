#include "cli/hints/syntax_hints.h"

#include <cstddef>

namespace tarvel::lua::internal {

namespace {

struct Fault {
  std::string_view message;
  const ScriptTokens& tokens;
  std::size_t at;  // the token that did not fit, or the end where none begins

  TokenKind kind(std::size_t index) const { return tokens.kind(index); }
  bool is(std::size_t index, TokenKind token) const { return tokens.is(index, token); }
};

constexpr const char* kNoBits = "there are no bitwise operators";
constexpr const char* kNoVarargs =
    "there are no variable arguments: pass a table; those of the script are in arg[1], arg[2]";
constexpr const char* kNoIncrement = "there is no operator ++: write x = x + 1";
constexpr const char* kComments = "comments begin with --";
constexpr const char* kNoExponents = "numbers have no exponent: write 1000 or tonumber(\"1e3\")";

// ---- Bytes that begin no token ------------------------------------------------------------------

std::string byteHint(std::string_view rest, bool isFirstLine) {
  struct Entry {
    std::string_view text;
    const char* hint;
  };
  constexpr Entry kEntries[] = {
      {"^", "there is no operator ^: write x * x"},
      {"&&", "there is no operator &&: write and"},
      {"||", "there is no operator ||: write or"},
      {"&", kNoBits},
      {"|", kNoBits},
      {"~", kNoBits},
      {"!=", "there is no operator !=: write ~="},
      {"!", "there is no operator !: write not x"},
      {"\xEF\xBB\xBF", "the text begins with a byte-order mark: save it without"},
      {"\xE2\x80\x9C", "quotes are \" or '"},
      {"\xE2\x80\x9D", "quotes are \" or '"},
      {"\xE2\x80\x98", "quotes are \" or '"},
      {"\xE2\x80\x99", "quotes are \" or '"},
      {"\xC2\xA0", "this blank is none in ASCII: type it again"},
  };
  if (isFirstLine) return "a first line #!... is not skipped: leave it out";
  for (const Entry& entry : kEntries) {
    if (rest.starts_with(entry.text)) return entry.hint;
  }
  return {};
}

std::string lexicalHint(const Fault& fault) {
  if (fault.message.starts_with("unexpected character") || fault.message == "unexpected '~'") {
    return byteHint(fault.tokens.textAfter(), fault.tokens.textBefore() == "#");
  }
  if (fault.message == "unterminated string literal") {
    return "a string may go over several lines, so the missing quote may be that of an earlier one";
  }
  return {};
}

// ---- Long brackets ------------------------------------------------------------------------------

// For a place in what was meant as a comment of several lines, `--[=[ ... ]=]`.
std::string commentHint(const Fault& fault) {
  const std::string_view text = fault.tokens.textBefore();
  const std::size_t open = text.rfind("--[=");
  if (open == std::string_view::npos) return {};
  const std::size_t bracket = text.find_first_not_of('=', open + 3);
  if (bracket == std::string_view::npos || text[bracket] != '[') return {};
  const std::string close = "]" + std::string(text.substr(open + 3, bracket - open - 3)) + "]";
  const bool isOpen = text.find(close, bracket) == std::string_view::npos &&
                      fault.tokens.textAfter().find(close) != std::string_view::npos;
  return isOpen ? "--[=[ begins a comment of one line: write --[[ ... ]]" : "";
}

std::string longStringHint(const Fault& fault) {
  const bool opens =
      fault.is(fault.at, TokenKind::LeftBracket) && fault.tokens.touchesNext(fault.at) &&
      (fault.is(fault.at + 1, TokenKind::Assign) || fault.is(fault.at + 1, TokenKind::Equal));
  return opens ? "there are no long brackets with =: write [[text]]" : "";
}

// ---- Numbers ------------------------------------------------------------------------------------

bool isNumber(TokenKind kind) { return kind == TokenKind::Integer || kind == TokenKind::Number; }

bool isHexadecimal(const ScriptToken& number) {
  return number.text.size() > 1 && (number.text[1] == 'x' || number.text[1] == 'X');
}

// Whether the number at the index goes on as `e5` or `p4` does.
bool hasExponent(const ScriptTokens& tokens, std::size_t index) {
  if (!isNumber(tokens.kind(index)) || !tokens.touchesNext(index)) return false;
  const ScriptToken& next = tokens[index + 1];
  const std::string_view letters = isHexadecimal(tokens[index]) ? "pP" : "eE";
  if (next.kind != TokenKind::Identifier || letters.find(next.text[0]) == std::string_view::npos) {
    return false;
  }
  if (next.text.size() > 1) {
    return next.text.find_first_not_of("0123456789", 1) == std::string::npos;
  }
  const TokenKind sign = tokens.kind(index + 2);
  return (sign == TokenKind::Minus || sign == TokenKind::Plus) &&
         tokens.is(index + 3, TokenKind::Integer);
}

std::string numberHint(const Fault& fault) {
  const ScriptTokens& tokens = fault.tokens;
  for (std::size_t back = 0; back <= 4 && back <= fault.at; ++back) {
    if (hasExponent(tokens, fault.at - back)) return kNoExponents;
  }
  const bool isPoint = fault.is(fault.at, TokenKind::Dot) && tokens.touchesNext(fault.at);
  if (isPoint && fault.is(fault.at + 1, TokenKind::Integer)) {
    return "numbers begin with a digit: write 0." + tokens[fault.at + 1].text;
  }
  const bool endsWithPoint = fault.at >= 2 && fault.is(fault.at - 1, TokenKind::Dot) &&
                             fault.is(fault.at - 2, TokenKind::Integer) &&
                             tokens.touchesNext(fault.at - 2);
  if (!endsWithPoint) return {};
  const ScriptToken& number = tokens[fault.at - 2];
  if (isHexadecimal(number)) return "hexadecimal numbers have no fraction";
  return "numbers do not end with the point: write " + number.text + ".0";
}

// ---- Operators ----------------------------------------------------------------------------------

// Whether the token at the place and one beside it, without a blank between them, are these.
bool isPair(const Fault& fault, std::size_t first, TokenKind left, TokenKind right) {
  return fault.is(first, left) && fault.is(first + 1, right) && fault.tokens.touchesNext(first);
}

// `x += 1`, `x ..= y`, `x++`.
std::string compoundHint(const Fault& fault) {
  const TokenKind op = fault.kind(fault.at);
  if (fault.at == 0 || !endsOperand(fault.kind(fault.at - 1))) return {};
  if (!isArithmetic(op) && op != TokenKind::DotDot) return {};
  const std::string& text = fault.tokens[fault.at].text;
  if (isPair(fault, fault.at, op, TokenKind::Assign)) {
    return "there is no operator " + text + "=: write x = x " + text + " y";
  }
  const bool isIncrement = isPair(fault, fault.at, TokenKind::Plus, TokenKind::Plus);
  return isIncrement ? kNoIncrement : "";
}

// `x--`, with nothing behind it on its line.
std::string decrementHint(const Fault& fault) {
  const bool followsName = fault.is(fault.at - 1, TokenKind::Identifier);
  if (fault.message != "expected function call" || !followsName) return {};
  const std::string_view behind = fault.tokens.textBehind(fault.at - 1);
  const std::size_t end = behind.find_first_not_of(" \t\r;", behind.starts_with("--") ? 2 : 0);
  if (!behind.starts_with("--") || behind.substr(0, end).find('\n') != std::string_view::npos) {
    return {};
  }
  const bool isAlone = end == std::string_view::npos || behind[end] == '\n';
  return isAlone ? "-- begins a comment: write x = x - 1" : "";
}

std::string operatorHint(const Fault& fault) {
  const std::size_t before = fault.at - 1;
  if (isPair(fault, before, TokenKind::Slash, TokenKind::Slash)) {
    const bool beginsLine = fault.tokens[before].place.line > fault.tokens[before - 1].place.line;
    return beginsLine ? kComments : "there is no operator //: write math.floor(x / y)";
  }
  if (isPair(fault, before, TokenKind::Less, TokenKind::Less) ||
      isPair(fault, before, TokenKind::Greater, TokenKind::Greater)) {
    return kNoBits;
  }
  if (isPair(fault, before, TokenKind::Plus, TokenKind::Plus)) return kNoIncrement;
  if (isPair(fault, before, TokenKind::Slash, TokenKind::Star)) return kComments;
  if (fault.message != "expected expression") return {};
  if (isPair(fault, fault.at, TokenKind::Slash, TokenKind::Slash) ||
      isPair(fault, fault.at, TokenKind::Slash, TokenKind::Star)) {
    return kComments;
  }
  if (isPair(fault, fault.at, TokenKind::DotDot, TokenKind::Dot)) return kNoVarargs;
  if (isPair(fault, fault.at, TokenKind::Colon, TokenKind::Colon)) {
    return "there are no labels and no goto";
  }
  return {};
}

// ---- Statements and calls -----------------------------------------------------------------------

std::string statementHint(const Fault& fault) {
  const ScriptToken& before = fault.tokens[fault.at - 1];
  const bool followsName = fault.at > 0 && before.kind == TokenKind::Identifier;
  if (fault.message == "expected function call" && followsName) {
    const bool isName = fault.is(fault.at, TokenKind::Identifier);
    if (before.text == "goto" && isName) {
      return "there is no goto: turn the condition round, or return from a function";
    }
    if (before.text == "continue") {
      return "there is no continue: turn the condition round";
    }
    if (before.text == "repeat") {
      return "there is no repeat: while true do ... if x then break end end";
    }
    const bool declares = before.text == "var" || before.text == "let" || before.text == "const";
    if (declares && isName) return "variables are declared with local";
  }
  if (fault.message == "expected parameter name" && fault.is(fault.at, TokenKind::DotDot)) {
    return kNoVarargs;
  }
  if (fault.message != "expected expression") return {};
  const bool beginsStatement = fault.at == 0 || endsOperand(before.kind) ||
                               before.kind == TokenKind::Semicolon ||
                               before.kind == TokenKind::Do || before.kind == TokenKind::Then ||
                               before.kind == TokenKind::Else;
  if (fault.is(fault.at, TokenKind::Do) && beginsStatement) {
    return "there are no do blocks: if true then ... end";
  }
  const std::string_view attribute = fault.tokens[fault.at + 1].text;
  if (fault.is(fault.at, TokenKind::Less) && (attribute == "const" || attribute == "close")) {
    return "locals have no <" + std::string(attribute) + ">: leave it out";
  }
  return {};
}

bool isCallable(TokenKind kind) {
  return kind == TokenKind::Identifier || kind == TokenKind::RightBracket;
}

// The argument, a string or a table, directly behind what could be called; kNone where there is
// none.
std::size_t bareArgument(const Fault& fault) {
  if (isCallable(fault.kind(fault.at - 1))) {
    if (fault.is(fault.at, TokenKind::String)) return fault.at;
    if (fault.is(fault.at, TokenKind::LeftBrace)) {
      // Braces around a block are meant in another way.
      const bool isBlock = fault.message.starts_with("expected 'then'") ||
                           fault.message.starts_with("expected 'do'");
      const TokenKind next = fault.kind(fault.tokens.closingBracket(fault.at) + 1);
      if (!isBlock || next == TokenKind::Then || next == TokenKind::Do) return fault.at;
    }
  }
  // Where the callee ends a statement, the argument is read as one of its own.
  if (fault.message != "expected function call") return ScriptTokens::kNone;
  std::size_t argument = fault.at - 1;
  if (fault.is(argument, TokenKind::RightBrace)) argument = fault.tokens.openingBracket(argument);
  const bool isBare =
      fault.is(argument, TokenKind::String) || fault.is(argument, TokenKind::LeftBrace);
  return isBare && isCallable(fault.kind(argument - 1)) ? argument : ScriptTokens::kNone;
}

// `print "x"`, `f {1}`.
std::string callHint(const Fault& fault) {
  constexpr std::size_t kMostBytes = 30;
  const std::size_t argument = bareArgument(fault);
  if (argument == ScriptTokens::kNone) return {};
  std::string text = fault.is(argument, TokenKind::String) ? fault.tokens.text(argument) : "{...}";
  if (text.size() > kMostBytes || text.find_first_of("\n\\") != std::string::npos) text = "\"...\"";
  const bool isName = fault.is(argument - 1, TokenKind::Identifier);
  const std::string callee = isName ? fault.tokens[argument - 1].text : "f";
  return "a call needs parentheses: " + callee + "(" + text + ")";
}

}  // namespace

std::string syntaxHint(std::string_view message, const ScriptTokens& tokens) {
  const Fault fault{message, tokens, tokens.failed()};
  for (const auto hintOn : {commentHint, lexicalHint, longStringHint, numberHint, compoundHint,
                            decrementHint, operatorHint, statementHint, callHint}) {
    std::string hint = hintOn(fault);
    if (!hint.empty()) return hint;
  }
  return {};
}

}  // namespace tarvel::lua::internal
