#include "lua/frontend/lexer.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "tests/unit/value_support.h"

namespace tarvel::lua::internal {
namespace {

using namespace std::string_view_literals;

// By number, because the numbers are fixed.
constexpr const char* kKindNames[] = {
    "Identifier", "Integer",    "Number",      "String",       "LeftParen", "RightParen",
    "LeftBrace",  "RightBrace", "LeftBracket", "RightBracket", "Comma",     "Semicolon",
    "Dot",        "DotDot",     "Colon",       "Plus",         "Minus",     "Star",
    "Slash",      "Percent",    "Hash",        "Assign",       "Equal",     "NotEqual",
    "Less",       "LessEqual",  "Greater",     "GreaterEqual", "And",       "Break",
    "Do",         "Else",       "Elseif",      "End",          "False",     "For",
    "Function",   "If",         "In",          "Local",        "Nil",       "Not",
    "Or",         "Return",     "Then",        "True",         "While",     "EndOfFile",
};

std::vector<Token> tokensOf(std::string_view source) {
  const TestHeap heap;
  MemoryCharge memory(heap.get());
  const std::string chunkName = "t";
  return Lexer(source, chunkName, memory).tokenise();
}

// "Kind(text)" for each token, EndOfFile included.
std::string describe(std::string_view source) {
  std::string text;
  for (const Token& token : tokensOf(source)) {
    if (!text.empty()) text += ' ';
    text.append(kKindNames[static_cast<int>(token.kind)]).append("(").append(token.text) += ')';
  }
  return text;
}

// "line:column" for each token, EndOfFile included.
std::string positions(std::string_view source) {
  std::string text;
  for (const Token& token : tokensOf(source)) {
    if (!text.empty()) text += ' ';
    text.append(std::to_string(token.line)).append(":").append(std::to_string(token.column));
  }
  return text;
}

std::string errorOf(std::string_view source) {
  try {
    return "no error but " + describe(source);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
}

struct LexerCase {
  std::string_view source;
  std::string_view expected;
};

TEST(LexerTest, Tokens) {
  const LexerCase cases[] = {
      {"", "EndOfFile()"},
      {"x = 0x10 + 2.5", "Identifier(x) Assign(=) Integer(0x10) Plus(+) Number(2.5) EndOfFile()"},
      // Every punctuator; the longest match wins.
      {"(){}[],;:+-*/%#",
       "LeftParen(() RightParen()) LeftBrace({) RightBrace(}) LeftBracket([) RightBracket(]) "
       "Comma(,) Semicolon(;) Colon(:) Plus(+) Minus(-) Star(*) Slash(/) Percent(%) Hash(#) "
       "EndOfFile()"},
      {"= == ~= < <= > >= ===",
       "Assign(=) Equal(==) NotEqual(~=) Less(<) LessEqual(<=) Greater(>) GreaterEqual(>=) "
       "Equal(==) Assign(=) EndOfFile()"},
      {". .. ...", "Dot(.) DotDot(..) DotDot(..) Dot(.) EndOfFile()"},
      {"[=[", "LeftBracket([) Assign(=) LeftBracket([) EndOfFile()"},
      {"a-b - -c",
       "Identifier(a) Minus(-) Identifier(b) Minus(-) Minus(-) Identifier(c) "
       "EndOfFile()"},
      // Keywords in the order of their numbers, then names that only look like keywords.
      {"and break do else elseif end false for function if in local nil not or return then true "
       "while",
       "And(and) Break(break) Do(do) Else(else) Elseif(elseif) End(end) False(false) For(for) "
       "Function(function) If(if) In(in) Local(local) Nil(nil) Not(not) Or(or) Return(return) "
       "Then(then) True(true) While(while) EndOfFile()"},
      {"End ends en _end end_ end1 functions repeat until goto _",
       "Identifier(End) Identifier(ends) Identifier(en) Identifier(_end) Identifier(end_) "
       "Identifier(end1) Identifier(functions) Identifier(repeat) Identifier(until) "
       "Identifier(goto) Identifier(_) EndOfFile()"},
  };
  for (const LexerCase& c : cases) EXPECT_EQ(describe(c.source), c.expected) << c.source;
}

TEST(LexerTest, Numbers) {
  const LexerCase cases[] = {
      {"1e5", "Integer(1) Identifier(e5) EndOfFile()"},
      {"1.", "Integer(1) Dot(.) EndOfFile()"},
      {"1..2", "Integer(1) DotDot(..) Integer(2) EndOfFile()"},
      {"1.5.3", "Number(1.5) Dot(.) Integer(3) EndOfFile()"},
      {"1.5..3", "Number(1.5) DotDot(..) Integer(3) EndOfFile()"},
      {".5", "Dot(.) Integer(5) EndOfFile()"},
      {"1.x", "Integer(1) Dot(.) Identifier(x) EndOfFile()"},
      {"12ab", "Integer(12) Identifier(ab) EndOfFile()"},
      {"0xAfg", "Integer(0xAf) Identifier(g) EndOfFile()"},
      {"0X", "Integer(0X) EndOfFile()"},
      {"0x1.8", "Integer(0x1) Dot(.) Integer(8) EndOfFile()"},
      {"00x1", "Integer(00) Identifier(x1) EndOfFile()"},
  };
  for (const LexerCase& c : cases) EXPECT_EQ(describe(c.source), c.expected) << c.source;
}

TEST(LexerTest, Strings) {
  const LexerCase cases[] = {
      {R"("it's" 'say "x"' "" )", R"(String(it's) String(say "x") String() EndOfFile())"},
      {R"('\n\r\t\\\"\'\q')", "String(\n\r\t\\\"'q) EndOfFile()"},
      {R"("a\0b\065")", "String(a\0b\00065) EndOfFile()"sv},
      {"'a\\\nb\nc'", "String(a\nb\nc) EndOfFile()"},  // line feeds, escaped and raw
      {"'\xC3\xA4\xFF\r\x01'", "String(\xC3\xA4\xFF\r\x01) EndOfFile()"},
      {"'a\0b'"sv, "String(a\0b) EndOfFile()"sv},
      {"[[\nx]]", "String(\nx) EndOfFile()"},
      {"[[a]b]]", "String(a]b) EndOfFile()"},
      {"[[a]]]", "String(a) RightBracket(]) EndOfFile()"},
      {R"([[\n[[]])", R"(String(\n[[) EndOfFile())"},
      {"[[]]", "String() EndOfFile()"},
  };
  for (const LexerCase& c : cases) EXPECT_EQ(describe(c.source), c.expected) << c.source;
}

TEST(LexerTest, BlanksAndComments) {
  const LexerCase cases[] = {
      {" \t\v\f\r\n a", "Identifier(a) EndOfFile()"},
      {"-- all of it", "EndOfFile()"},
      {"--", "EndOfFile()"},
      {"a--b\nc", "Identifier(a) Identifier(c) EndOfFile()"},
      {"--[[ a\n b ]]c--[[]]d", "Identifier(c) Identifier(d) EndOfFile()"},
      {"--[==[ a\nb", "Identifier(b) EndOfFile()"},
      {"--[ a\nb", "Identifier(b) EndOfFile()"},
      {"-- [[ a\nb", "Identifier(b) EndOfFile()"},
      {"--\xC3\xA4 \0 ^\na"sv, "Identifier(a) EndOfFile()"},
  };
  for (const LexerCase& c : cases) EXPECT_EQ(describe(c.source), c.expected) << c.source;
}

TEST(LexerTest, Positions) {
  const LexerCase cases[] = {
      {"", "1:1"},
      {"a\nb", "1:1 2:1 2:2"},
      {"a\n", "1:1 2:1"},
      {"a\r\n\tb", "1:1 2:2 2:3"},        // a carriage return and a tab are one column each
      {"'\xC3\xA4' x", "1:1 1:6 1:7"},    // columns count bytes
      {"x 'a\nb' y", "1:1 1:3 2:4 2:5"},  // a string is where it starts
      {"x '\\\n' y", "1:1 1:3 2:3 2:4"},  // an escaped line feed is one all the same
      {" [[\n\nb]] y", "1:2 3:5 3:6"},
      {"--[[\n\n]] y --z\n==", "3:4 4:1 4:3"},
      {"function f", "1:1 1:10 1:11"},
  };
  for (const LexerCase& c : cases) EXPECT_EQ(positions(c.source), c.expected) << c.source;
}

TEST(LexerTest, Errors) {
  const LexerCase cases[] = {
      {"a ~ b", "t:1:3: unexpected '~'"},
      {"~", "t:1:1: unexpected '~'"},
      {"x = 2 ^ 3", "t:1:7: unexpected character '^'"},
      {"\n !", "t:2:2: unexpected character '!'"},
      {"a\\b", "t:1:2: unexpected character '\\'"},
      {"\x7F", "t:1:1: unexpected character '\x7F'"},
      {"x\xC3\xA4", "t:1:2: unexpected character '\xC3'"},
      {"\x1F", "t:1:1: unexpected character '\x1F'"},
      {"print('abc", "t:1:7: unterminated string literal"},
      {"x =\n 'abc\"\n\n", "t:2:2: unterminated string literal"},
      {"'", "t:1:1: unterminated string literal"},
      {"'\\'", "t:1:1: unterminated string literal"},
      {"\n'abc\n\\", "t:2:1: unterminated string escape"},
      {"x = [[\na]", "t:1:5: unterminated long string literal"},
      {"[[", "t:1:1: unterminated long string literal"},
      {"--[[ unclosed", "t:1:5: unterminated long string literal"},
      {"x\n --[[\n]", "t:2:6: unterminated long string literal"},
  };
  for (const LexerCase& c : cases) EXPECT_EQ(errorOf(c.source), c.expected) << c.source;
  for (const char c : "&|!?@$`"sv) {
    EXPECT_EQ(errorOf(std::string(1, c)), std::string("t:1:1: unexpected character '") + c + "'");
  }
}

TEST(LexerTest, FailureNamesTheChunk) {
  EXPECT_THROW(
      try {
        failParse("dir/test.lua", 3, 7, "unterminated string literal");
      } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "dir/test.lua:3:7: unterminated string literal");
        throw;
      },
      std::runtime_error);
}

}  // namespace
}  // namespace tarvel::lua::internal
