#include <cxxabi.h>
#include <elf.h>
#include <gtest/gtest.h>
#include <link.h>
#include <tarvel/lua/lua_vm.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <regex>
#include <sstream>
#include <unordered_map>
#include <utility>

#include "lua/evaluator/node_functions.h"
#include "lua/frontend/syntax_tree.h"
#include "lua/lua_vm_impl.h"

// Which function each node of a chunk gets. A construct that falls back to a general one still does
// what it should, only slower, so nothing else would notice.

namespace tarvel::lua::internal {
namespace {

// ---- The names of functions ---------------------------------------------------------------------

// From the symbol table in this program's file, so that the interpreter need not know any names.
std::unordered_map<std::uintptr_t, std::string> readSymbols() {
  std::ifstream file("/proc/self/exe", std::ios::binary);
  const std::string image = (std::ostringstream() << file.rdbuf()).str();
  std::uintptr_t loadedAt = 0;
  const auto takeFirst = [](dl_phdr_info* program, std::size_t, void* address) {
    *static_cast<std::uintptr_t*>(address) = program->dlpi_addr;
    return 1;
  };
  dl_iterate_phdr(takeFirst, &loadedAt);  // the program comes before its libraries
  const auto* const header = reinterpret_cast<const ElfW(Ehdr)*>(image.data());
  const auto* const sections = reinterpret_cast<const ElfW(Shdr)*>(image.data() + header->e_shoff);
  std::unordered_map<std::uintptr_t, std::string> symbols;
  for (const ElfW(Shdr)* section = sections; section != sections + header->e_shnum; ++section) {
    if (section->sh_type != SHT_SYMTAB) continue;
    const char* const names = image.data() + sections[section->sh_link].sh_offset;
    const auto* symbol = reinterpret_cast<const ElfW(Sym)*>(image.data() + section->sh_offset);
    for (std::size_t left = section->sh_size / sizeof *symbol; left > 0; --left, ++symbol) {
      if (ELF64_ST_TYPE(symbol->st_info) == STT_FUNC)
        symbols[loadedAt + symbol->st_value] = names + symbol->st_name;
    }
  }
  return symbols;
}

// Without namespaces, results and parameters. `Function` is a NodeFunction or ConditionFunction.
template <class Function>
std::string nameOf(Function function) {
  static const auto symbols = readSymbols();
  const std::string& symbol = symbols.at(reinterpret_cast<std::uintptr_t>(function));
  const std::unique_ptr<char, void (*)(void*)> demangled(
      abi::__cxa_demangle(symbol.c_str(), nullptr, nullptr, nullptr), std::free);
  std::string name = demangled.get();
  static const std::pair<std::regex, const char*> kReplacements[] = {
      {std::regex(R"(tarvel::lua::internal::|\(anonymous namespace\)::)"), ""},
      {std::regex(R"(\(Node const\*, Value\*\)|\bValue |\bbool |::Execute|::run|[&()])"), ""},
      {std::regex(R"((\d)u\b)"), "$1"},
      {std::regex(R"(<Unsupervised>|Unsupervised, )"), ""},
      {std::regex(R"(^(?:one|all)Results?<(.*?) ?>$)"), "$1"},
      {std::regex("> >"), ">>"},
      {std::regex(R"((Left|Right)(<try(\w+)>|(Frame|Other)))"), "$3$4"},
      {std::regex(", AsValue>"), ">"},
  };
  for (const auto& [pattern, replacement] : kReplacements)
    name = std::regex_replace(name, pattern, replacement);
  return name;
}

// ---- The tree -----------------------------------------------------------------------------------

template <class Kind>
const Kind& as(const Node& node) {
  return static_cast<const Kind&>(node);
}

// The names for a statement, for its condition or its only value, and for its body: the block's, or
// those of the block's only statement. Literals and variables have none.
class ShapeNames {
 public:
  explicit ShapeNames(const Stmt& statement) { add(statement); }
  const std::string& text() const { return text_; }

 private:
  void word(const std::string& word) { text_ += (text_.empty() ? "" : " ") + word; }

  void add(const Stmt& statement) {
    switch (statement.kind) {
      case StmtKind::Expression:
        return add(*as<ExpressionStmt>(statement).expression);
      case StmtKind::Assignment:
        return addAssignment(as<AssignmentStmt>(statement));
      case StmtKind::Return:
        return addReturn(as<ReturnStmt>(statement));
      case StmtKind::While:
        word(nameOf(statement.execute));
        word(nameOf(as<WhileStmt>(statement).condition->test));
        return add(*as<WhileStmt>(statement).body);
      case StmtKind::FunctionDeclaration:
        word(nameOf(statement.execute));
        return add(*as<FunctionDeclarationStmt>(statement).function->body);
      default:
        return word(nameOf(statement.execute));
    }
  }

  void add(const Expr& expression) {
    if (expression.kind == ExprKind::Literal || expression.kind == ExprKind::Variable) return;
    const bool isCall = expression.kind == ExprKind::Call;
    word(isCall ? nameOf(as<CallExpr>(expression).executeMulti) : nameOf(expression.execute));
  }

  void addAssignment(const AssignmentStmt& statement) {
    const std::string name = nameOf(statement.execute);
    word(name);
    const bool isFused = name.starts_with("Arithmetic") || name.starts_with("appendTo");
    if (!isFused) add(*statement.value);
  }

  // A block executes the only value instead of the statement that returns it.
  void addReturn(const ReturnStmt& statement) {
    const std::string name = nameOf(statement.execute);
    if (name != "returnValue") word(name);
    if (statement.values.size == 1) add(*statement.values[0]);
  }

