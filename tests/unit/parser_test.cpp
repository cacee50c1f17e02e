#include "lua/frontend/parser.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/mman.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "lua/frontend/lexer.h"
#include "tests/unit/tree_printer.h"

namespace tarvel::lua::internal {
namespace {

constexpr std::uint32_t kAmpleLimit = 1000;

// A source text's tree, with everything that has to outlive it.
class ParsedChunk {
 public:
  explicit ParsedChunk(std::string_view source, std::uint32_t nestingLimit = kAmpleLimit) {
    const std::string chunkName = "t";
    MemoryCharge memory(*heap_);
    Parser parser(Lexer(source, chunkName, memory).tokenise(), chunkName, chunk_, strings_,
                  nestingLimit);
    statements_ = parser.parseChunk();
  }

  const FunctionExpr& main() const { return *chunk_.main; }
  const ResolvedChunk& chunk() const { return chunk_; }
  const ArenaList<Stmt*>& statements() const { return statements_; }

  // The value of a source "return value".
  Expr* returned() const { return static_cast<const ReturnStmt*>(statements_[0])->values[0]; }

 private:
  struct RemoveOwner {
    void operator()(Heap* heap) const { heap->removeOwner(); }
  };

  std::unique_ptr<Heap, RemoveOwner> heap_{Heap::create()};
  StringInterner strings_{*heap_};
  ResolvedChunk chunk_{*heap_};
  ArenaList<Stmt*> statements_;
};

std::string treeOf(std::string_view source, bool withLines = false) {
  try {
    return TreePrinter(withLines).statements(ParsedChunk(source).statements());
  } catch (const std::runtime_error& error) {
    return error.what();
  }
}

std::string errorOf(std::string_view source, std::uint32_t nestingLimit = kAmpleLimit) {
  try {
    const ParsedChunk parsed(source, nestingLimit);
    return "no error but " + TreePrinter(false).statements(parsed.statements());
  } catch (const std::runtime_error& error) {
    return error.what();
  }
}

std::string repeat(std::string_view text, std::size_t count) {
  std::string result;
  for (std::size_t i = 0; i < count; ++i) result += text;
  return result;
}

struct ParserCase {
  std::string_view source;
  std::string_view expected;
};

// ---- Trees ----

TEST(ParserTest, Operators) {
  const ParserCase cases[] = {
      {"1 + 2 * 3", "(1 + (2 * 3))"},
      {"2 * 3 % 4 / 5", "(((2 * 3) % 4) / 5)"},
      {"a - b + c - d", "(((a - b) + c) - d)"},
      {"a or b and c", "(a or (b and c))"},
      {"a and b or c and d or e", "(((a and b) or (c and d)) or e)"},
      {"a < b < c == d", "(((a < b) < c) == d)"},
      {"a <= b and c >= d or e > f and g ~= h",
       "(((a <= b) and (c >= d)) or ((e > f) and (g ~= h)))"},
      {"a + b == c .. d", "((a + b) == (c .. d))"},
      {"-x * y", "((-x) * y)"},
      {"a * -b + c", "((a * (-b)) + c)"},
      {"not a == b", "((not a) == b)"},
      {"#t + 1", "((#t) + 1)"},
      {"- - x", "(-(-x))"},
      {"not -#x.y(1)", "(not (-(#x.y(1))))"},
      {"(1 + 2) * 3", "((1 + 2) * 3)"},
      {"a - (b - c)", "(a - (b - c))"},
      {"((a))", "a"},
  };
  for (const ParserCase& c : cases) {
    EXPECT_EQ(treeOf("return " + std::string(c.source)), "return " + std::string(c.expected));
  }
}

TEST(ParserTest, ConcatenationChainsAreOneNode) {
  const ParserCase cases[] = {
      {"a .. b", "(a .. b)"},
      {"a .. b .. c .. d", "(a .. b .. c .. d)"},
      {"1 + 2 .. 3", "((1 + 2) .. 3)"},
      {"a + b .. c + d", "((a + b) .. (c + d))"},
      {"a .. b - c .. d * e", "(a .. (b - c) .. (d * e))"},
      {"a .. (b .. c)", "(a .. (b .. c))"},
      {"(a .. b) .. c", "((a .. b) .. c)"},
      {"a .. b == c .. d", "((a .. b) == (c .. d))"},
      {"-a .. not b", "((-a) .. (not b))"},
  };
  for (const ParserCase& c : cases) {
    EXPECT_EQ(treeOf("return " + std::string(c.source)), "return " + std::string(c.expected));
  }
}

TEST(ParserTest, Literals) {
  const ParserCase cases[] = {
      {"nil, true, false, 'a', [[b]]", R"(nil, true, false, "a", "b")"},
      {"0, 007, 255", "0, 7, 255"},
      {"0xFF, 0Xff, 0x", "255, 255, 0"},
      {"0x7FFFFFFFFFFFFFFF, 0xFFFFFFFFFFFFFFFF", "9223372036854775807, -1"},
      {"0x10000000000000002, 0xABCDEF00000000000000001", "2, 1"},  // the low 64 bits
      {"9223372036854775807", "9223372036854775807"},
      {"9223372036854775808", "9223372036854775808.0"},
      {"-9223372036854775808", "(-9223372036854775808.0)"},
      {"1.5, 2.0, 0.1, 00.25", "1.5, 2.0, 0.1, 0.25"},
      {"123456789012345678.9", "123456789012345680.0"},
  };
  for (const ParserCase& c : cases) {
    EXPECT_EQ(treeOf("return " + std::string(c.source)), "return " + std::string(c.expected));
  }
}

TEST(ParserTest, NumbersBeyondTheRangeOfFloats) {
  EXPECT_EQ(treeOf("return 1" + repeat("0", 400)), "return inf");
  EXPECT_EQ(treeOf("return 1" + repeat("0", 400) + ".5"), "return inf");
  EXPECT_EQ(treeOf("return 0." + repeat("0", 400) + "1"), "return 0.0");
  EXPECT_EQ(treeOf("return 0." + repeat("0", 323) + "5"), "return 0." + repeat("0", 323) + "5");
  EXPECT_EQ(treeOf("return " + repeat("0", 400) + "1"), "return 1");
}

TEST(ParserTest, PrefixExpressions) {
  const ParserCase cases[] = {
      {"t.x.y[1]:m(2)(3)", "t.x.y[1]:m(2)(3)"},
      {"f()", "f()"},
      {"f(a, 1 + 2, g(b))", "f(a, (1 + 2), g(b))"},
      {"(f())", "f()"},
      {"(a + b).c", "(a + b).c"},
      {"'s':upper()", R"("s":upper())"},
      {"{1}[1]", "{1}[1]"},
      {"function(a, b, a) return a end(1)", "function(a, b, a) return a end(1)"},
      {"function() end", "function() end"},
      {"a[b[c]][d .. e]", "a[b[c]][(d .. e)]"},
      {"1 .x", "1.x"},
  };
  for (const ParserCase& c : cases) {
    EXPECT_EQ(treeOf("return " + std::string(c.source)), "return " + std::string(c.expected));
  }
}

TEST(ParserTest, TableConstructors) {
  const ParserCase cases[] = {
      {"{}", "{}"},
      {"{1, 2; x = 3, [4] = 5,}", "{1, 2, x = 3, [4] = 5}"},
      {"{x, x == 1, x = x;}", "{x, (x == 1), x = x}"},
      {"{[a.b] = {}, f(), {c = {1}}}", "{[a.b] = {}, f(), {c = {1}}}"},
      {"{function() end, ['k'] = -1}", R"({function() end, ["k"] = (-1)})"},
  };
  for (const ParserCase& c : cases) {
    EXPECT_EQ(treeOf("return " + std::string(c.source)), "return " + std::string(c.expected));
  }
  const ParsedChunk parsed("return {1, a = 2, 3, [4] = 5, f()}");
  EXPECT_EQ(static_cast<TableExpr*>(parsed.returned())->positionalCount, 3u);
}

TEST(ParserTest, Statements) {
  const ParserCase cases[] = {
      {"", ""},
      {";;;", ""},
      {"x = 1;;", "x = 1"},
      {";f() g();;h()", "f(); g(); h()"},
      {"a.b, c[1] = 1, 2", "a.b, c[1] = 1, 2"},
      {"a, (b), (c.d).e = f()", "a, b, c.d.e = f()"},
      {"local a, b", "local a, b"},
      {"local a, b = 1", "local a, b = 1"},
      {"local repeat = 1", "local repeat = 1"},
      {"(f)()", "f()"},
      {"a = b\n(c)()", "a = b(c)()"},
      {"o.p:m{}", "t:1:6: expected '(' before arguments"},
      {"return", "return"},
      {"return; x = 1", "return; x = 1"},  // not the last statement, and kept
      {"return 1, 2 return", "return 1, 2; return"},
      {"if a then return else return end", "if a then return else return end"},
      {"if a then elseif b then f() elseif c then return end",
       "if a then elseif b then f() elseif c then return end"},
      {"if a then else end", "if a then else end"},
      {"while f() do ;a = 1; break; end", "while f() do a = 1; break end"},
      {"while a do if b then break end end", "while a do if b then break end end"},
      {"for i = 1, 10, 2 do break end", "for i = 1, 10, 2 do break end"},
      {"for i = #t, 1 do f(i) end", "for i = (#t), 1 do f(i) end"},
      {"for k, v in pairs(t) do end", "for k, v in pairs(t) do end"},
      {"for x in f, s, i do break end", "for x in f, s, i do break end"},
  };
  for (const ParserCase& c : cases) EXPECT_EQ(treeOf(c.source), c.expected) << c.source;
}

TEST(ParserTest, FunctionDeclarations) {
  const ParserCase cases[] = {
      {"function f() end", "function f<f>() end"},
      {"function t.a.b(x) return x end", "function t.a.b<t.a.b>(x) return x end"},
      {"function t.a.b:m(x) end", "method t.a.b.m<t.a.b:m>(self, x) end"},
      {"function o:m(self) end", "method o.m<o:m>(self, self) end"},
      {"local function f(a, b) f() end", "local function f<f>(a, b) f() end"},
  };
  for (const ParserCase& c : cases) EXPECT_EQ(treeOf(c.source), c.expected) << c.source;
}

TEST(ParserTest, FunctionsKnowTheirSurroundings) {
  const ParsedChunk parsed("function f() return function() end end");
  const FunctionExpr& main = parsed.main();
  EXPECT_EQ(main.name->view(), "main chunk");
  EXPECT_EQ(main.parent, nullptr);
  EXPECT_EQ(main.chunk, &parsed.chunk());
  EXPECT_EQ(main.body->statements.data, parsed.statements().data);

  const auto* f = static_cast<FunctionDeclarationStmt*>(parsed.statements()[0])->function;
  EXPECT_EQ(f->parent, &main);
  EXPECT_EQ(f->chunk, &parsed.chunk());
  const auto* inner =
      static_cast<FunctionExpr*>(static_cast<ReturnStmt*>(f->body->statements[0])->values[0]);
  EXPECT_EQ(inner->parent, f);
  EXPECT_EQ(inner->name->view(), "<anonymous>");
}

TEST(ParserTest, EqualNamesAndLiteralsAreOneString) {
  const ParsedChunk parsed("return name.name == 'name'");
  const auto* comparison = static_cast<BinaryExpr*>(parsed.returned());
  const auto* field = static_cast<FieldExpr*>(comparison->left);
  EXPECT_EQ(field->name, static_cast<VariableExpr*>(field->object)->name);
  EXPECT_EQ(field->name, static_cast<LiteralExpr*>(comparison->right)->value.string);
}

// ---- Lines ----

TEST(ParserTest, Lines) {
  const ParserCase cases[] = {
      // An operator's own line; for a concatenation, that of its first operator.
      {"return a\n+\nb", "@1return (a@1 + b@3)@2"},
      {"return\nnot\na", "@1return (not a@3)@2"},
      {"return a\n..\nb\n..\nc", "@1return (a@1 .. b@3 .. c@5)@2"},
      // The first token of the whole chain.
      {"return a\n.b\n[c\n]\n:d(\ne)\n()", "@1return a@1.b@1[c@3]@1:d(e@6)@1()@1"},
      {"return (\na\n+ b)\n(c)", "@1return (a@2 + b@3)@3(c@4)@1"},
      {"return (\na\n)", "@1return a@2"},
      {"return (\na\n.b)\n.c", "@1return a@2.b@2.c@1"},
      {"return\n{\n1, x =\n2, [\n3]\n= 4}", "@1return {1@3@3, x = 2@4@3, [3@5] = 4@6@4}@2"},
      {"return\nfunction(\na)\nreturn\nend", "@1return function(a)@4 @4return end@2"},
      // A statement's first token; a block's first token.
      {"\na\n,\nb\n=\n1", "@2a@2, b@4 = 1@6"},
      {"local\na\n=\nb", "@1local a@2 = b@4"},
      {"\nfunction\na\n.b\n()\nend", "@2function a@3.b@3<a.b>()@6 end@2"},
      {"if\na then\nf()\nelseif\nb then\nelse\n;\ng()\nend",
       "@1if a@2 then@3 @3f@3()@3 elseif b@5 then@6 else@7 @8g@8()@8 end"},
      {"\nwhile a\ndo\nbreak\nend", "@2while a@2 do@4 @4break end"},
  };
  for (const ParserCase& c : cases) EXPECT_EQ(treeOf(c.source, true), c.expected) << c.source;
}

// ---- Errors ----

TEST(ParserTest, ExpressionErrors) {
  const ParserCase cases[] = {
      {"x = ", "t:1:5: expected expression"},
      {"x = 1 +\n", "t:2:1: expected expression"},
      {"x = 1 .. ..", "t:1:10: expected expression"},
      {"x = )", "t:1:5: expected expression"},
      {"x = 1, end", "t:1:8: expected expression"},
      {"x = (1", "t:1:7: expected ')' after expression"},
      {"x = ()", "t:1:6: expected expression"},
      {"x = (a, b)", "t:1:7: expected ')' after expression"},
      {"x = a.", "t:1:7: expected field name after '.'"},
      {"x = a.end", "t:1:7: expected field name after '.'"},
      {"x = a[1", "t:1:8: expected ']' after index expression"},
      {"x = a[1 2]", "t:1:9: expected ']' after index expression"},
      {"x = a:1", "t:1:7: expected method name after ':'"},
      {"x = a:b", "t:1:8: expected '(' before arguments"},
      {"obj:m 'x'", "t:1:7: expected '(' before arguments"},
      {"f(1", "t:1:4: expected ')' after arguments"},
      {"f(1 2)", "t:1:5: expected ')' after arguments"},
      {"f(1,)", "t:1:5: expected expression"},
      {"x = {[1}", "t:1:8: expected ']' after table key"},
      {"x = {[1] 2}", "t:1:10: expected '=' after table key"},
      {"x = {1 2}", "t:1:8: expected '}' after table constructor"},
      {"x = {1", "t:1:7: expected '}' after table constructor"},
      {"x = {1,", "t:1:8: expected '}' after table constructor"},
      {"x = {", "t:1:6: expected '}' after table constructor"},
      {"x = {,}", "t:1:6: expected expression"},
      {"x = {1,,}", "t:1:8: expected expression"},
      {"x = {a.b = 1}", "t:1:10: expected '}' after table constructor"},
      {"x = function f() end", "t:1:14: expected '(' after function name"},
      {"function f end", "t:1:12: expected '(' after function name"},
      {"x = function(1) end", "t:1:14: expected parameter name"},
      {"x = function(a,) end", "t:1:16: expected parameter name"},
      {"x = function(...) end", "t:1:14: expected parameter name"},
      {"x = function(a b) end", "t:1:16: expected ')' after parameter list"},
      {"x = function() ", "t:1:16: expected 'end' after function body"},
      {"function f()\nreturn 1", "t:2:9: expected 'end' after function body"},
  };
  for (const ParserCase& c : cases) EXPECT_EQ(errorOf(c.source), c.expected) << c.source;
}

TEST(ParserTest, StatementErrors) {
  const ParserCase cases[] = {
      {"while a f() end", "t:1:9: expected 'do' after while condition"},
      {"while a do f()", "t:1:15: expected 'end' after while loop"},
      {"if a f() end", "t:1:6: expected 'then' after if condition"},
      {"if a then elseif b else end", "t:1:20: expected 'then' after elseif condition"},
      {"if a then\nf()\n", "t:3:1: expected 'end' after if statement"},
      {"if a then else elseif b then end", "t:1:16: expected expression"},
      {"local 1", "t:1:7: expected local variable name"},
      {"local a,", "t:1:9: expected local variable name"},
      {"local a.b = 1", "t:1:8: expected expression"},
      {"local function 1() end", "t:1:16: expected local function name"},
      {"local function a.b() end", "t:1:17: expected '(' after function name"},
      {"function () end", "t:1:10: expected function name"},
      {"function a.1() end", "t:1:12: expected field name after '.'"},
      {"function a.() end", "t:1:12: expected field name after '.'"},
      {"function a:() end", "t:1:12: expected method name after ':'"},
      {"function a:b.c() end", "t:1:13: expected '(' after function name"},
      {"for 1 = 1, 2 do end", "t:1:5: expected loop variable name"},
      {"for a, 1 in b do end", "t:1:8: expected loop variable name"},
      {"for i = 1 do end", "t:1:11: expected ',' after numeric for start value"},
      {"for i = 1, 2 f() end", "t:1:14: expected 'do' after numeric for range"},
      {"for i = 1, 2, 3, 4 do end", "t:1:16: expected 'do' after numeric for range"},
      {"for i = 1, 2 do", "t:1:16: expected 'end' after numeric for loop"},
      {"for a, b = 1, 2 do end", "t:1:10: expected 'in' in generic for loop"},
      {"for a b", "t:1:7: expected 'in' in generic for loop"},
      {"for a in b end", "t:1:12: expected 'do' after generic for iterator"},
      {"for a in b do", "t:1:14: expected 'end' after generic for loop"},
      {"a, b", "t:1:5: expected '=' in assignment"},
      {"a, b()", "t:1:7: invalid assignment target"},
      {"f() = 1", "t:1:5: invalid assignment target"},
      {"a, 1 = 1", "t:1:6: invalid assignment target"},
      {"(a + b) = 1", "t:1:9: invalid assignment target"},
      {"x", "t:1:2: expected function call"},
      {"x y", "t:1:3: expected function call"},
      {"a.b\nc()", "t:2:1: expected function call"},
      {"f{1}", "t:1:2: expected function call"},
      {"f 'x'", "t:1:3: expected function call"},
      {"1", "t:1:2: expected function call"},
      {"repeat x = 1 until x", "t:1:8: expected function call"},
      {"do f() end", "t:1:1: expected expression"},
      {"goto x", "t:1:6: expected function call"},
      {"end", "t:1:1: expected expression"},
      {"-x", "t:1:1: expected expression"},
      {"local x <const> = 1", "t:1:9: expected expression"},
  };
  for (const ParserCase& c : cases) EXPECT_EQ(errorOf(c.source), c.expected) << c.source;
}

TEST(ParserTest, BreakOutsideALoop) {
  const ParserCase cases[] = {
      {"break", "t:1:1: break outside a loop"},
      {"if a then\n break end", "t:2:2: break outside a loop"},
      {"while a do end break", "t:1:16: break outside a loop"},
      {"while a do f(function() break end) end", "t:1:25: break outside a loop"},
      {"for i = 1, 2 do function g() if a then break end end end", "t:1:40: break outside a loop"},
      {"for a in b do f(function() while c do end end) break end",
       "no error but for a in b do f(function() while c do end end); break end"},
  };
  for (const ParserCase& c : cases) EXPECT_EQ(errorOf(c.source), c.expected) << c.source;
}

// ---- Height and nesting ----

TEST(ParserTest, HeightAndCalls) {
  struct HeightCase {
    std::string_view source;
    std::uint32_t height;
    bool containsCall;
  };
  const HeightCase cases[] = {
      {"1", 1, false},
      {"(((a)))", 1, false},
      {"-a", 2, false},
      {"a + b * c", 3, false},
      {"a + b + c + d", 4, false},
      {"a .. b .. c .. d", 2, false},
      {"a.b[c].d", 4, false},
      {"f()", 2, true},
      {"f(-a)", 3, true},
      {"a.b:m(1)", 3, true},
      {"x + a[f()].y", 5, true},
      {"{1, x = -2, [f()] = 3}", 3, true},
      {"{[1] = -2}", 3, false},
      {"function() f(1 + 2 + 3) end", 1, false},  // its body runs in a frame of its own
      {"{function() f() end}", 2, false},
      {"a .. f()", 3, true},
  };
  for (const HeightCase& c : cases) {
    const ParsedChunk parsed("return " + std::string(c.source));
    EXPECT_EQ(parsed.returned()->height, c.height) << c.source;
    EXPECT_EQ(parsed.returned()->containsCall, c.containsCall) << c.source;
  }
}

// The levels of sources without functions, blocks and statements included. They parse with exactly
// that limit, and not with one less.
TEST(ParserTest, NestingIsTheLimitThatSuffices) {
  struct NestingCase {
    std::string_view source;
    std::uint32_t nesting;
  };
  const NestingCase cases[] = {
      {"", 2},
      {"return", 2},
      {"x = 1", 3},
      {"x = ((1))", 5},
      {"x = - - 1", 5},
      {"x = a + b + c + d", 6},
      {"x = a .. b .. c .. d", 4},
      {"x = a.b.c", 5},
      {"a.b.c = 1", 5},
      {"f()()", 5},
      {"f(1)", 4},
      {"x = a[1]", 4},
      {"x = {{1}}", 5},
      {"x = {[{1}] = 1}", 5},
      {"if a then else end", 4},
      {"if a then elseif b then elseif c then elseif d then end", 4},
      {"while a do for i = 1, 2 do for k in b do f() end end end", 10},
  };
  for (const NestingCase& c : cases) {
    EXPECT_EQ(ParsedChunk(c.source).main().nesting, c.nesting) << c.source;
    EXPECT_NO_THROW(ParsedChunk(c.source, c.nesting)) << c.source;
    EXPECT_NE(errorOf(c.source, c.nesting - 1).find(": source is nested too deeply"),
              std::string::npos)
        << c.source;
  }
}

TEST(ParserTest, AFunctionIsOneLevelOfItsSurroundings) {
  const ParsedChunk parsed("return function() if a then return b + c + d end end");
  EXPECT_EQ(parsed.main().nesting, 3u);
  EXPECT_EQ(static_cast<FunctionExpr*>(parsed.returned())->nesting, 7u);
}

TEST(ParserTest, TooDeepSourcesAreRejected) {
  struct DeepCase {
    std::string_view start, open, middle, close;
  };
  const DeepCase cases[] = {
      {"x = ", "(", "1", ")"},
      {"x = ", "{", "", "}"},
      {"x = ", "{a = ", "1", "}"},
      {"x = ", "{[", "1", "] = 1}"},
      {"x = ", "not ", "1", ""},
      {"x = ", "a[", "1", "]"},
      {"x = ", "f(", "", ")"},
      {"x = ", "o:m(", "", ")"},
      {"x = ", "a .. (", "1", ")"},
      {"x = ", "1 + ", "1", ""},
      {"x = ", "a or ", "1", ""},
      {"x = a", ".b", "", ""},
      {"x = f", "()", "", ""},
      {"function a", ".b", "() end", ""},
      {"x = ", "function() return ", "1", " end"},
      {"", "function f() ", "", " end"},
      {"", "local function f() ", "", " end"},
      {"", "if a then ", "", " end"},
      {"", "if a then else ", "", " end"},
      {"", "while a do ", "", " end"},
      {"", "for i = 1, 2 do ", "", " end"},
      {"", "for a in b do ", "", " end"},
  };
  for (const DeepCase& c : cases) {
    const auto source = [&c](std::size_t levels) {
      return std::string(c.start) + repeat(c.open, levels) + std::string(c.middle) +
             repeat(c.close, levels);
    };
    EXPECT_NO_THROW(ParsedChunk(source(30), 100)) << c.open;
    EXPECT_NE(errorOf(source(20000), 100).find(": source is nested too deeply"), std::string::npos)
        << c.open;
  }
}

TEST(ParserTest, TooDeepIsReportedWhereItHappens) {
  EXPECT_EQ(errorOf("x = ((((1", 6), "t:1:10: source is nested too deeply");
  EXPECT_EQ(errorOf("x = ((((1", 5), "t:1:9: source is nested too deeply");
  EXPECT_EQ(errorOf("x = a\n+ b\n+ c\n+ d", 5), "t:4:4: source is nested too deeply");
}

// A walk that enters functions where they are written meets the levels of all functions on its way.
TEST(ParserTest, LevelsOfNestedFunctionsAddUp) {
  const std::string chain = repeat(" + 1", 30);
  const std::string inner = "function() return 1" + chain + " end" + chain;
  const std::string outer = "return function() return " + inner + " end" + chain;
  EXPECT_NO_THROW(ParsedChunk(outer, 110));
  EXPECT_NE(errorOf(outer, 90).find(": source is nested too deeply"), std::string::npos);
  EXPECT_NO_THROW(ParsedChunk(repeat("f(function() return 1" + chain + " end) ", 50), 90));
}

TEST(ParserTest, LongIsNotDeep) {
  EXPECT_NO_THROW(ParsedChunk("if a then " + repeat("elseif b then ", 10000) + "end", 10));
  EXPECT_NO_THROW(ParsedChunk("return 1" + repeat(" .. 1", 10000), 10));
  EXPECT_NO_THROW(ParsedChunk("return {1" + repeat(", 1", 10000) + "}", 10));
  EXPECT_NO_THROW(ParsedChunk(repeat("f(a, (b)) ", 10000), 10));
}

#if defined(__OPTIMIZE__) && !defined(TARVELLUA_CHECKED_HEAP)

// Parses on a fresh stack of `size` bytes and returns how many of them were used.
std::size_t stackUsedBy(const std::string& source, std::size_t size) {
  void* const stack =
      mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstack(&attributes, stack, size);
  pthread_t thread;
  const auto parse = [](void* text) -> void* {
    const ParsedChunk parsed(*static_cast<const std::string*>(text), 1u << 20);
    return nullptr;
  };
  EXPECT_EQ(pthread_create(&thread, &attributes, parse, const_cast<std::string*>(&source)), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
  const char* const bytes = static_cast<const char*>(stack);
  const char* const lowest = std::find_if(bytes, bytes + size, [](char byte) { return byte != 0; });
  const auto used = static_cast<std::size_t>(bytes + size - lowest);
  munmap(stack, size);
  return used;
}

TEST(ParserTest, ALevelUsesLittleStack) {
  struct StackCase {
    std::string_view open, close;
    std::size_t levels;
  };
  const StackCase cases[] = {
      {"(", ")", 1},
      {"{", "}", 1},
      {"f(", ")", 1},
      {"{[1] = 1 or 1 and 1 == 1 .. 1 + 1 * ", "}", 1},
      {"f(1 or 1 and 1 == 1 .. 1 + 1 * ", ")", 1},
      {"function() return 1 or 1 and 1 == 1 .. 1 + 1 * ", " end", 2},
      {"function() if a then elseif ", " then end end", 2},
  };
  constexpr std::size_t kRepetitions = 2000;
  for (const StackCase& c : cases) {
    const std::string source =
        "x = " + repeat(c.open, kRepetitions) + "{}" + repeat(c.close, kRepetitions);
    const std::size_t used = stackUsedBy(source, std::size_t{32} << 20);
    EXPECT_LT(used / (kRepetitions * c.levels), 1024u) << c.open;
  }
}

#endif

}  // namespace
}  // namespace tarvel::lua::internal
