#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "lua/frontend/item_stack.h"
#include "lua/frontend/lexer.h"
#include "lua/frontend/name_table.h"
#include "lua/frontend/scalars.h"
#include "lua/frontend/scopes.h"
#include "lua/frontend/syntax_tree.h"
#include "lua/frontend/token.h"
#include "lua/value/string_pool.h"

namespace tarvel::lua::internal {

// Builds the tree of one chunk: recursive descent, one function per grammar rule. Everything it
// makes belongs to the chunk, so a failure leaves nothing behind that the chunk does not release.
//
// Depth. Open at a time are one level per parenthesis, index, unary operator, table constructor and
// argument list, and two per block: the block and its current statement. These levels plus the
// height of the expression that is complete at that point never exceed the nesting limit; so it
// bounds the parser's own recursion as well as chains such as `a + b + c`, which are read in a loop
// but are deep as trees. The limit also holds for a walk of the whole tree that enters functions
// where they are written. In an optimised build, one level uses less than 1 KB of the host's stack:
// the frames of the recursive functions hold no strings and no tokens.
class Parser {
 public:
  // The chunk's sites number the bytes of the source. `strings` supplies the
  // chunk's names and literals; the limit is at most kDeepestNesting.
  Parser(std::string_view source, const std::string& chunkName, ResolvedChunk& chunk,
         StringPool& strings, std::uint32_t nestingLimit);

  // Parses all of the source: makes `chunk.main`, a function with these parameters, and returns the
  // statements of its body. Throws what the lexer throws; what failParse throws at the first token
  // that does not fit and where the nesting limit is exceeded ("source is nested too deeply"); and
  // std::bad_alloc. To be called once.
  ArenaList<Node*> parseChunk(std::span<const std::string_view> parameters = {});

 private:
  // What is known of a function while its body is read.
  struct OpenFunction {
    FunctionExpr* function;
    std::uint32_t outerDepth;       // levels that were open around its body
    std::uint32_t loops = 0;        // of its own that are open; without one, `break` is an error
    std::uint32_t innerLevels = 0;  // of the deepest function in it, that one's functions included
  };

  // One level of nesting, open during its lifetime.
  class Level {
   public:
    explicit Level(Parser& parser) : parser_(parser) {
      if (parser.depth_ == parser.nestingLimit_) parser.failTooDeep();
      ++parser.depth_;
    }
    ~Level() { --parser_.depth_; }
    Level(const Level&) = delete;
    Level& operator=(const Level&) = delete;

   private:
    Parser& parser_;
  };

  // A name of a local declaration, whose values may still have to be read.
  struct LocalName {
    Name* name;
    Site site;
  };

  // An operator, whose operands may still have to be read.
  struct Operator {
    TokenKind kind;
    Site site;
  };

  // Statements (parse_statements.cpp).
  // The variables that arrive in a body: parameters, or those of a loop.
  struct Arriving {
    ArenaList<Name*> names;
    bool areScalar;
  };
  Block* parseBlock(std::initializer_list<TokenKind> terminators, const Arriving& arriving = {});
  ArenaList<Node*> parseStatements(std::initializer_list<TokenKind> terminators);
  Stmt* parseStatement();
  Stmt* parseReturn();
  Stmt* parseWhile();
  Stmt* parseIf();
  IfStmt::Branch parseBranch(const char* missingThen);
  Stmt* parseLocal();
  Stmt* parseBreak();
  Stmt* parseFor();
  Stmt* parseNumericFor(Name* variable, Site site);
  Stmt* parseGenericFor(Name* firstName, Site site);
  Block* parseLoopBody(const char* missingEnd, const Arriving& arriving = {});
  Stmt* parseFunctionDeclaration(Site keyword, bool isLocal);
  Stmt* parseLocalFunction(Site keyword);
  Stmt* parseAssignmentOrCall();
  Stmt* parseAssignment(Expr* firstTarget, Site site);
  AssignTarget asAssignTarget(Expr* expression);
  Stmt* parseLocalVariables(Site site);
  ArenaList<AssignTarget> declare(std::span<const LocalName> names);
  ArenaList<AssignTarget> parseTargets(Expr* first);
  ArenaList<Name*> parseLoopNames(Name* first);

  // What stands between `function` and the parameters.
  struct DeclaredName {
    AssignTarget target;
    StringObject* text;  // as written
    bool isMethod;
  };
  DeclaredName parseDeclaredName();
  AssignTarget asFunctionTarget(Expr* expression);

