#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <string_view>
#include <system_error>
#include <vector>

#include "lua/frontend/parser.h"

namespace tarvel::lua::internal {

namespace {

double decimalNumber(std::string_view text) {
  double value = 0;
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, value, std::chars_format::fixed);
  if (result.ec != std::errc::result_out_of_range) return value;
  // There are no exponents, so what does not fit is too large if its whole part is not zero, else
  // too small.
  const bool isLarge = text.find_first_not_of('0') < text.find('.');
  return isLarge ? std::numeric_limits<double>::infinity() : 0.0;
}

std::int64_t hexadecimalInteger(std::string_view digits) {
  std::uint64_t value = 0;  // wraps
  for (const char digit : digits) {
    const int base = digit <= '9' ? '0' : (digit <= 'F' ? 'A' : 'a') - 10;
    value = value << 4 | static_cast<std::uint64_t>(digit - base);
  }
  return static_cast<std::int64_t>(value);
}

// A decimal integer that 64 bits cannot hold becomes the nearest float.
Value integerOrFloat(std::string_view text) {
  if (text.starts_with("0x") || text.starts_with("0X")) {
    return Value(hexadecimalInteger(text.substr(2)));
  }
  std::int64_t value = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  return result.ec == std::errc() ? Value(value) : Value(decimalNumber(text));
}

bool isFactorOperator(TokenKind kind) {
  return kind == TokenKind::Star || kind == TokenKind::Slash || kind == TokenKind::Percent;
}

bool isUnaryOperator(TokenKind kind) {
  return kind == TokenKind::Minus || kind == TokenKind::Hash || kind == TokenKind::Not;
}

}  // namespace

// ---- Operators ----

Expr* Parser::parseExpression() {
  Expr* left = parseAnd();
  while (at(TokenKind::Or)) {
    const Operator op = takeOperator();
    left = makeBinary(left, op, parseAnd());
  }
  return left;
}

Expr* Parser::parseAnd() {
  Expr* left = parseComparison();
  while (at(TokenKind::And)) {
    const Operator op = takeOperator();
    left = makeBinary(left, op, parseComparison());
  }
  return left;
}

Expr* Parser::parseComparison() {
  Expr* left = parseConcat();
  while (isComparison(current_.kind)) {
    const Operator op = takeOperator();
    left = makeBinary(left, op, parseConcat());
  }
  return left;
}

// Deliberate, the dialect's grammar: `..` shares its level with `+` and `-`, and its right operand
// takes in everything that follows on the level. So `a + b .. c + d` is `(a + b) .. (c + d)`.
Expr* Parser::parseConcat() {
  Expr* first = parseSum();
  return at(TokenKind::DotDot) ? parseConcatChain(first) : first;
}

Expr* Parser::parseConcatChain(Expr* first) {
  const Site site = currentSite();
  ItemStack<Expr*>::List operands(expressions_);
  operands.add(first);
  while (skip(TokenKind::DotDot)) operands.add(parseSum());
  auto* chain = make<ConcatExpr>(chunk_.arena.list(operands.items()), site);
  for (const Expr* operand : chain->operands) adopt(chain, operand);
  return complete(chain);
}

Expr* Parser::parseSum() {
  Expr* left = parseFactor();
  while (at(TokenKind::Plus) || at(TokenKind::Minus)) {
    const Operator op = takeOperator();
    left = makeBinary(left, op, parseFactor());
  }
  return left;
}

Expr* Parser::parseFactor() {
  Expr* left = parseUnary();
  while (isFactorOperator(current_.kind)) {
    const Operator op = takeOperator();
    left = makeBinary(left, op, parseUnary());
  }
  return left;
}

Expr* Parser::parseUnary() {
  if (!isUnaryOperator(current_.kind)) return parsePrefixExpression();
  const Operator op = takeOperator();
  Expr* operand = parseOperand();
  return complete(make<UnaryExpr>(op.kind, operand, op.site), operand);
}

Expr* Parser::parseOperand() {
  const Level level(*this);
  return parseUnary();
}

// ---- Primaries and what may follow them ----

Expr* Parser::parsePrefixExpression() {
  const Site site = currentSite();
  Expr* chain = parsePrimary();
  while (Expr* longer = parseSuffix(chain, site)) chain = longer;
  return chain;
}

