#include "lua/frontend/parser.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "tests/unit/script_outcome.h"
#include "tests/unit/value_support.h"

namespace tarvel::lua::internal {
namespace {

using namespace std::string_literals;

// Chunks that are cut into tokens where others would not be, and the outcome that shows where.
TEST(LexerTest, FindsTheLongestTokens) {
  const std::pair<std::string, std::string> cases[] = {
      {"return 1 === 1", "error c:1:12: expected expression"},
      {"x = 1--b\n...", "error c:2:3: expected expression"},
      {"End, ends, _end, nd1 = 1, 2, 3, 4 return End, ends, _end, nd1", "[i1 i2 i3 i4]"},
      // What cannot go on a number starts the next token.
      {"return 1.5.3", "error c:1:12: expected field name after '.'"},
      {"return .5", "error c:1:8: expected expression"},
      {"return 1.", "error c:1:10: expected field name after '.'"},
      {"return 0xAf, 0X", "[i175 i0]"},
      {"return 0xAfg ", "error c:1:14: expected function call"},
      {"return 00x1 ", "error c:1:13: expected function call"},
      // Strings, with line feeds escaped and raw.
      {R"(return "it's", 'say "x"')", R"(['it's' 'say "x"'])"},
      {R"(return '\n\r\t\\\"\'\q')", "'\n\r\t\\\"'q'"},
      {R"(return "a\0b\065")", "'a\0b\00065'"s},
      {"return 'a\\\nb\nc'", "'a\nb\nc'"},
      {"x = 'a\\\nb\nc' x = = 1", "error c:3:8: expected expression"},
      {"return '\xC3\xA4\xFF\r\x01\0'"s, "'\xC3\xA4\xFF\r\x01\0'"s},
      {"return [[\n\\nb]]", "'\n\\nb'"},
      {"x = [[\n]] x = = 1", "error c:2:8: expected expression"},
      {"x = [[a]b]]]", "error c:1:12: expected expression"},
      {"x = [=[", "error c:1:5: expected expression"},
      // Blanks and comments.
      {" \t\v\f\r\n\t=", "error c:2:2: expected expression"},
      {"--\xC3\xA4 \0 ^\nreturn 1 --"s, "i1"},
      {"--[[ a\n b ]]c--[[]]=", "error c:2:14: expected expression"},
      {"--[==[ a\nreturn 2", "i2"},
      // Errors.
      {"a ~ b", "error c:1:3: unexpected '~'"},
      {"\n a\\b", "error c:2:3: unexpected character '\\'"},
      {"x\xC3\xA4", "error c:1:2: unexpected character '\xC3'"},
      {"\x7F", "error c:1:1: unexpected character '\x7F'"},
      {"x =\n 'abc\"\n\n", "error c:2:2: unterminated string literal"},
      {"\n'abc\n\\", "error c:2:1: unterminated string escape"},
      {"x = [[\na]", "error c:1:5: unterminated long string literal"},
      {"x\n --[[\n]", "error c:2:6: unterminated long string literal"},
  };
  for (const auto& [source, expected] : cases) EXPECT_EQ(expected, run(source)) << source;
}

// A source text's tree, with everything that has to outlive it.
class ParsedChunk {
 public:
  explicit ParsedChunk(std::string_view source, std::uint32_t nestingLimit = 1000) {
    const std::string chunkName = "t";
    Parser parser(source, chunkName, chunk_, strings_, nestingLimit);
    parser.parseChunk();
  }

  const FunctionExpr& main() const { return *chunk_.main; }

