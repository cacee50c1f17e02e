#pragma once

#include <cstddef>
#include <unordered_map>
#include <vector>

#include "lua/frontend/syntax_tree.h"

namespace tarvel::lua::internal {

// Finds out which locals can ever hold something that needs release: those that are not scalar.
class ScalarFinder {
 public:
  // Takes note of what the targets of a statement, whose names are bound, may receive.
  void note(const AssignmentStmt& statement);

  // To be called once, at the end of the chunk: makes `scalar` right for all locals.
  void finish();

 private:
  // A value that may be stored into a variable and that is scalar if others are.
  struct Source {
    LocalVariable* variable;
    const Expr* value;
  };

  void noteInputs(const Expr& expression, std::size_t source);

  std::vector<Source> sources_;
  std::unordered_map<const LocalVariable*, std::vector<std::size_t>> dependents_;  // into sources_
};

}  // namespace tarvel::lua::internal