  // Expressions (parse_expressions.cpp), from the lowest precedence to the highest.
  Expr* parseExpression();
  Expr* parseAnd();
  Expr* parseComparison();
  Expr* parseConcat();
  Expr* parseConcatChain(Expr* first);
  Expr* parseSum();
  Expr* parseFactor();
  Expr* parseUnary();
  Expr* parseOperand();
  Expr* parsePrefixExpression();
  Expr* parsePrimary();
  Expr* parseVariable();
  // Reads what may follow an expression in a chain that starts at `site`; null when the chain is at
  // its end.
  Expr* parseSuffix(Expr* object, Site site);
  Expr* parseField(Expr* object, Site site);
  Expr* parseIndex(Expr* object, Site site);
  Expr* parseCall(Expr* callee, Site site);
  Expr* parseMethodCall(Expr* object, Site site);
  Expr* parseParenthesised();
  Expr* parseInnerExpression();
  Expr* parseTableConstructor();
  ArenaList<TableExpr::Field> parseTableFields();
  TableExpr::Field parseTableField();
  TableExpr::Field parseKeyedField();
  TableExpr::Field parseFieldValue(TableExpr::FieldKind kind, Site site);
  ArenaList<Expr*> parseExpressionList();
  ArenaList<Expr*> parseArguments();
  FunctionExpr* parseFunctionBody(Site site, StringObject* name, bool isMethod);
  ArenaList<Name*> parseParameters(bool isMethod);
  void parseBodyOf(FunctionExpr* function, std::initializer_list<TokenKind> terminators);

  // Nodes.
  Expr* takeLiteral(Value value);
  Expr* takeString();
  VariableExpr* makeVariable(Name& name, Site site);
  static LocalVariable* localOf(const Expr& target);
  LiteralExpr*& literalSlot(Value value);
  bool isKnownLiteral(Value value);
  void moveIntoField(TableExpr::Field& field, LiteralExpr* literal);
  Expr* makeBinary(Expr* left, Operator op, Expr* right);
  Expr* completeCall(CallExpr* call, const Expr* calleeOrObject);
  FunctionExpr* makeFunction(StringObject* name, Site site);

  template <class T, class... Arguments>
  T* make(Arguments&&... arguments) {
    return chunk_.arena.make<T>(std::forward<Arguments>(arguments)...);
  }

  static void adoptHeight(Expr* parent, std::uint32_t childHeight) {
    if (childHeight >= parent->height) parent->height = static_cast<std::uint16_t>(childHeight + 1);
  }
  static void adopt(Expr* parent, const Expr* child) {
    adoptHeight(parent, child->height);
    if (child->mayRunCode) parent->mayRunCode = true;
  }

  // Finishes a node whose remaining children are `children`.
  template <class T, class... Children>
  T* complete(T* node, const Children*... children) {
    (adopt(node, children), ...);
    noteHeight(node->height);
    return node;
  }

  // Accounts for an expression of `height` levels, or for a statement without one (0), at the
  // current depth.
  void noteHeight(std::uint32_t height);

  // The tokens.
  bool at(TokenKind kind) const { return current_.kind == kind; }
  void take() { current_ = lexer_.next(); }
  Site currentSite() const { return firstSite_ + static_cast<Site>(current_.position); }
  Site takeSite();
  Operator takeOperator();
  bool skip(TokenKind kind);
  // These fail with `message` at the current token.
  void expect(TokenKind kind, const char* message);
  Name* expectName(const char* message);

  StringObject* internName(std::string_view text) { return names_.find(text)->text; }
  StringObject* internLiteral(const Token& literal);  // owned

  // Fail at the current token.
  [[noreturn, gnu::noinline]] void fail(const char* message);
  [[noreturn, gnu::noinline]] void failTooDeep();

  Lexer lexer_;
  Token current_;
  std::string decoded_;  // the latest string literal with escapes
  ResolvedChunk& chunk_;
  StringPool& strings_;
  NameTable names_;
  Scopes scopes_;
  ScalarFinder scalars_;
  const std::uint32_t nestingLimit_;
  const Site firstSite_;
  std::uint32_t depth_ = 0;  // levels that are open
  // The latest literal nodes, by their values.
  std::array<LiteralExpr*, 256> literals_{};
  bool isNewLiteral_ = false;  // the latest literal has a node that nothing else refers to
  LiteralExpr* spareLiteral_ = nullptr;  // a node that nothing refers to
  // What has been read of the lists that are open.
  MemoryCharge listMemory_;
  ItemStack<Node*> statements_;
  ItemStack<Expr*> expressions_;
  ItemStack<AssignTarget> targets_;
  ItemStack<LocalName> localNames_;
  ItemStack<Name*> listedNames_;
  ItemStack<IfStmt::Branch> branches_;
  ItemStack<TableExpr::Field> fields_;
  std::vector<OpenFunction> functions_;  // innermost last; the chunk itself first
};

}  // namespace tarvel::lua::internal
