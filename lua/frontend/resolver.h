#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "lua/frontend/syntax_tree.h"
#include "lua/value/globals.h"

namespace tarvel::lua::internal {

// Binds every local name of a chunk to the declaration that it refers to, and learns about each
// local what decides where it lives: whether an inner function uses it, whether it changes after
// its declaration, and whether it can ever hold something that needs release. Names that no scope
// declares are globals.
class Resolver {
 public:
  Resolver(ResolvedChunk& chunk, Globals& globals) : chunk_(chunk), globals_(globals) {}

  void resolveChunk();

 private:
  // What a name was bound to outside of the scope that declares it again.
  struct Shadowed {
    Name& name;
    LocalVariable* local;
  };
  // A value that may be stored into a variable and is a copy of others, which decide whether it is
  // scalar.
  struct Source {
    LocalVariable* variable;
    const Expr* value;
  };

  LocalVariable* declare(Name& name);
  void bind(VariableExpr& variable);

  void resolveBlock(Block& block, const ArenaList<Name*>& arriving, bool arrivingScalar);
  void resolveStatements(const ArenaList<Node*>& statements);
  void resolveStatement(Stmt& statement);
  void resolveAssignment(AssignmentStmt& statement);
  void resolveFunctionDeclaration(FunctionDeclarationStmt& statement);
  void resolveIf(IfStmt& statement);
  void resolveExpression(Expr* expression);
  void resolveExpressions(const ArenaList<Expr*>& expressions);
  void resolveTarget(AssignTarget& target);
  static LocalVariable* localOf(const AssignTarget& target) noexcept;
  static void noteAssigned(const AssignTarget& target) noexcept;
  void resolveFunction(FunctionExpr& function);

  void noteSource(const AssignTarget& target, const ArenaList<Expr*>& values, std::size_t index);
  static bool yieldsScalar(const Expr& expression);
  void noteInputs(const Expr& expression, std::size_t source);
  void findScalars();

  ResolvedChunk& chunk_;
  Globals& globals_;
  std::vector<Shadowed> shadowed_;         // by the declarations of the open scopes, in order
  LocalVariable** nextOfScope_ = nullptr;  // where the innermost scope's next variable goes
  FunctionExpr* function_ = nullptr;
  std::vector<Source> sources_;
  std::unordered_map<const LocalVariable*, std::vector<std::size_t>> dependents_;  // into sources_
};

}  // namespace tarvel::lua::internal
