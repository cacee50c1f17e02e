#pragma once

#include <cstdint>

#include "lua/frontend/syntax_tree.h"

namespace tarvel::lua::internal {

// Decides where everything of a resolved chunk lives at run time: each local in a frame slot or in
// its scope's environment, each temporary in a frame slot above the live locals. A frame, from its
// base:
//
//   [-1]  the callee, which keeps the running closure alive
//   [0..] the parameters, then each open scope's arriving variables, environment and locals,
//         then temporaries; a call puts its callee and arguments where the callee's frame will
//         start
//
// Sibling scopes use the same slots one after the other.
class FramePlanner {
 public:
  // Plans the chunk's top level and all functions in it. Returns the slots of the largest frame.
  std::uint32_t planChunk(ResolvedChunk& chunk);

 private:
  // The part of a frame that is in use at some point of the code, as a number of slots.
  using Top = std::uint32_t;

  void planFunction(FunctionExpr& function);
  // Each returns the first slot that no local of the enclosing scope uses afterwards.
  Top planStatement(Stmt& statement, Top top);
  Top planAssignment(AssignmentStmt& statement, Top top);
  Top planFunctionDeclaration(FunctionDeclarationStmt& statement, Top top);
  void planIf(IfStmt& statement, Top top);
  void planNumericFor(NumericForStmt& loop, Top top);
  void planGenericFor(GenericForStmt& loop, Top top);
  void planBlock(Block& block, Top top);
  void planRelease(Block& block);
  Top declare(LocalVariable& variable, Top top);
  void planTarget(Expr& target, Top top);

  // Plan an expression whose temporaries may start at `top`.
  void planExpression(Expr* expression, Top top);
  void planTable(TableExpr& table, Top top);
  void planCall(CallExpr& call, Top top);
  void planList(const ArenaList<Expr*>& expressions, Top top);
  void planVariable(VariableExpr& variable);
  void planClosure(FunctionExpr& function);

  void use(Top end) noexcept { frameSlots_ = end > frameSlots_ ? end : frameSlots_; }

  FunctionExpr* function_ = nullptr;
  std::uint32_t frameSlots_ = 0;
  std::uint32_t largestFrame_ = 0;
};

}  // namespace tarvel::lua::internal
