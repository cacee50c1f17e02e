#pragma once

#include <charconv>
#include <string>
#include <string_view>

#include "lua/frontend/syntax_tree.h"
#include "lua/value/string_object.h"

namespace tarvel::lua::internal {

// Prints a tree as source text in which every operator stands in parentheses and every statement of
// a block but the first follows a ";". A declared function's name follows its target in angle
// brackets. With lines, each node is followed by "@" and its line.
class TreePrinter {
 public:
  explicit TreePrinter(bool withLines) : withLines_(withLines) {}

  std::string statements(const ArenaList<Stmt*>& list) const {
    std::string text;
    for (const Stmt* each : list) text += (text.empty() ? "" : "; ") + statement(each);
    return text;
  }

  std::string expression(const Expr* node) const { return withLine(expressionText(node), node); }

 private:
  static std::string_view operatorText(TokenKind kind) {
    switch (kind) {
      case TokenKind::Or:
        return "or";
      case TokenKind::And:
        return "and";
      case TokenKind::Equal:
        return "==";
      case TokenKind::NotEqual:
        return "~=";
      case TokenKind::Less:
        return "<";
      case TokenKind::LessEqual:
        return "<=";
      case TokenKind::Greater:
        return ">";
      case TokenKind::GreaterEqual:
        return ">=";
      case TokenKind::Plus:
        return "+";
      case TokenKind::Minus:
        return "-";
      case TokenKind::Star:
        return "*";
      case TokenKind::Slash:
        return "/";
      case TokenKind::Percent:
        return "%";
      case TokenKind::Hash:
        return "#";
      case TokenKind::Not:
        return "not";
      default:
        return "?";
    }
  }

  static std::string literalText(const Value& value) {
    if (value.isNil()) return "nil";
    if (value.isString()) return '"' + std::string(value.string->view()) + '"';
    if (value.isInteger()) return std::to_string(value.integer);
    if (!value.isFloat()) return value.isTruthy() ? "true" : "false";
    char digits[400];
    const auto [end, error] =
        std::to_chars(digits, digits + sizeof digits, value.number, std::chars_format::fixed);
    const std::string text(digits, end);
    const bool looksWhole = text.find_first_not_of("0123456789") == std::string::npos;
    return looksWhole ? text + ".0" : text;
  }

  static std::string nameText(const StringObject* name) { return std::string(name->view()); }

  static std::string names(const ArenaList<StringObject*>& list) {
    std::string text;
    for (const StringObject* name : list) text += (text.empty() ? "" : ", ") + nameText(name);
    return text;
  }

  std::string withLine(const std::string& text, const Node* node) const {
    return withLines_ ? text + "@" + std::to_string(node->line) : text;
  }

  std::string expressions(const ArenaList<Expr*>& list, const char* separator = ", ") const {
    std::string text;
    for (const Expr* each : list) text += (text.empty() ? "" : separator) + expression(each);
    return text;
  }

  std::string expressionText(const Expr* node) const {
    switch (node->kind) {
      case ExprKind::Literal:
        return literalText(static_cast<const LiteralExpr*>(node)->value);
      case ExprKind::Variable:
        return nameText(static_cast<const VariableExpr*>(node)->name);
      case ExprKind::Unary: {
        const auto* unary = static_cast<const UnaryExpr*>(node);
        const std::string op(operatorText(unary->op));
        return "(" + op + (op == "not" ? " " : "") + expression(unary->operand) + ")";
      }
      case ExprKind::Binary: {
        const auto* binary = static_cast<const BinaryExpr*>(node);
        return "(" + expression(binary->left) + " " + std::string(operatorText(binary->op)) + " " +
               expression(binary->right) + ")";
      }
      case ExprKind::Concat:
        return "(" + expressions(static_cast<const ConcatExpr*>(node)->operands, " .. ") + ")";
      case ExprKind::Table:
        return tableText(static_cast<const TableExpr*>(node));
      case ExprKind::Field: {
        const auto* field = static_cast<const FieldExpr*>(node);
        return expression(field->object) + "." + nameText(field->name);
      }
      case ExprKind::Index: {
        const auto* index = static_cast<const IndexExpr*>(node);
        return expression(index->object) + "[" + expression(index->key) + "]";
      }
      case ExprKind::Call:
        return callText(static_cast<const CallExpr*>(node));
      case ExprKind::Function:
        return "function" + functionText(static_cast<const FunctionExpr*>(node));
    }
    return "?";
  }