  // A block that has nothing to do but its only statement is not executed itself.
  void add(const Block& block) {
    if (bodyNodeOf(block) != &block) return add(as<Stmt>(*block.statements[0]));
    word(nameOf(block.execute));
  }

  std::string text_;
};

std::string namesOfLast(const std::string& source) {
  LuaVM vm;
  const auto chunk = LuaVM::Impl::of(vm).parseScript(source, "t");
  const auto& statements = chunk->main->body->statements;
  return ShapeNames(as<Stmt>(*statements[statements.size - 1])).text();
}

TEST(TreeTest, ChoosesFunctionsByTheShapesOfOperands) {
  const std::string locals = "local n, m, t, s = 1, 2, {}, '' ";
  const struct {
    const char* source;
    const char* names;  // of the last statement
  } cases[] = {
      // Arithmetic, fused into the assignment to a variable that only holds scalars.
      {"n = n + m", "Arithmetic<Add, IntoLocal><Frame, Frame>"},
      {"n = -1 % n", "Arithmetic<Modulo, IntoLocal><Constant, Frame>"},
      {"n = n - t.x", "Arithmetic<Subtract, IntoLocal><Frame, Field>"},
      {"n = n * n + m * m", "Arithmetic<Add, IntoLocal><Product, Product>"},
      {"n = t[n][m - 2] + t[m + 1]", "Arithmetic<Add, IntoLocal><ElementOfElement, Element>"},
      {"n = t[n].x * t.x[m]", "Arithmetic<Multiply, IntoLocal><Leaf, Leaf>"},
      {"n = g - t[n]", "Arithmetic<Subtract, IntoLocal><Leaf, Leaf>"},
      {"n = 1 / 2", "Arithmetic<Divide, IntoLocal><Other, Constant>"},
      {"n = g.x * 2", "Arithmetic<Multiply, IntoLocal><Leaf, Constant>"},
      {"s = n + 1", "storeLocal Arithmetic<Add><Frame, Constant>"},
      // Comparisons as values, as conditions, and with the `if` that they decide.
      {"m = n < t.x", "storeScalarLocal Comparison<OrderRule<Less>>::AsValue<Frame, Field>"},
      {"while n <= m do n = n + 1 end",
       "executeWhile Comparison<OrderRule<LessEqual>>::Condition<Frame, Frame> Arithmetic<Add, "
       "IntoLocal><Frame, Constant>"},
      {"if n == 1 then n = 2 end", "Comparison<EqualityRule<true>>::If<Frame, Constant>"},
      {"if t.x ~= 's' then n = 2 end", "Comparison<EqualityRule<false>>::If<Field, Constant>"},
      {"if n > m * m then n = 1 end", "Comparison<OrderRule<Greater>>::If<Frame, Other>"},
      {"if t.x then n = 2 else n = 3 end", "executeIfElse"},
      {"if not t then n = 1 end", "executeIfNot"},
      {"while t.x do n = 2 end",
       "executeWhile testField<FrameObject> storeInUnused<LiteralSource>"},
      // Appending.
      {"s = s .. n .. 'x'", "appendToVariable"},
      {"t.x = (t.x .. 1) .. n", "appendToAccess"},
      {"s = n .. s", "storeLocal evaluateConcat"},
      // Fields and elements.
      {"return t.x", "readField<FrameObject>"},
      {"return t.x.y", "readField<PeekedObject>"},
      {"return t[t.x + 1].y", "readField<OwnedObject>"},
      {"return t[n]", "readIndex<FrameObject, FrameKey>"},
      {"return t[t.x + 1]", "readIndex<FrameObject, OtherKey>"},
      {"return g[n]", "readIndex<PeekedObject, FrameKey>"},
      {"return g[n][1]", "readIndex<PeekedObject, OtherKey>"},
      {"return g[t[n]]", "readIndex<PeekedObject, PeekedKey>"},
      {"return g[#t.x]", "readIndex<PeekedObject, PeekedKey>"},
      {"return g[t.x + 1]", "readIndexKeepingObject"},
      {"return g[g()]", "readIndexKeepingObject"},
      {"t.x = n", "FieldStore<true, FrameSource>"},
      {"g.x = 1", "FieldStore<false, LiteralSource>"},
      {"t[n] = true", "ElementStore<true, LiteralSource>"},
      {"t[n] = #s", "ElementStore<true, AnySource> evaluatePeekedLength"},
      {"g[1] = s", "storeElement<VariableObject>"},
      {"g[t.x] = s", "storeElementKeepingObject"},
      // Calls.
      {"g(n, #t)", "FunctionCall<GlobalCallee>::Of<2>"},
      {"s()", "FunctionCall<FrameCallee>::Of<0>"},
      {"return t:m(s)", "returnCall MethodCall<1>"},
      {"return t:m(s, s())", "returnCall CallWithMany"},
      {"g(n, t())", "FunctionCall<GlobalCallee>::OfCall<2>"},
      {"return t, n", "returnSeveral"},
      // Bodies.
      {"while n > 0 do local a = {} end",
       "executeWhile Comparison<OrderRule<Greater>>::Condition<Frame, Constant> "
       "runReleasing<runSome<1>>"},
      {"local function f(a) return function() a = n end end", "declareFunction runFunctionSharing"},
      {"local function f(a) f(a) end", "declareFunction RunningFunctionCall<1>"},
      {"local function f(a) return f(f(a), 2) end",
       "declareFunction returnCall FunctionCall<OtherCallee>::Of<2>"},
  };
  for (const auto& c : cases) EXPECT_EQ(c.names, namesOfLast(locals + c.source)) << c.source;
}

}  // namespace
}  // namespace tarvel::lua::internal
