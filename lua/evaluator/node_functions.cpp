#include "lua/evaluator/node_functions.h"

#include "lua/lua_vm_impl.h"

// Walks a laid-out chunk and has every node's function chosen, children first.

namespace tarvel::lua::internal {

namespace {

// Up to so many branches of an `if` become statements nested in each other, which execute fastest.
constexpr std::uint32_t kMostNestedBranches = 8;

class NodeFunctionSelector {
 public:
  NodeFunctionSelector(LuaVM::Impl& interpreter, Arena& arena)
      : interpreter_(interpreter), arena_(arena) {}

  void selectFunction(FunctionExpr& function) {
    selectBlock(*function.body, true);
    function.entry = bodyNodeOf(*function.body);
    function.interpreter = &interpreter_;
    chooseFunction(function);
  }

 private:
  void selectBlock(Block& block, bool isFunctionBody = false) {
    block.interpreter = &interpreter_;
    for (Node* statement : block.statements) selectStatement(static_cast<Stmt&>(*statement));
    chooseBlock(block, isFunctionBody, arena_);
  }

  void selectStatement(Stmt& statement) {
    statement.interpreter = &interpreter_;
    switch (statement.kind) {
      case StmtKind::Expression: {
        auto& call = static_cast<ExpressionStmt&>(statement);
        selectExpression(call.expression);
        return chooseCallStatement(call);
      }
      case StmtKind::Assignment: {
        auto& assignment = static_cast<AssignmentStmt&>(statement);
        for (Expr* value : assignment.values) selectExpression(value);
        for (AssignTarget& target : assignment.targets) selectExpression(target.expression);
        return chooseAssignment(assignment);
      }
      case StmtKind::FunctionDeclaration: {
        auto& declaration = static_cast<FunctionDeclarationStmt&>(statement);
        selectFunction(*declaration.function);
        selectExpression(declaration.target.expression);
        return chooseFunctionDeclaration(declaration);
      }
      case StmtKind::If: {
        auto& branches = static_cast<IfStmt&>(statement);
        for (IfStmt::Branch& branch : branches.branches) {
          selectExpression(branch.condition);
          selectBlock(*branch.body);
        }
        if (branches.elseBody != nullptr) selectBlock(*branches.elseBody);
        return selectIf(branches);
      }
      case StmtKind::While: {
        auto& loop = static_cast<WhileStmt&>(statement);
        selectExpression(loop.condition);
        selectBlock(*loop.body);
        return chooseWhile(loop);
      }
      case StmtKind::NumericFor: {
        auto& loop = static_cast<NumericForStmt&>(statement);
        selectExpression(loop.start);
        selectExpression(loop.limit);
        selectExpression(loop.step);
        selectBlock(*loop.body);
        return chooseNumericFor(loop);
      }
      case StmtKind::GenericFor: {
        auto& loop = static_cast<GenericForStmt&>(statement);
        for (Expr* iterator : loop.iterators) selectExpression(iterator);
        selectBlock(*loop.body);
        return chooseGenericFor(loop);
      }
      case StmtKind::Return: {
        auto& result = static_cast<ReturnStmt&>(statement);
        for (Expr* value : result.values) selectExpression(value);
        return chooseReturn(result);
      }
      case StmtKind::Break:
        return chooseBreak(static_cast<BreakStmt&>(statement));
    }
    unreachable("no function for a statement of this kind");
  }

  // From the last branch to the first, each with the next as what runs otherwise.
  void selectIf(IfStmt& statement) {
    const Node* otherwise =
        statement.elseBody != nullptr ? bodyNodeOf(*statement.elseBody) : nullptr;
    if (statement.branches.size > kMostNestedBranches) {
      statement.otherwiseNode = otherwise;
      return chooseLadder(statement);
    }
    for (std::uint32_t i = statement.branches.size; i-- > 0;) {
      const IfStmt::Branch& branch = statement.branches[i];
      IfStmt* const test =
          i == 0 ? &statement
                 : arena_.make<IfStmt>(ArenaList<IfStmt::Branch>(), nullptr, statement.site);
      test->interpreter = &interpreter_;
      test->condition = branch.condition;
      test->thenNode = bodyNodeOf(*branch.body);
      test->otherwiseNode = otherwise;
      chooseIf(*test);
      otherwise = test;
    }
  }

  void selectExpressions(const ArenaList<Expr*>& expressions) {
    for (Expr* expression : expressions) selectExpression(expression);
  }

  void selectExpression(Expr* expression) {
    if (expression == nullptr) return;
    expression->interpreter = &interpreter_;
    switch (expression->kind) {
      case ExprKind::Literal:
        return chooseLiteral(static_cast<LiteralExpr&>(*expression));
      case ExprKind::Variable:
        return chooseVariable(static_cast<VariableExpr&>(*expression));
      case ExprKind::Unary: {
        auto& unary = static_cast<UnaryExpr&>(*expression);
        selectExpression(unary.operand);
        return chooseUnary(unary);
      }
      case ExprKind::Binary:
        return selectBinary(static_cast<BinaryExpr&>(*expression));
      case ExprKind::Concat: {
        auto& concat = static_cast<ConcatExpr&>(*expression);
        selectExpressions(concat.operands);
        return chooseConcat(concat);
      }
      case ExprKind::Table: {
        auto& table = static_cast<TableExpr&>(*expression);
        for (TableExpr::Field& field : table.fields) {
          if (field.kind == TableExpr::FieldKind::Keyed) selectExpression(field.key);
          if (!field.isConstant()) selectExpression(field.value);
        }
        return chooseTable(table);
      }
      case ExprKind::Field: {
        auto& field = static_cast<FieldExpr&>(*expression);
        selectExpression(field.object);
        return chooseField(field);
      }
      case ExprKind::Index: {
        auto& index = static_cast<IndexExpr&>(*expression);
        selectExpression(index.object);
        selectExpression(index.key);
        return chooseIndex(index);
      }
      case ExprKind::Call: {
        auto& call = static_cast<CallExpr&>(*expression);
        selectExpression(call.object != nullptr ? call.object : call.callee);
        selectExpressions(call.arguments);
        return chooseCall(call);
      }
      case ExprKind::Function:
        return selectFunction(static_cast<FunctionExpr&>(*expression));
    }
    unreachable("no function for an expression of this kind");
  }

  void selectBinary(BinaryExpr& binary) {
    selectExpression(binary.left);
    selectExpression(binary.right);
    if (binary.op == TokenKind::And || binary.op == TokenKind::Or) return chooseLogic(binary);
    if (isComparison(binary.op)) return chooseComparison(binary);
    chooseArithmetic(binary);
  }

  LuaVM::Impl& interpreter_;
  Arena& arena_;
};

}  // namespace

void selectNodeFunctions(LuaVM::Impl& interpreter, ResolvedChunk& chunk) {
  NodeFunctionSelector(interpreter, chunk.arena).selectFunction(*chunk.main);
}

}  // namespace tarvel::lua::internal
