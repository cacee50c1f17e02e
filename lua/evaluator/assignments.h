#pragma once

#include "lua/frontend/syntax_tree.h"

// The general ways of an assignment to one target, for the functions that do the common cases in
// place.

namespace tarvel::lua::internal {

inline const AssignmentStmt* asAssignment(const Node* node) noexcept {
  return static_cast<const AssignmentStmt*>(node);
}

// Evaluate the value, and store it into a frame variable, which owns nothing where it is scalar.
Value storeLocal(const Node* statement, Value* base);
Value storeScalarLocal(const Node* statement, Value* base);

// Evaluates the value, and stores it into a target that is a leaf.
Value storeEvaluated(const Node* statement, Value* base);

// Stores what has been evaluated, and takes it over.
Value storeInTarget(const Node* statement, Value* base, Value value);

// Evaluates and assigns several values.
Value assignSeveral(const Node* statement, Value* base);

// Takes over the key and the value.
void storeUnderKey(Table& table, Value ownedKey, Value value, Site site);

}  // namespace tarvel::lua::internal
