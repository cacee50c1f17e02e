#pragma once

#include <cstddef>
#include <vector>

#include "lua/frontend/syntax_tree.h"

namespace tarvel::lua::internal {

// Binds the names of a chunk to declarations while the chunk is read. A local that an inner
// function names is noted as captured. Names that no open scope declares are globals.
class Scopes {
 public:
  explicit Scopes(ResolvedChunk& chunk) : chunk_(chunk) {}

  // One block's names, open during its lifetime.
  class Scope {
   public:
    explicit Scope(Scopes& scopes)
        : scopes_(scopes), firstShadowed_(scopes.shadowed_.size()), nextOfOuter_(scopes.next_) {
      scopes.next_ = &first_;
    }
    ~Scope() { scopes_.close(firstShadowed_, nextOfOuter_); }
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

    LocalVariable* first() const { return first_; }

   private:
    Scopes& scopes_;
    const std::size_t firstShadowed_;
    LocalVariable** const nextOfOuter_;
    LocalVariable* first_ = nullptr;
  };

  // Declares a local of a function in the innermost scope.
  LocalVariable* declare(Name& name, const FunctionExpr& function);

  // The variable that a name stands for in a function. There is one node for each variable and
  // function, because nothing depends on where a variable is mentioned.
  VariableExpr* mention(Name& name, const FunctionExpr& function, Site site);

 private:
  // What a name was bound to outside of the scope that declares it again.
  struct Shadowed {
    Name& name;
    LocalVariable* local;
  };

  void close(std::size_t firstShadowed, LocalVariable** nextOfOuter) noexcept;

  ResolvedChunk& chunk_;
  std::vector<Shadowed> shadowed_;  // by the declarations of the open scopes, in order
  LocalVariable** next_ = nullptr;  // where the innermost scope's next variable goes
};

}  // namespace tarvel::lua::internal
