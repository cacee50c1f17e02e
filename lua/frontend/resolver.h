#pragma once

#include <cstdint>
#include <unordered_map>
#include <utility>
#include <vector>

#include "lua/frontend/syntax_tree.h"

namespace tarvel::lua::internal {

// Binds every local name of a chunk to the declaration that it refers to, and learns about each
// local what decides where it lives: whether an inner function uses it and whether it can ever hold
// something that needs release. Names that no scope declares are left for the global binder.
class Resolver {
 public:
  explicit Resolver(ResolvedChunk& chunk) : chunk_(chunk) {}

  void resolveChunk();

  // The variables that no scope declares, wherever they stand in the chunk.
  const std::vector<VariableExpr*>& unboundNames() const noexcept { return unboundNames_; }

 private:
  // What an open scope needs only while it is being resolved.
  struct OpenScope {
    Scope* scope;
    std::int32_t depth;
    std::vector<LocalVariable*> variables;
    // Bindings to restore, in order.
    std::vector<std::pair<StringObject*, LocalVariable*>> shadowed;
  };
  // A value that may be stored into a variable.
  struct Source {
    LocalVariable* variable;
    const Expr* value;
  };

  void beginScope(Block& block);
  void endScope(Block& block);
  LocalVariable* declare(StringObject* name);
  void bind(VariableExpr& variable);

  void resolveBlock(Block& block, const ArenaList<StringObject*>& arriving, bool arrivingScalar);
  void resolveStatements(const ArenaList<Stmt*>& statements);
  void resolveStatement(Stmt& statement);
  void resolveAssignment(AssignmentStmt& statement);
  void resolveFunctionDeclaration(FunctionDeclarationStmt& statement);
  void resolveIf(IfStmt& statement);
  void resolveExpression(Expr* expression);
  void resolveExpressions(const ArenaList<Expr*>& expressions);
  void resolveTarget(AssignTarget& target);
  void resolveFunction(FunctionExpr& function);

  void noteSource(const AssignTarget& target, const ArenaList<Expr*>& values, std::size_t index);
  static bool yieldsScalar(const Expr& expression);
  void noteInputs(const Expr& expression, std::size_t source);
  void findScalars();

  ResolvedChunk& chunk_;
  std::vector<OpenScope> scopes_;
  // The innermost declaration of each name.
  std::unordered_map<StringObject*, LocalVariable*> bindings_;
  std::unordered_map<const Scope*, std::int32_t> depths_;
  FunctionExpr* function_ = nullptr;
  std::vector<Source> sources_;
  std::unordered_map<const LocalVariable*, std::vector<std::size_t>> dependents_;  // into sources_
  std::vector<VariableExpr*> unboundNames_;
};

// True when a function expression, a declared function's included, occurs anywhere inside.
bool blockContainsFunction(const Block& block) noexcept;

}  // namespace tarvel::lua::internal
