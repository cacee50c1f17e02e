#pragma once

#include <initializer_list>

#include "lua/frontend/syntax_tree.h"

// How nodes are executed: through the functions chosen for them. An expression's value is owned by
// the caller.

namespace tarvel::lua::internal {

// Returns the statement's completion; also for an expression that stands as the statement which
// returns it, and for a block.
inline Value executeStatement(const Node* statement, Value* base) {
  return statement->execute(statement, base);
}

inline Value evaluateExpression(const Expr* expression, Value* base) {
  return expression->execute(expression, base);
}

// The completion of a call: one value, a ReturnSignal, or a failed one.
inline Value evaluateExpressionMulti(const CallExpr* call, Value* base) {
  return call->executeMulti(call, base);
}

// Evaluates an expression while the caller holds a value, which is released should that fail.
Value evaluateHolding(Value held, const Expr* expression, Value* base);

inline bool evaluateCondition(const Expr* condition, Value* base) {
  return condition->test(condition, base);
}

// In calls.cpp, for only calls have several values. Evaluates a list of one or more expressions
// into consecutive slots, the planned temporaries of the list. Only a call at the end contributes
// all its values. Returns the number of values; a failed call is raised.
std::uint32_t evaluateExpressionList(const ArenaList<Expr*>& expressions, Value* slots,
                                     Value* base);

// In indexing.cpp, for the node that is being executed in the frame at `base`; both borrow their
// operands and return an owned value. object[key], and object.name or object:name with a hint as in
// Table::getString.
Value indexValue(const Node* node, const Value& object, const Value& key, Value* base);
Value indexField(const Node* node, const Value& object, StringObject* name, std::uint32_t& hint,
                 Value* base);

// In calls.cpp. Calls a function from a node that is no call and has planned no frame for one: from
// behind the frame at `base`. Borrows everything and returns the first result, owned.
Value callBehindFrame(const Node* node, Value* base, Value function,
                      std::initializer_list<Value> arguments);

// In call_protocol.cpp.
[[noreturn]] void failNotCallable(LuaVM::Impl& interpreter, const Value& callee, Site site);
[[noreturn]] void failStackOverflow(Site site);

}  // namespace tarvel::lua::internal
