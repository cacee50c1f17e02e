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

// Collects the names, those of an inner node behind that of the outer one. Literals and variables
// in the frame have none; other variables are words for where they live.
class TreeNames {
 public:
  const std::string& text() const { return text_; }

  // A block that has nothing to do but its only statement is not executed itself.
  void add(const Block& block) {
    if (bodyNodeOf(block) == &block) word(nameOf(block.execute));
    for (const Node* statement : block.statements) add(as<Stmt>(*statement));
  }

 private:
  void word(const std::string& word) { text_ += (text_.empty() ? "" : " ") + word; }

  void add(const Expr& expression) {
    const bool isCall = expression.kind == ExprKind::Call;
    add(expression,
        isCall ? nameOf(as<CallExpr>(expression).executeMulti) : nameOf(expression.execute));
  }
  void add(const ArenaList<Expr*>& expressions) {
    for (const Expr* expression : expressions) add(*expression);
  }
  void add(const Expr& expression, const std::string& name) {
    if (expression.kind == ExprKind::Literal) return;
    if (expression.kind == ExprKind::Variable) return addHome(as<VariableExpr>(expression).home);
    word(name);
    addParts(expression, name);
  }
  void addHome(VariableHome home) {
    // In the order of VariableHome.
    const char* const homes[] = {"", "own", "copied", "captured", "running", "global"};
    if (home != VariableHome{}) word(homes[static_cast<std::size_t>(home)]);
  }

  // The name of an operator's function ends in the policies of the operands (operands.h), all but
  // those of `and` and `or`; only the policy Other executes the operand.
  void addOperands(const BinaryExpr& binary, const std::string& name) {
    std::smatch policies;
    const bool hasPolicies = std::regex_search(name, policies, std::regex(R"(<(\w+), (\w+)>$)"));
    if (!hasPolicies || policies[1] == "Other") add(*binary.left);
    if (!hasPolicies || policies[2] == "Other") add(*binary.right);
  }

  void addParts(const Expr& expression, const std::string& name) {
    switch (expression.kind) {
      case ExprKind::Unary:
        return add(*as<UnaryExpr>(expression).operand);
      case ExprKind::Binary:
        return addOperands(as<BinaryExpr>(expression), name);
      case ExprKind::Concat:
        return add(as<ConcatExpr>(expression).operands);
      case ExprKind::Field:
        return add(*as<FieldExpr>(expression).object);
      case ExprKind::Index:
        add(*as<IndexExpr>(expression).object);
        return add(*as<IndexExpr>(expression).key);
      case ExprKind::Call: {
        const auto& call = as<CallExpr>(expression);
        add(call.object != nullptr ? *call.object : *call.callee);
        return add(call.arguments);
      }
      case ExprKind::Function:
        return add(*as<FunctionExpr>(expression).body);
      default:
        return;
    }
  }

  // The values are evaluated first. A value that its store is fused with, and a target, have only
  // parts that are executed.
  void addAssignment(const AssignmentStmt& statement, const std::string& name) {
    const bool isFused = name.starts_with("Arithmetic") || name.starts_with("appendTo");
    isFused ? addParts(*statement.value, name) : add(statement.values);
    for (const AssignTarget& target : statement.targets) {
      const bool isVariable = target.expression->kind == ExprKind::Variable;
      isVariable ? add(*target.expression) : addParts(*target.expression, name);
    }
  }

  // The node of each branch is a part of the one before.
  void addBranches(const IfStmt& statement) {
    const IfStmt* test = &statement;
    for (const auto& branch : statement.branches) {
      const std::string name = nameOf(test->execute);
      word(name);
      // A comparison decides itself.
      name.starts_with("Comparison") ? addParts(*test->condition, name)
                                     : addCondition(*test->condition);
      add(*branch.body);
      test = static_cast<const IfStmt*>(test->otherwiseNode);
    }
    if (statement.elseBody != nullptr) add(*statement.elseBody);
  }
  void addCondition(const Expr& condition) { add(condition, nameOf(condition.test)); }

  void add(const Stmt& statement) {
    if (statement.kind == StmtKind::Expression)
      return add(*as<ExpressionStmt>(statement).expression);
    if (statement.kind == StmtKind::If) return addBranches(as<IfStmt>(statement));
    const std::string name = nameOf(statement.execute);
    // A block executes the expression instead of the statement that returns it.
    if (name != "returnValue") word(name);
    if (statement.kind == StmtKind::Assignment) addAssignment(as<AssignmentStmt>(statement), name);
    if (statement.kind == StmtKind::FunctionDeclaration)
      add(*as<FunctionDeclarationStmt>(statement).function);
    if (statement.kind == StmtKind::While) {
      addCondition(*as<WhileStmt>(statement).condition);
      add(*as<WhileStmt>(statement).body);
    }
    if (statement.kind == StmtKind::Return) add(as<ReturnStmt>(statement).values);
  }