Expr* Parser::parsePrimary() {
  switch (current_.kind) {
    case TokenKind::Integer:
      return takeLiteral(integerOrFloat(current_.text));
    case TokenKind::Number:
      return takeLiteral(Value(decimalNumber(current_.text)));
    case TokenKind::String:
      return takeString();
    case TokenKind::Nil:
      return takeLiteral(Value());
    case TokenKind::True:
      return takeLiteral(Value(true));
    case TokenKind::False:
      return takeLiteral(Value(false));
    case TokenKind::Function:
      return parseFunctionBody(takeSite(), internName("<anonymous>"), false);
    case TokenKind::LeftBrace:
      return parseTableConstructor();
    case TokenKind::LeftParen:
      return parseParenthesised();
    case TokenKind::Identifier:
      return parseVariable();
    default:
      fail("expected expression");
  }
}

Expr* Parser::parseVariable() {
  Name* name = names_.find(current_.text);
  return makeVariable(*name, takeSite());
}

// No node is made for the parentheses, so `(f())` is the call itself.
Expr* Parser::parseParenthesised() {
  take();
  Expr* inner = parseInnerExpression();
  expect(TokenKind::RightParen, "expected ')' after expression");
  return inner;
}

Expr* Parser::parseInnerExpression() {
  const Level level(*this);
  return parseExpression();
}

Expr* Parser::parseSuffix(Expr* object, Site site) {
  switch (current_.kind) {
    case TokenKind::Dot:
      return parseField(object, site);
    case TokenKind::LeftBracket:
      return parseIndex(object, site);
    case TokenKind::Colon:
      return parseMethodCall(object, site);
    case TokenKind::LeftParen:
      return parseCall(object, site);
    default:
      return nullptr;
  }
}

Expr* Parser::parseField(Expr* object, Site site) {
  take();
  Name* name = expectName("expected field name after '.'");
  return complete(make<FieldExpr>(object, name->text, site), object);
}

Expr* Parser::parseIndex(Expr* object, Site site) {
  take();
  Expr* key = parseInnerExpression();
  expect(TokenKind::RightBracket, "expected ']' after index expression");
  return complete(make<IndexExpr>(object, key, site), object, key);
}

Expr* Parser::parseCall(Expr* callee, Site site) {
  const ArenaList<Expr*> arguments = parseArguments();
  return completeCall(make<CallExpr>(callee, arguments, site), callee);
}

Expr* Parser::parseMethodCall(Expr* object, Site site) {
  take();
  Name* method = expectName("expected method name after ':'");
  const ArenaList<Expr*> arguments = parseArguments();
  return completeCall(make<CallExpr>(object, method->text, arguments, site), object);
}

ArenaList<Expr*> Parser::parseArguments() {
  const Level level(*this);
  expect(TokenKind::LeftParen, "expected '(' before arguments");
  if (skip(TokenKind::RightParen)) return {};
  const ArenaList<Expr*> arguments = parseExpressionList();
  expect(TokenKind::RightParen, "expected ')' after arguments");
  return arguments;
}

ArenaList<Expr*> Parser::parseExpressionList() {
  ItemStack<Expr*>::List expressions(expressions_);
  do {
    expressions.add(parseExpression());
  } while (skip(TokenKind::Comma));
  return chunk_.arena.list(expressions.items());
}

// ---- Tables ----

Expr* Parser::parseTableConstructor() {
  const Site site = takeSite();
  const ArenaList<TableExpr::Field> fields = parseTableFields();
  expect(TokenKind::RightBrace, "expected '}' after table constructor");
  auto* table = make<TableExpr>(fields, site);
  for (const TableExpr::Field& field : table->fields) {
    table->positionalCount += field.kind == TableExpr::FieldKind::Positional;
    if (field.kind == TableExpr::FieldKind::Keyed) adopt(table, field.key);
    if (field.isConstant()) {
      adoptHeight(table, 1);
    } else {
      adopt(table, field.value);
    }
  }
  return complete(table);
}

ArenaList<TableExpr::Field> Parser::parseTableFields() {
  const Level level(*this);
  ItemStack<TableExpr::Field>::List fields(fields_);
  while (!at(TokenKind::RightBrace) && !at(TokenKind::EndOfFile)) {
    fields.add(parseTableField());
    if (!skip(TokenKind::Comma) && !skip(TokenKind::Semicolon)) break;
  }
  return chunk_.arena.list(fields.items());
}

TableExpr::Field Parser::parseTableField() {
  if (at(TokenKind::LeftBracket)) return parseKeyedField();
  const Site site = currentSite();
  if (at(TokenKind::Identifier) && lexer_.isAtAssign()) {
    StringObject* name = internName(current_.text);
    take();
    take();
    TableExpr::Field field = parseFieldValue(TableExpr::FieldKind::Named, site);
    field.name = name;
    return field;
  }
  return parseFieldValue(TableExpr::FieldKind::Positional, site);
}

