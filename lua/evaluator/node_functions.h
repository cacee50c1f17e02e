#pragma once

#include "lua/frontend/syntax_tree.h"

// Which function executes which node. Each chooser looks at the shapes of a node's operands (a
// frame variable, a literal, anything else) and stores the function made for them; it is called
// after those of the node's children and, for a target, of the target as an expression, because it
// reads what they wrote into these nodes. The functions themselves are local to the chooser's file.

namespace tarvel::lua::internal {

// Has the functions of all nodes of a laid-out chunk chosen.
void selectNodeFunctions(LuaVM::Impl& interpreter, ResolvedChunk& chunk);

// expressions.cpp
void chooseLiteral(LiteralExpr& literal);
void chooseUnary(UnaryExpr& unary);
void chooseLogic(BinaryExpr& logic);  // `and`, `or`
void chooseTable(TableExpr& table);
void chooseFunction(FunctionExpr& function);
// The truth of an expression that has no shorter way to it.
bool testValue(const Node* node, Value* base);

// concatenation.cpp
void chooseConcat(ConcatExpr& concat);
// For `s = s .. x`; false when the statement is no such append.
bool chooseAppend(AssignmentStmt& statement);
// For `o.f = o.f .. x` and `a[k] = a[k] .. x`; false when the statement is none of them.
bool chooseAppendToAccess(AssignmentStmt& statement);

// variables.cpp
void chooseVariable(VariableExpr& variable);

// arithmetic.cpp
void chooseArithmetic(BinaryExpr& arithmetic);
// For an arithmetic value that goes into a frame variable which only ever holds scalars.
void chooseArithmeticStore(AssignmentStmt& statement);

// comparisons.cpp
void chooseComparison(BinaryExpr& comparison);
// For an `if` on a comparison; false when it is on something else.
bool chooseFusedIf(IfStmt& statement);

// branches.cpp
void chooseIf(IfStmt& statement);      // by its `condition`, `thenNode` and `otherwiseNode`
void chooseLadder(IfStmt& statement);  // by its branches and `otherwiseNode`

// indexing.cpp
void chooseField(FieldExpr& field);
void chooseIndex(IndexExpr& index);

// calls.cpp
void chooseCall(CallExpr& call);

// call_statements.cpp
void chooseCallStatement(ExpressionStmt& statement);
// For the value of a frame variable, by its `targetOffset`; false when the value is no call. The
// slot may own nothing.
bool chooseCallStore(AssignmentStmt& statement, bool ownsNothing);

// assignments.cpp
void chooseAssignment(AssignmentStmt& statement);
void chooseFunctionDeclaration(FunctionDeclarationStmt& statement);

// in_place_stores.cpp
// Into a frame variable, which may own nothing yet or ever.
void chooseLocalStore(AssignmentStmt& statement, bool ownsNothing);
// Into a field or element that is a leaf; false when the target is no leaf.
bool chooseAccessStore(AssignmentStmt& statement);
// For `a[i], b[j] = b[j], a[i]`; false when the statement is no such exchange.
bool chooseExchange(AssignmentStmt& statement);

// in_place_updates.cpp
// For `o.f = o.f + x` and the like; false when the statement is none of them.
bool chooseUpdate(AssignmentStmt& statement);

// statements.cpp
void chooseBlock(Block& block, bool isFunctionBody, Arena& arena);
void chooseReturn(ReturnStmt& statement);
void chooseBreak(BreakStmt& statement);
// What to execute for a body: the block, or its only statement where the block itself has nothing
// to do.
const Node* bodyNodeOf(const Block& block) noexcept;

// loops.cpp
void chooseWhile(WhileStmt& loop);
void chooseNumericFor(NumericForStmt& loop);
void chooseGenericFor(GenericForStmt& loop);

// Whether the node's chooser has run. It also writes offsets and a constant into the node; a node
// that this one is fused into, or that tries it in place, reads them there.
inline bool isChosen(const Node& node) noexcept { return node.execute != nullptr; }

inline bool isFrameVariable(const Expr& expression) noexcept {
  return expression.kind == ExprKind::Variable &&
         static_cast<const VariableExpr&>(expression).home == VariableHome::Frame;
}
inline SlotOffset frameOffsetOf(const Expr& expression) noexcept {
  return static_cast<const VariableExpr&>(expression).offset;
}
// A literal, or a number with a minus in front.
inline bool isLiteral(const Expr& expression) noexcept {
  return expression.kind == ExprKind::Literal ||
         (expression.kind == ExprKind::Unary &&
          !static_cast<const UnaryExpr&>(expression).constant.isNil());
}
inline Value literalValue(const Expr& expression) noexcept {
  return expression.kind == ExprKind::Literal ? static_cast<const LiteralExpr&>(expression).value
                                              : static_cast<const UnaryExpr&>(expression).constant;
}

}  // namespace tarvel::lua::internal
