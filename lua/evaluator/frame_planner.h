#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "lua/frontend/syntax_tree.h"
#include "lua/value/globals.h"

namespace tarvel::lua::internal {

// Decides where everything of a chunk lives at run time: each global in its slot; each local in a
// frame slot, or in an Environment that the slot owns; each temporary in a frame slot above the
// live locals. Also decides what each closure captures: exactly those variables of outer functions
// that it names, or that functions inside it name. A frame, from its base:
//
//   [-1]  the callee, which keeps the running closure alive
//   [0..] the parameters, then each open scope's loop variables and locals, then temporaries;
//         a call puts its callee and arguments where the callee's frame will start
//
// Sibling scopes use the same slots one after the other.
class FramePlanner {
 public:
  // Plans the chunk's top level and all functions in it. The memory for doing so counts as the
  // heap's.
  FramePlanner(ResolvedChunk& chunk, Heap& heap, Globals& globals)
      : chunk_(chunk), memory_(heap), globals_(globals) {}
  // Returns the slots of the largest frame.
  std::uint32_t planChunk();

 private:
  // The part of a frame that is in use at some point of the code, as a number of slots.
  using Top = std::uint32_t;

  // A function that is being planned, and what it has to capture as far as that is known.
  struct OpenFunction {
    FunctionExpr* function;
    OpenFunction* enclosing;  // null for the chunk
    std::vector<CaptureSource> captures;
    std::unordered_map<const LocalVariable*, std::uint32_t> captureIndices;
    std::uint32_t frameSlots = 0;
  };

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
  void planConcat(ConcatExpr& concat, Top top);
  void planUnary(UnaryExpr& unary, Top top);
  void planTable(TableExpr& table, Top top);
  void planCall(CallExpr& call, Top top);
  void planList(const ArenaList<Expr*>& expressions, Top top);
  void planVariable(VariableExpr& variable);
  std::uint32_t captureIndex(OpenFunction& open, const LocalVariable& variable);
  CaptureSource captureSource(OpenFunction& maker, const LocalVariable& variable);

  void use(Top end) noexcept {
    open_->frameSlots = end > open_->frameSlots ? end : open_->frameSlots;
  }

  ResolvedChunk& chunk_;
  MemoryCharge memory_;
  Globals& globals_;
  OpenFunction* open_ = nullptr;  // the innermost
  std::uint32_t largestFrame_ = 0;
};

}  // namespace tarvel::lua::internal