TableExpr::Field Parser::parseKeyedField() {
  const Site site = takeSite();
  Expr* key = parseExpression();
  expect(TokenKind::RightBracket, "expected ']' after table key");
  expect(TokenKind::Assign, "expected '=' after table key");
  TableExpr::Field field = parseFieldValue(TableExpr::FieldKind::Keyed, site);
  field.key = key;
  return field;
}

TableExpr::Field Parser::parseFieldValue(TableExpr::FieldKind kind, Site site) {
  Expr* value = parseExpression();
  TableExpr::Field field(kind, site, value);
  if (value->kind == ExprKind::Literal) {
    moveIntoField(field, static_cast<LiteralExpr*>(value));
  }
  return field;
}

// ---- Functions ----

FunctionExpr* Parser::parseFunctionBody(Site site, StringObject* name, bool isMethod) {
  FunctionExpr* function = makeFunction(name, site);
  expect(TokenKind::LeftParen, "expected '(' after function name");
  function->parameters = parseParameters(isMethod);
  parseBodyOf(function, {TokenKind::End});
  expect(TokenKind::End, "expected 'end' after function body");
  return complete(function);
}

// Reads the parameters and the closing parenthesis.
ArenaList<Name*> Parser::parseParameters(bool isMethod) {
  ItemStack<Name*>::List parameters(listedNames_);
  if (isMethod) parameters.add(names_.find("self"));
  if (!at(TokenKind::RightParen)) {
    do {
      parameters.add(expectName("expected parameter name"));
    } while (skip(TokenKind::Comma));
  }
  expect(TokenKind::RightParen, "expected ')' after parameter list");
  return chunk_.arena.list(parameters.items());
}

void Parser::parseBodyOf(FunctionExpr* function, std::initializer_list<TokenKind> terminators) {
  functions_.push_back({function, depth_});
  function->body = parseBlock(terminators, {function->parameters, false});
  const std::uint64_t levels = std::uint64_t{function->nesting} + functions_.back().innerLevels;
  if (levels > nestingLimit_) failTooDeep();
  functions_.pop_back();
  if (functions_.empty()) return;
  OpenFunction& outer = functions_.back();
  outer.innerLevels = std::max(outer.innerLevels, static_cast<std::uint32_t>(levels));
}

// ---- Nodes ----

// Where the latest literal like this one is, unless another one took its place; else null.
LiteralExpr*& Parser::literalSlot(Value value) {
  constexpr std::uint64_t kSpread = 0x9E3779B97F4A7C15;  // tells neighbours and addresses apart
  const auto [tag, bits] = wordsOf(value);
  return literals_[(bits + tag) * kSpread >> 56];
}

bool Parser::isKnownLiteral(Value value) {
  const LiteralExpr* const latest = literalSlot(value);
  return latest != nullptr && wordsOf(latest->value) == wordsOf(value);
}

Expr* Parser::takeLiteral(Value value) {
  isNewLiteral_ = !isKnownLiteral(value);
  LiteralExpr*& slot = literalSlot(value);
  if (isNewLiteral_) {
    slot = spareLiteral_ != nullptr ? spareLiteral_ : make<LiteralExpr>(value, currentSite());
    slot->value = value;
    spareLiteral_ = nullptr;
  }
  LiteralExpr* const literal = slot;
  take();
  return complete(literal);
}

Expr* Parser::takeString() {
  const Value text(internLiteral(current_));
  isKnownLiteral(text) ? drop(text) : void(chunk_.own(text.string));
  return takeLiteral(text);
}

// The field has the value; the node is left for the next literal, if nothing else refers to it.
void Parser::moveIntoField(TableExpr::Field& field, LiteralExpr* literal) {
  field.setConstant(literal->value);
  if (!isNewLiteral_) return;
  literalSlot(literal->value) = nullptr;
  spareLiteral_ = literal;
}

VariableExpr* Parser::makeVariable(Name& name, Site site) {
  return complete(scopes_.mention(name, *functions_.back().function, site));
}

Expr* Parser::makeBinary(Expr* left, Operator op, Expr* right) {
  return complete(make<BinaryExpr>(left, op.kind, right, op.site), left, right);
}

Expr* Parser::completeCall(CallExpr* call, const Expr* calleeOrObject) {
  call->mayRunCode = true;
  for (const Expr* argument : call->arguments) adopt(call, argument);
  return complete(call, calleeOrObject);
}

FunctionExpr* Parser::makeFunction(StringObject* name, Site site) {
  auto* function = make<FunctionExpr>(site);
  function->name = name;
  function->chunk = &chunk_;
  return function;
}

}  // namespace tarvel::lua::internal