 private:
  TestHeap heap_;
  StringPool strings_{heap_.get()};
  ResolvedChunk chunk_{heap_.get()};
};

std::string errorOf(std::string_view source, std::uint32_t nestingLimit = 1000) {
  try {
    const ParsedChunk parsed(source, nestingLimit);
    return "no error";
  } catch (const std::runtime_error& error) {
    return error.what();
  }
}

TEST(ParserTest, SaysWhatItExpectsAndWhere) {
  const struct {
    std::string_view source;
    std::string_view error;
  } cases[] = {
      {"x = 1 +\n", "t:2:1: expected expression"},
      {"x = (a, b)", "t:1:7: expected ')' after expression"},
      {"x = a.end", "t:1:7: expected field name after '.'"},
      {"x = a[1 2]", "t:1:9: expected ']' after index expression"},
      {"x = a:1", "t:1:7: expected method name after ':'"},
      {"obj:m 'x'", "t:1:7: expected '(' before arguments"},
      {"f(1 2)", "t:1:5: expected ')' after arguments"},
      {"x = {[1}", "t:1:8: expected ']' after table key"},
      {"x = {[1] 2}", "t:1:10: expected '=' after table key"},
      {"x = {a.b = 1}", "t:1:10: expected '}' after table constructor"},
      {"x = function(a,) end", "t:1:16: expected parameter name"},
      {"x = function(a b) end", "t:1:16: expected ')' after parameter list"},
      {"function f()\nreturn 1", "t:2:9: expected 'end' after function body"},
      {"while a f() end", "t:1:9: expected 'do' after while condition"},
      {"while a do f()", "t:1:15: expected 'end' after while loop"},
      {"if a f() end", "t:1:6: expected 'then' after if condition"},
      {"if a then elseif b else end", "t:1:20: expected 'then' after elseif condition"},
      {"if a then\nf()\n", "t:3:1: expected 'end' after if statement"},
      {"local a,", "t:1:9: expected local variable name"},
      {"local function 1() end", "t:1:16: expected local function name"},
      {"function () end", "t:1:10: expected function name"},
      {"function a:b.c() end", "t:1:13: expected '(' after function name"},
      {"for a, 1 in b do end", "t:1:8: expected loop variable name"},
      {"for i = 1 do end", "t:1:11: expected ',' after numeric for start value"},
      {"for i = 1, 2, 3, 4 do end", "t:1:16: expected 'do' after numeric for range"},
      {"for i = 1, 2 do", "t:1:16: expected 'end' after numeric for loop"},
      {"for a, b = 1, 2 do end", "t:1:10: expected 'in' in generic for loop"},
      {"for a in b end", "t:1:12: expected 'do' after generic for iterator"},
      {"for a in b do", "t:1:14: expected 'end' after generic for loop"},
      {"a, b", "t:1:5: expected '=' in assignment"},
      {"f() = 1", "t:1:5: invalid assignment target"},
      {"x y", "t:1:3: expected function call"},
      {"do f() end", "t:1:1: expected expression"},
      {"if a then\n break end", "t:2:2: break outside a loop"},
      {"for i = 1, 2 do function g() break end end", "t:1:30: break outside a loop"},
      {"for a in b do f(function() while c do end end) break end", "no error"},
      {";f() ;; return; x = 1 return 1, 2 return", "no error"},
  };
  for (const auto& c : cases) EXPECT_EQ(c.error, errorOf(c.source)) << c.source;
}

// The levels of sources without functions, blocks and statements included. They parse with exactly
// that limit, and not with one less.
TEST(ParserTest, NestingIsTheLimitThatSuffices) {
  const struct {
    std::string_view source;
    std::uint32_t nesting;
  } cases[] = {
      {"", 2},
      {"x = 1", 3},
      {"x = ((1))", 5},
      {"x = - - 1", 5},
      {"x = a + b + c + d", 6},
      {"x = a .. b .. c .. d", 4},
      {"a.b.c = 1", 5},
      {"f()()", 5},
      {"x = a[1]", 4},
      {"x = {[{1}] = 1}", 5},
      {"if a then elseif b then elseif c then elseif d then end", 4},
      {"while a do for i = 1, 2 do for k in b do f() end end end", 10},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ParsedChunk(c.source).main().nesting, c.nesting) << c.source;
    EXPECT_EQ("no error", errorOf(c.source, c.nesting)) << c.source;
    EXPECT_TRUE(errorOf(c.source, c.nesting - 1).ends_with(": source is nested too deeply"));
  }
  EXPECT_EQ(errorOf("x = a\n+ b\n+ c\n+ d", 5), "t:4:4: source is nested too deeply");
}

// A walk that enters functions where they are written meets the levels of all functions on its way.
TEST(ParserTest, LevelsOfNestedFunctionsAddUp) {
  const std::string chain = repeated(" + 1", 30);
  const std::string inner = "function() return 1" + chain + " end" + chain;
  const std::string outer = "return function() return " + inner + " end" + chain;
  EXPECT_EQ("no error", errorOf(outer, 110));
  EXPECT_TRUE(errorOf(outer, 90).ends_with(": source is nested too deeply"));
  EXPECT_EQ("no error", errorOf(repeated("f(function() return 1" + chain + " end) ", 50), 90));
}

}  // namespace
}  // namespace tarvel::lua::internal
