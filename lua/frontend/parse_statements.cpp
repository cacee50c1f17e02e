#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "lua/frontend/parser.h"

namespace tarvel::lua::internal {

Parser::Parser(std::string_view source, const std::string& chunkName, ResolvedChunk& chunk,
               StringPool& strings, std::uint32_t nestingLimit)
    : lexer_(source, chunkName),
      chunk_(chunk),
      strings_(strings),
      names_(chunk, strings),
      scopes_(chunk),
      nestingLimit_(nestingLimit),
      firstSite_(chunk.sites.first()),
      listMemory_(strings.heap()),
      statements_(listMemory_),
      expressions_(listMemory_),
      targets_(listMemory_),
      localNames_(listMemory_),
      listedNames_(listMemory_),
      branches_(listMemory_),
      fields_(listMemory_) {}

ArenaList<Node*> Parser::parseChunk(std::span<const std::string_view> parameters) {
  take();
  chunk_.main = makeFunction(internName("<chunk>"), currentSite());
  std::vector<Name*> names;
  for (const std::string_view name : parameters) names.push_back(names_.find(name));
  chunk_.main->parameters = chunk_.arena.list(names);
  parseBodyOf(chunk_.main, {});
  scalars_.finish();
  return chunk_.main->body->statements;
}

// ---- Blocks ----

// Without terminators, the block is the rest of the text. Its end is for the caller to check and to
// consume. Deliberate: `return` need not be the last statement, so that one can be put in for a
// try.
Block* Parser::parseBlock(std::initializer_list<TokenKind> terminators, const Arriving& arriving) {
  const Level blockLevel(*this);
  const Level statementLevel(*this);
  noteHeight(0);
  const Site site = currentSite();
  Scopes::Scope scope(scopes_);
  for (Name* name : arriving.names) {
    LocalVariable* const variable = scopes_.declare(*name, *functions_.back().function);
    variable->arriving = true;
    variable->scalar = arriving.areScalar;
  }
  auto* const block = make<Block>(parseStatements(terminators), site);
  block->variables = scope.first();
  return block;
}

ArenaList<Node*> Parser::parseStatements(std::initializer_list<TokenKind> terminators) {
  ItemStack<Node*>::List statements(statements_);
  for (;;) {
    while (skip(TokenKind::Semicolon)) continue;
    const TokenKind kind = current_.kind;
    if (kind == TokenKind::EndOfFile || std::ranges::find(terminators, kind) != terminators.end()) {
      break;
    }
    statements.add(parseStatement());
  }
  return chunk_.arena.list(statements.items());
}

Stmt* Parser::parseStatement() {
  switch (current_.kind) {
    case TokenKind::Return:
      return parseReturn();
    case TokenKind::While:
      return parseWhile();
    case TokenKind::If:
      return parseIf();
    case TokenKind::Local:
      return parseLocal();
    case TokenKind::Break:
      return parseBreak();
    case TokenKind::For:
      return parseFor();
    case TokenKind::Function:
      return parseFunctionDeclaration(takeSite(), false);
    default:
      return parseAssignmentOrCall();
  }
}

// ---- Branches, loops, jumps ----

Stmt* Parser::parseReturn() {
  const Site site = takeSite();
  switch (current_.kind) {
    case TokenKind::Semicolon:
    case TokenKind::Else:
    case TokenKind::Elseif:
    case TokenKind::End:
    case TokenKind::EndOfFile:
      return make<ReturnStmt>(ArenaList<Expr*>(), site);
    default:
      return make<ReturnStmt>(parseExpressionList(), site);
  }
}

Stmt* Parser::parseBreak() {
  if (functions_.back().loops == 0) fail("break outside a loop");
  return make<BreakStmt>(takeSite());
}

Stmt* Parser::parseIf() {
  const Site site = takeSite();
  ItemStack<IfStmt::Branch>::List branches(branches_);
  branches.add(parseBranch("expected 'then' after if condition"));
  while (skip(TokenKind::Elseif)) {
    branches.add(parseBranch("expected 'then' after elseif condition"));
  }
  Block* otherwise = skip(TokenKind::Else) ? parseBlock({TokenKind::End}) : nullptr;
  expect(TokenKind::End, "expected 'end' after if statement");
  return make<IfStmt>(chunk_.arena.list(branches.items()), otherwise, site);
}

IfStmt::Branch Parser::parseBranch(const char* missingThen) {
  Expr* condition = parseExpression();
  expect(TokenKind::Then, missingThen);
  return {condition, parseBlock({TokenKind::Elseif, TokenKind::Else, TokenKind::End})};
}

Stmt* Parser::parseWhile() {
  const Site site = takeSite();
  Expr* condition = parseExpression();
  expect(TokenKind::Do, "expected 'do' after while condition");
  Block* body = parseLoopBody("expected 'end' after while loop");
  return make<WhileStmt>(condition, body, site);
}

Stmt* Parser::parseFor() {
  const Site site = takeSite();
  Name* name = expectName("expected loop variable name");
  return skip(TokenKind::Assign) ? parseNumericFor(name, site) : parseGenericFor(name, site);
}

Stmt* Parser::parseNumericFor(Name* variable, Site site) {
  Expr* start = parseExpression();
  expect(TokenKind::Comma, "expected ',' after numeric for start value");
  Expr* limit = parseExpression();
  Expr* step = skip(TokenKind::Comma) ? parseExpression() : nullptr;
  expect(TokenKind::Do, "expected 'do' after numeric for range");
  Block* body = parseLoopBody("expected 'end' after numeric for loop", {{&variable, 1}, true});
  return make<NumericForStmt>(variable, start, limit, step, body, site);
}

Stmt* Parser::parseGenericFor(Name* firstName, Site site) {
  const ArenaList<Name*> names = parseLoopNames(firstName);
  expect(TokenKind::In, "expected 'in' in generic for loop");
  const ArenaList<Expr*> iterators = parseExpressionList();
  expect(TokenKind::Do, "expected 'do' after generic for iterator");
  Block* body = parseLoopBody("expected 'end' after generic for loop", {names, false});
  return make<GenericForStmt>(names, iterators, body, site);
}

ArenaList<Name*> Parser::parseLoopNames(Name* first) {
  ItemStack<Name*>::List names(listedNames_);
  names.add(first);
  while (skip(TokenKind::Comma)) names.add(expectName("expected loop variable name"));
  return chunk_.arena.list(names.items());
}

Block* Parser::parseLoopBody(const char* missingEnd, const Arriving& arriving) {
  ++functions_.back().loops;
  Block* body = parseBlock({TokenKind::End}, arriving);
  --functions_.back().loops;
  expect(TokenKind::End, missingEnd);
  return body;
}

// ---- Declarations ----

Stmt* Parser::parseLocal() {
  const Site site = takeSite();
  if (at(TokenKind::Function)) return parseFunctionDeclaration(takeSite(), true);
  return parseLocalVariables(site);
}

// The names are declared behind the values, so in `local x = x` the right one is the outer x.
Stmt* Parser::parseLocalVariables(Site site) {
  ItemStack<LocalName>::List names(localNames_);
  do {
    const Site nameSite = currentSite();
    names.add({expectName("expected local variable name"), nameSite});
    noteHeight(1);
  } while (skip(TokenKind::Comma));
  const ArenaList<Expr*> values =
      skip(TokenKind::Assign) ? parseExpressionList() : ArenaList<Expr*>();
  auto* const statement = make<AssignmentStmt>(true, declare(names.items()), values, site);
  scalars_.note(*statement);
  return statement;
}

ArenaList<AssignTarget> Parser::declare(std::span<const LocalName> names) {
  const FunctionExpr& function = *functions_.back().function;
  ItemStack<AssignTarget>::List targets(targets_);
  for (const LocalName& local : names) {
    scopes_.declare(*local.name, function);
    targets.add({scopes_.mention(*local.name, function, local.site)});
  }
  return chunk_.arena.list(targets.items());
}

Stmt* Parser::parseFunctionDeclaration(Site keyword, bool isLocal) {
  if (isLocal) return parseLocalFunction(keyword);
  const DeclaredName name = parseDeclaredName();
  if (LocalVariable* const variable = localOf(*name.target.expression)) {
    variable->assigned = true;
    variable->scalar = false;
  }
  FunctionExpr* function = parseFunctionBody(keyword, name.text, name.isMethod);
  return make<FunctionDeclarationStmt>(false, name.target, function, keyword);
}

// The name is declared before the body, which can therefore call the function.
Stmt* Parser::parseLocalFunction(Site keyword) {
  const Site nameSite = currentSite();
  Name* name = expectName("expected local function name");
  LocalVariable* variable = scopes_.declare(*name, *functions_.back().function);
  variable->scalar = false;
  VariableExpr* target = makeVariable(*name, nameSite);
  FunctionExpr* function = parseFunctionBody(keyword, name->text, false);
  variable->function = function;
  return make<FunctionDeclarationStmt>(true, AssignTarget{target}, function, keyword);
}

Parser::DeclaredName Parser::parseDeclaredName() {
  const Site site = currentSite();
  Name* name = expectName("expected function name");
  std::string text(name->text->view());
  Expr* target = makeVariable(*name, site);
  while (skip(TokenKind::Dot)) {
    name = expectName("expected field name after '.'");
    text.append(".").append(name->text->view());
    target = complete(make<FieldExpr>(target, name->text, site), target);
  }
  const bool isMethod = skip(TokenKind::Colon);
  if (isMethod) {
    name = expectName("expected method name after ':'");
    text.append(":").append(name->text->view());
    target = complete(make<FieldExpr>(target, name->text, site), target);
  }
  return {asFunctionTarget(target), internName(text), isMethod};
}

AssignTarget Parser::asFunctionTarget(Expr* expression) {
  if (expression->kind != ExprKind::Variable && expression->kind != ExprKind::Field) {
    fail("invalid function target");
  }
  return {expression};
}

// ---- Assignments and calls ----

Stmt* Parser::parseAssignmentOrCall() {
  const Site site = currentSite();
  Expr* expression = parsePrefixExpression();
  if (at(TokenKind::Assign) || at(TokenKind::Comma)) return parseAssignment(expression, site);
  if (expression->kind != ExprKind::Call) fail("expected function call");
  return make<ExpressionStmt>(static_cast<CallExpr*>(expression), site);
}

Stmt* Parser::parseAssignment(Expr* firstTarget, Site site) {
  const ArenaList<AssignTarget> targets = parseTargets(firstTarget);
  expect(TokenKind::Assign, "expected '=' in assignment");
  const ArenaList<Expr*> values = parseExpressionList();
  auto* const statement = make<AssignmentStmt>(false, targets, values, site);
  for (const AssignTarget& target : targets) {
    if (LocalVariable* const variable = localOf(*target.expression)) variable->assigned = true;
  }
  scalars_.note(*statement);
  return statement;
}

ArenaList<AssignTarget> Parser::parseTargets(Expr* first) {
  ItemStack<AssignTarget>::List targets(targets_);
  targets.add(asAssignTarget(first));
  while (skip(TokenKind::Comma)) targets.add(asAssignTarget(parsePrefixExpression()));
  return chunk_.arena.list(targets.items());
}

// The local that a target is; null for anything else.
LocalVariable* Parser::localOf(const Expr& target) {
  if (target.kind != ExprKind::Variable) return nullptr;
  return static_cast<const VariableExpr&>(target).local();
}

AssignTarget Parser::asAssignTarget(Expr* expression) {
  switch (expression->kind) {
    case ExprKind::Variable:
    case ExprKind::Field:
    case ExprKind::Index:
      return {expression};
    default:
      fail("invalid assignment target");
  }
}

// ---- The cursor, nesting and errors ----

Site Parser::takeSite() {
  const Site site = currentSite();
  take();
  return site;
}

Parser::Operator Parser::takeOperator() {
  const TokenKind kind = current_.kind;
  return {kind, takeSite()};
}

bool Parser::skip(TokenKind kind) {
  if (!at(kind)) return false;
  take();
  return true;
}

void Parser::expect(TokenKind kind, const char* message) {
  if (!at(kind)) fail(message);
  take();
}

Name* Parser::expectName(const char* message) {
  if (!at(TokenKind::Identifier)) fail(message);
  Name* name = names_.find(current_.text);
  take();
  return name;
}

StringObject* Parser::internLiteral(const Token& literal) {
  if (!literal.hasEscapes) return strings_.intern(literal.text);
  strings_.heap().requireRoom(literal.text.size());
  decoded_.clear();
  appendDecoded(decoded_, literal.text);
  return strings_.intern(decoded_);
}

void Parser::noteHeight(std::uint32_t height) {
  if (height > nestingLimit_ - depth_) failTooDeep();
  const OpenFunction& open = functions_.back();
  const std::uint32_t levels = depth_ - open.outerDepth + height;
  open.function->nesting = std::max(open.function->nesting, levels);
}

void Parser::fail(const char* message) { lexer_.reject(current_, message); }

void Parser::failTooDeep() { fail("source is nested too deeply"); }

}  // namespace tarvel::lua::internal
