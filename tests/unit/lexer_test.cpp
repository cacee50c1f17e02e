#include "lua/frontend/lexer.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <string_view>

#include "tests/unit/value_support.h"

namespace tarvel::lua::internal {
namespace {

using namespace std::string_view_literals;

// Each token as "kind(text)line:column", the end included, or the error. A kind that has only one
// spelling is left out.
std::string tokensOf(std::string_view source) {
  std::string text;
  try {
    const TestHeap heap;
    const Places places(heap.get(), source);
    const std::string chunkName = "t";
    Lexer lexer(source, chunkName);
    for (Token token; text.empty() || token.kind != TokenKind::EndOfFile;) {
      token = lexer.next();
      const char* const kind = token.kind == TokenKind::Identifier ? "name"
                               : token.kind == TokenKind::Integer  ? "integer"
                               : token.kind == TokenKind::Number   ? "float"
                               : token.kind == TokenKind::String   ? "string"
                                                                   : "";
      text.append(text.empty() ? "" : " ").append(kind).append("(");
      token.hasEscapes ? appendDecoded(text, token.text) : void(text.append(token.text));
      const Place place = places[static_cast<std::uint32_t>(token.position)];
      text += ")" + std::to_string(place.line) + ":" + std::to_string(place.column);
    }
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return text;
}

struct LexerCase {
  std::string_view source;
  std::string_view tokens;
};

template <std::size_t N>
void checkEach(const LexerCase (&cases)[N]) {
  for (const LexerCase& c : cases) EXPECT_EQ(c.tokens, tokensOf(c.source)) << c.source;
}

TEST(LexerTest, NamesNumbersAndPunctuators) {
  const LexerCase cases[] = {
      {"", "()1:1"},
      // The longest match wins.
      {"===~=<=", "(==)1:1 (=)1:3 (~=)1:4 (<=)1:6 ()1:8"},
      {"a--b\n...", "name(a)1:1 (..)2:1 (.)2:3 ()2:4"},
      {"End ends _end nd1", "name(End)1:1 name(ends)1:5 name(_end)1:10 name(nd1)1:15 ()1:18"},
      // What cannot go on a number starts the next token.
      {"1.5.3", "float(1.5)1:1 (.)1:4 integer(3)1:5 ()1:6"},
      {".5 1.", "(.)1:1 integer(5)1:2 integer(1)1:4 (.)1:5 ()1:6"},
      {"0xAfg 0X", "integer(0xAf)1:1 name(g)1:5 integer(0X)1:7 ()1:9"},
      {"00x1", "integer(00)1:1 name(x1)1:3 ()1:5"},
  };
  checkEach(cases);
}

TEST(LexerTest, StringsAndComments) {
  const LexerCase cases[] = {
      {R"("it's" 'say "x"')", R"(string(it's)1:1 string(say "x")1:8 ()1:17)"},
      {R"('\n\r\t\\\"\'\q')", "string(\n\r\t\\\"'q)1:1 ()1:17"},
      {R"("a\0b\065")", "string(a\0b\00065)1:1 ()1:11"sv},
      {"'a\\\nb\nc' x", "string(a\nb\nc)1:1 name(x)3:4 ()3:5"},  // line feeds, escaped and raw
      {"'\xC3\xA4\xFF\r\x01\0'"sv, "string(\xC3\xA4\xFF\r\x01\0)1:1 ()1:9"sv},
      {" [[\n\\nb]] y", "string(\n\\nb)1:2 name(y)2:7 ()2:8"},
      {"[[a]b]]]", "string(a]b)1:1 (])1:8 ()1:9"},
      {"[=[", "([)1:1 (=)1:2 ([)1:3 ()1:4"},
      {" \t\v\f\r\n\ta", "name(a)2:2 ()2:3"},
      {"--\xC3\xA4 \0 ^\na --"sv, "name(a)2:1 ()2:5"},
      {"--[[ a\n b ]]c--[[]]d", "name(c)2:6 name(d)2:13 ()2:14"},
      {"--[==[ a\nb", "name(b)2:1 ()2:2"},
  };
  checkEach(cases);
}

TEST(LexerTest, Errors) {
  const LexerCase cases[] = {
      {"a ~ b", "t:1:3: unexpected '~'"},
      {"x = 2 ^ 3", "t:1:7: unexpected character '^'"},
      {"\n a\\b", "t:2:3: unexpected character '\\'"},
      {"x\xC3\xA4", "t:1:2: unexpected character '\xC3'"},
      {"\x7F", "t:1:1: unexpected character '\x7F'"},
      {"x =\n 'abc\"\n\n", "t:2:2: unterminated string literal"},
      {"\n'abc\n\\", "t:2:1: unterminated string escape"},
      {"x = [[\na]", "t:1:5: unterminated long string literal"},
      {"x\n --[[\n]", "t:2:6: unterminated long string literal"},
  };
  checkEach(cases);
}

}  // namespace
}  // namespace tarvel::lua::internal
