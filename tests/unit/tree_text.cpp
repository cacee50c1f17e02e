#include "tests/unit/tree_text.h"

#include <cxxabi.h>
#include <elf.h>
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

namespace tarvel::lua {

namespace internal {

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

class TreeWriter {
 public:
  // `globals` has the names of all globals that the tree may mention.
  explicit TreeWriter(std::unordered_map<const Value*, std::string> globals)
      : globals_(std::move(globals)) {}

  const std::string& text() const { return text_; }

  // A block that has nothing to do but its only statement is not executed itself.
  void write(const Block& block) {
    const bool isNode = bodyNodeOf(block) == &block;
    if (isNode) open(nameOf(block.execute));
    for (const Node* statement : block.statements) write(as<Stmt>(*statement));
    if (isNode) close();
  }

 private:
  void word(const std::string& word) { text_ += (text_.empty() ? "" : " ") + word; }
  void open(const std::string& name) { word('(' + name); }
  void close() { text_ += ')'; }

  // A function for an operator, or for what one is fused into, has a name that ends in the policies
  // of the operands; all but those for `and` and `or`.
  void open(const std::string& name, const BinaryExpr& binary) {
    std::smatch match;
    const bool hasPolicies = std::regex_match(name, match, std::regex(R"((.*)<(\w+), (\w+)>)"));
    open(hasPolicies ? match[1].str() : name);
    const auto writeOperand = [&](const Expr& operand, const std::string& policy) {
      policy == "Other" || !hasPolicies ? write(operand) : word(policy);
    };
    writeOperand(*binary.left, match[2]);
    writeOperand(*binary.right, match[3]);
  }

  void write(const Expr& expression) {
    const bool isCall = expression.kind == ExprKind::Call;
    write(expression, nameOf(isCall ? as<CallExpr>(expression).executeMulti : expression.execute));
  }
  void writeCondition(const Expr& expression) { write(expression, nameOf(expression.test)); }
  void write(const ArenaList<Expr*>& expressions) {
    for (const Expr* expression : expressions) write(*expression);
  }

  void write(const Expr& expression, const std::string& name) {
    if (expression.kind == ExprKind::Literal) return word(literalValue(expression).toString());
    if (expression.kind == ExprKind::Variable) return write(as<VariableExpr>(expression));
    if (expression.kind == ExprKind::Binary) {
      open(name, as<BinaryExpr>(expression));
    } else {
      open(name);
      writeParts(expression);
    }
    close();
  }

  void write(const VariableExpr& variable) {
    // In the order of VariableHome.
    const char* const homes[] = {"", "own.", "copied.", "captured.", "running.", "global."};
    const LocalVariable* const local = variable.local();
    word(homes[static_cast<std::size_t>(variable.home)] +
         (local != nullptr ? std::string(local->name.text->view()) : globals_.at(variable.cell)));
  }

  void writeParts(const Expr& expression) {
    switch (expression.kind) {
      case ExprKind::Unary:
        return write(*as<UnaryExpr>(expression).operand);
      case ExprKind::Concat:
        return write(as<ConcatExpr>(expression).operands);
      case ExprKind::Table:
        for (const TableExpr::Field& field : as<TableExpr>(expression).fields) {
          field.isConstant() ? word(field.constant().toString()) : write(*field.value);
        }
        return;
      case ExprKind::Field:
        return write(*as<FieldExpr>(expression).object);
      case ExprKind::Index:
        write(*as<IndexExpr>(expression).object);
        return write(*as<IndexExpr>(expression).key);
      case ExprKind::Call: {
        const auto& call = as<CallExpr>(expression);
        write(call.object != nullptr ? *call.object : *call.callee);
        return write(call.arguments);
      }
      case ExprKind::Function:
        return write(*as<FunctionExpr>(expression).body);
      default:
        return;
    }
  }

  // The values are evaluated first. Of a target that is no variable only the parts are executed.
  void write(const AssignmentStmt& statement) {
    const std::string name = nameOf(statement.execute);
    if (name.starts_with("Arithmetic")) {
      open(name, as<BinaryExpr>(*statement.value));
    } else {
      open(name);
      name.starts_with("appendTo") ? writeParts(*statement.value) : write(statement.values);
    }
    for (const AssignTarget& target : statement.targets) {
      const bool isVariable = target.expression->kind == ExprKind::Variable;
      isVariable ? write(*target.expression) : writeParts(*target.expression);
    }
    close();
  }

  // As it is executed: `test` is the node of a branch, and that of the next branch a part of it.
  void write(const IfStmt& statement, const IfStmt& test, std::uint32_t branch) {
    const std::string name = nameOf(test.execute);
    if (name.starts_with("Comparison")) {
      open(name, as<BinaryExpr>(*test.condition));
    } else {
      open(name);
      writeCondition(*test.condition);
    }
    write(*statement.branches[branch].body);
    if (branch + 1 < statement.branches.size) {
      write(statement, as<IfStmt>(*test.otherwiseNode), branch + 1);
    } else if (statement.elseBody != nullptr) {
      write(*statement.elseBody);
    }
    close();
  }

  void write(const Stmt& statement) {
    if (statement.kind == StmtKind::Expression)
      return write(*as<ExpressionStmt>(statement).expression);
    if (statement.kind == StmtKind::Assignment) return write(as<AssignmentStmt>(statement));
    if (statement.kind == StmtKind::If && as<IfStmt>(statement).condition != nullptr)
      return write(as<IfStmt>(statement), as<IfStmt>(statement), 0);
    const std::string name = nameOf(statement.execute);
    // A block executes the expression instead of the statement that returns it.
    if (name == "returnValue") return write(as<ReturnStmt>(statement).values);
    open(name);
    if (statement.kind == StmtKind::FunctionDeclaration)
      write(*as<FunctionDeclarationStmt>(statement).function);
    if (statement.kind == StmtKind::While) {
      writeCondition(*as<WhileStmt>(statement).condition);
      write(*as<WhileStmt>(statement).body);
    }
    if (statement.kind == StmtKind::NumericFor) write(*as<NumericForStmt>(statement).body);
    if (statement.kind == StmtKind::GenericFor) write(*as<GenericForStmt>(statement).body);
    if (statement.kind == StmtKind::Return) write(as<ReturnStmt>(statement).values);
    close();
  }

  std::string text_;
  std::unordered_map<const Value*, std::string> globals_;
};

// All words of the source, as if each were the name of a global.
std::unordered_map<const Value*, std::string> globalsOf(LuaVM::Impl& interpreter,
                                                        const std::string& source) {
  std::unordered_map<const Value*, std::string> globals;
  static const std::regex kWord("[A-Za-z_]\\w*");
  for (std::sregex_iterator word(source.begin(), source.end(), kWord), end; word != end; ++word) {
    globals[&interpreter.globals.at(interpreter.globals.slotOf(word->str()))] = word->str();
  }
  return globals;
}

}  // namespace

}  // namespace internal

std::string treeText(const std::string& source) {
  LuaVM vm;
  LuaVM::Impl& interpreter = LuaVM::Impl::of(vm);
  internal::TreeWriter writer(internal::globalsOf(interpreter, source));
  writer.write(*interpreter.parseScript(source, "t")->main->body);
  return writer.text();
}

}  // namespace tarvel::lua