  std::string tableText(const TableExpr* table) const {
    std::string text;
    for (const TableExpr::Field& field : table->fields) {
      if (!text.empty()) text += ", ";
      if (field.kind == TableExpr::FieldKind::Named) text += nameText(field.name) + " = ";
      if (field.kind == TableExpr::FieldKind::Keyed) text += "[" + expression(field.key) + "] = ";
      text += expression(field.value);
      if (withLines_) text += "@" + std::to_string(field.line);
    }
    return "{" + text + "}";
  }

  std::string callText(const CallExpr* call) const {
    const std::string arguments = "(" + expressions(call->arguments) + ")";
    if (call->object == nullptr) return expression(call->callee) + arguments;
    return expression(call->object) + ":" + nameText(call->methodName) + arguments;
  }

  std::string functionText(const FunctionExpr* function) const {
    return "(" + names(function->parameters) + ")" + bodyText(function->body) + " end";
  }

  std::string bodyText(const Block* body) const {
    const std::string text = statements(body->statements);
    return withLine("", body) + (text.empty() ? "" : " " + text);
  }

  std::string statement(const Stmt* node) const { return withLine("", node) + statementText(node); }

  std::string statementText(const Stmt* node) const {
    switch (node->kind) {
      case StmtKind::Expression:
        return expression(static_cast<const ExpressionStmt*>(node)->expression);
      case StmtKind::Assignment:
        return assignmentText(static_cast<const AssignmentStmt*>(node));
      case StmtKind::FunctionDeclaration:
        return declarationText(static_cast<const FunctionDeclarationStmt*>(node));
      case StmtKind::If:
        return ifText(static_cast<const IfStmt*>(node));
      case StmtKind::While: {
        const auto* loop = static_cast<const WhileStmt*>(node);
        return "while " + expression(loop->condition) + " do" + bodyText(loop->body) + " end";
      }
      case StmtKind::NumericFor: {
        const auto* loop = static_cast<const NumericForStmt*>(node);
        return "for " + nameText(loop->variable) + " = " + expression(loop->start) + ", " +
               expression(loop->limit) +
               (loop->step == nullptr ? "" : ", " + expression(loop->step)) + " do" +
               bodyText(loop->body) + " end";
      }
      case StmtKind::GenericFor: {
        const auto* loop = static_cast<const GenericForStmt*>(node);
        return "for " + names(loop->names) + " in " + expressions(loop->iterators) + " do" +
               bodyText(loop->body) + " end";
      }
      case StmtKind::Return: {
        const std::string values = expressions(static_cast<const ReturnStmt*>(node)->values);
        return values.empty() ? "return" : "return " + values;
      }
      case StmtKind::Break:
        return "break";
    }
    return "?";
  }

  std::string assignmentText(const AssignmentStmt* assignment) const {
    std::string text;
    for (const AssignTarget& target : assignment->targets) {
      text += (text.empty() ? "" : ", ") + expression(target.expression);
    }
    if (!assignment->values.empty()) text += " = " + expressions(assignment->values);
    return (assignment->isLocal ? "local " : "") + text;
  }

  std::string declarationText(const FunctionDeclarationStmt* declaration) const {
    return std::string(declaration->isLocal ? "local " : "") +
           (declaration->isMethod ? "method " : "function ") +
           expression(declaration->target.expression) + "<" +
           nameText(declaration->function->name) + ">" +
           withLine(functionText(declaration->function), declaration->function);
  }

  std::string ifText(const IfStmt* node) const {
    std::string text;
    for (const IfStmt::Branch& branch : node->branches) {
      text += (text.empty() ? "if " : " elseif ") + expression(branch.condition) + " then" +
              bodyText(branch.body);
    }
    if (node->elseBody != nullptr) text += " else" + bodyText(node->elseBody);
    return text + " end";
  }

  bool withLines_;
};

}  // namespace tarvel::lua::internal
