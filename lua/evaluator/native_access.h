#pragma once

#include <cstdint>

#include "lua/frontend/syntax_tree.h"
#include "lua/value/value.h"

// The fields of native objects: methods and properties of their classes. Those of properties run
// functions of the host, for the node that is being executed in the frame at `base`. All values are
// borrowed, results owned.

namespace tarvel::lua::internal {

// A method, the value of a property, or nil. The hint is as in Table::getString.
Value readNativeField(const Node* node, NativeObject& object, StringObject* name,
                      std::uint32_t& hint, Value* base);

// Raises "attempt to assign into a ... value" for what is no object of the host's.
void requireAssignable(const Value& object, Site site);
// Assigns a property of an object of the host's, or raises that it cannot be.
void assignNativeField(const Node* node, NativeObject& object, StringObject* name,
                       std::uint32_t& hint, const Value& value, Value* base);

}  // namespace tarvel::lua::internal