  std::string text_;
};

std::string treeNames(const std::string& source) {
  LuaVM vm;
  TreeNames names;
  names.add(*LuaVM::Impl::of(vm).parseScript(source, "t")->main->body);
  return names.text();
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
      {"if n == 1 then n = 2 end",
       "Comparison<EqualityRule<true>>::If<Frame, Constant> storeInUnused<LiteralSource>"},
      {"if t.x ~= 's' then n = 2 end",
       "Comparison<EqualityRule<false>>::If<Field, Constant> storeInUnused<LiteralSource>"},
      {"if n > m * m then n = 1 elseif t.x then n = 2 else n = 3 end",
       "Comparison<OrderRule<Greater>>::If<Frame, Other> Arithmetic<Multiply><Frame, Frame> "
       "storeInUnused<LiteralSource> executeIfElse testField<FrameObject> "
       "storeInUnused<LiteralSource> storeInUnused<LiteralSource>"},
      {"if not t then n = 1 end", "executeIfNot storeInUnused<LiteralSource>"},
      // Appending.
      {"s = s .. n .. 'x'", "appendToVariable"},
      {"t.x = (t.x .. 1) .. n", "appendToAccess readField<FrameObject>"},
      {"s = n .. s", "storeLocal evaluateConcat"},
      // Fields and elements.
      {"return t.x.y", "readField<PeekedObject> readField<FrameObject>"},
      {"return g[n][1]",
       "readIndex<PeekedObject, OtherKey> readIndex<PeekedObject, FrameKey> global"},
      {"return g[t[n]].y",
       "readField<PeekedObject> readIndex<PeekedObject, PeekedKey> global readIndex<FrameObject, "
       "FrameKey>"},
      {"return t[t.x + 1].y",
       "readField<OwnedObject> readIndex<FrameObject, OtherKey> Arithmetic<Add><Field, Constant>"},
      {"return g[#t.x], g[t.x + 1]",
       "returnSeveral readIndex<PeekedObject, PeekedKey> global evaluatePeekedLength "
       "readField<FrameObject> readIndexKeepingObject global Arithmetic<Add><Field, Constant>"},
      {"return g[g()]", "readIndexKeepingObject global FunctionCall<GlobalCallee>::Of<0> global"},
      {"t.x = n", "FieldStore<true, FrameSource>"},
      {"g.x = 1", "FieldStore<false, LiteralSource> global"},
      {"t.x.y = n", "FieldStore<false, FrameSource> readField<FrameObject>"},
      {"t[n] = true", "ElementStore<true, LiteralSource>"},
      {"t[n] = #s", "ElementStore<true, AnySource> evaluatePeekedLength"},
      {"g[1] = s", "storeElement<VariableObject> global"},
      {"g[t.x] = s", "storeElementKeepingObject global readField<FrameObject>"},
      // Calls.
      {"g(n, #t)", "FunctionCall<GlobalCallee>::Of<2> global evaluatePeekedLength"},
      {"return t:m(s, s())", "returnCall CallWithMany FunctionCall<FrameCallee>::Of<0>"},
      {"return t:m(s)", "returnCall MethodCall<1>"},
      {"g(n, t())",
       "FunctionCall<GlobalCallee>::OfCall<2> global FunctionCall<FrameCallee>::Of<0>"},
      // Bodies.
      {"while g do local a = {} end",
       "executeWhile global runReleasing<runSome<1>> storeScalarLocal evaluateEmptyTable"},
      {"local function f(a) return function() a = n end end",
       "declareFunction makeScriptFunction runFunctionSharing makeScriptFunction storeVariable "
       "copied captured"},
      {"local function f(a) return f(f(a), 2) end",
       "declareFunction makeScriptFunction returnCall FunctionCall<OtherCallee>::Of<2> running "
       "RunningFunctionCall<1> running"},
  };
  for (const auto& c : cases) {
    const std::string text = treeNames(locals + c.source);
    EXPECT_TRUE(text.ends_with(" " + std::string(c.names))) << c.source << "\n" << text;
  }
}

}  // namespace
}  // namespace tarvel::lua::internal
