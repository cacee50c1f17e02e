#include <algorithm>
#include <cassert>
#include <iterator>
#include <span>
#include <utility>
#include <vector>

#include "lua/evaluator/execute.h"
#include "lua/evaluator/node_functions.h"
#include "lua/evaluator/variables.h"
#include "lua/lua_vm_impl.h"
#include "lua/value/completion.h"
#include "lua/value/environment.h"

// Blocks, `return` and `break`. A block runs its statements until one does not end normally, and
// releases its locals on every way out; only an error leaves them to the sweep of the value stack.

namespace tarvel::lua::internal {

namespace {

// ---- Statement lists ----------------------------------------------------------------------------

Value runNothing(const Node*, Value*) { return normalCompletion(); }

// A list of known length: each statement but the last has to end normally for the next to run.
// Each has a call of its own in the code, which the processor predicts better than a loop's.
template <std::uint32_t Count>
inline Value runFirst(const Node* const* nodes, Value* base) {
  if constexpr (Count > 1) {
    const Value completion = executeStatement(nodes[0], base);
    if (!isNormal(completion)) [[unlikely]]
      return completion;
    return runFirst<Count - 1>(nodes + 1, base);
  } else {
    return executeStatement(nodes[0], base);
  }
}

template <std::uint32_t Count>
Value runSome(const Node* node, Value* base) {
  return runFirst<Count>(static_cast<const Block*>(node)->nodes, base);
}

Value runAll(const Node* node, Value* base) {
  const auto* const block = static_cast<const Block*>(node);
  for (const Node* statement : std::span(block->nodes, block->nodeCount)) {
    const Value completion = executeStatement(statement, base);
    if (!isNormal(completion)) return completion;
  }
  return normalCompletion();
}

// ---- Blocks that own something ------------------------------------------------------------------

// Values on their way out stand above the live locals, perhaps in slots of locals that were not yet
// declared.
void releaseLocals(const Block* block, Value* base, Value completion) noexcept {
  Value* const first = &slotAt(base, block->releaseOffset);
  Value* end = &slotAt(base, block->releaseEnd);
  if (isFailedOrSeveral(completion)) [[unlikely]] {
    if (isFailed(completion)) return;
    if (completion.values < end) end = std::max(completion.values, first);
  }
  clearSlots(first, end);
}

// `Run` is the function for the statements.
template <NodeFunction Run>
Value runReleasing(const Node* node, Value* base) {
  const auto* const block = static_cast<const Block*>(node);
  const Value completion = Run(node, base);
  releaseLocals(block, base, completion);
  return completion;
}

// Whether there is a variable at this place of the list, and it is a parameter or loop variable.
bool isArriving(const LocalVariable* variable) noexcept {
  return variable != nullptr && variable->arriving;
}

// Moves the parameters or loop variables that live in environments there.
void shareArriving(const Block* block, Value* base) {
  for (const LocalVariable* variable = block->variables; isArriving(variable);
       variable = variable->next) {
    if (!variable->inEnvironment()) continue;
    moveToEnvironment(block->interpreter->heap, slotAt(base, variable->offset));
  }
}

bool hasArrivingToShare(const Block& block) noexcept {
  for (const LocalVariable* variable = block.variables; isArriving(variable);
       variable = variable->next) {
    if (variable->inEnvironment()) return true;
  }
  return false;
}

Value runSharing(const Node* node, Value* base) {
  shareArriving(static_cast<const Block*>(node), base);
  return runReleasing<runAll>(node, base);
}

// A function's own block leaves the release to the call, which has to visit the parameters anyway.
Value runFunctionSharing(const Node* node, Value* base) {
  shareArriving(static_cast<const Block*>(node), base);
  return runAll(node, base);
}

// ---- Choosing how a block runs ------------------------------------------------------------------

#ifdef __OPTIMIZE__
constexpr std::uint32_t kLongestUnrolled = 20;  // statements
#else
constexpr std::uint32_t kLongestUnrolled = 1;  // each would have a frame on the host's stack
#endif

struct Runners {
  NodeFunction plain;
  NodeFunction releasing;
};

template <std::uint32_t... Counts>
Runners runnersAmong(std::integer_sequence<std::uint32_t, Counts...>, std::uint32_t count) {
  static constexpr Runners kRunners[] = {
      {runNothing, runReleasing<runNothing>},
      {runSome<Counts + 1>, runReleasing<runSome<Counts + 1>>}...};
  return count < std::size(kRunners) ? kRunners[count] : Runners{runAll, runReleasing<runAll>};
}

Runners runnersFor(std::uint32_t count) noexcept {
  return runnersAmong(std::make_integer_sequence<std::uint32_t, kLongestUnrolled>(), count);
}

// ---- return, break ------------------------------------------------------------------------------

const ReturnStmt* asReturn(const Node* node) noexcept {
  return static_cast<const ReturnStmt*>(node);
}

Value returnNothing(const Node*, Value*) { return ReturnSignal::noValues(); }

Value returnValue(const Node* node, Value* base) {
  const Expr* const value = asReturn(node)->values[0];
  return evaluateExpression(value, base);
}

// All values of a call. A call that ends without `return` has none.
Value returnCall(const Node* node, Value* base) {
  const auto* const call = static_cast<const CallExpr*>(asReturn(node)->values[0]);
  return evaluateExpressionMulti(call, base);
}

Value returnSeveral(const Node* node, Value* base) {
  const ReturnStmt* const statement = asReturn(node);
  Value* const slots = &slotAt(base, statement->temporariesOffset);
  const std::uint32_t count = evaluateExpressionList(statement->values, slots, base);
  return ReturnSignal::severalValues(slots, count);
}

Value executeBreak(const Node*, Value*) { return BreakSignal::completion(); }

}  // namespace

const Node* bodyNodeOf(const Block& block) noexcept {
  assert(isChosen(block));
  return block.execute == runSome<1> ? block.nodes[0] : &block;
}

namespace {

// `return e` is its expression: an owned value is the completion that returns it.
const Node* nodeOf(const Node* statement) noexcept {
  return statement->execute == returnValue ? asReturn(statement)->values[0] : statement;
}

// The statements themselves, wherever that is possible. What follows a `return` or `break` in its
// block never runs.
void placeNodes(Block& block, Arena& arena) {
  const auto isLast = [](const Node* node) {
    const StmtKind kind = static_cast<const Stmt*>(node)->kind;
    return kind == StmtKind::Return || kind == StmtKind::Break;
  };
  Node* const* const last = std::find_if(block.statements.begin(), block.statements.end(), isLast);
  block.nodes = block.statements.data;
  if (last == block.statements.end()) return;
  block.nodeCount = static_cast<std::uint32_t>(last - block.statements.begin()) + 1;
  if (nodeOf(*last) == *last) return;
  std::vector<const Node*> nodes(block.nodes, block.nodes + block.nodeCount);
  nodes.back() = nodeOf(*last);
  block.nodes = arena.list(nodes).data;
}

}  // namespace

void chooseBlock(Block& block, bool isFunctionBody, Arena& arena) {
  placeNodes(block, arena);
  const bool owns = block.releaseEnd > block.releaseOffset;
  const Runners runners = runnersFor(block.nodeCount);
  if (hasArrivingToShare(block)) {
    block.execute = isFunctionBody ? runFunctionSharing : runSharing;
  } else {
    block.execute = owns && !isFunctionBody ? runners.releasing : runners.plain;
  }
}

void chooseReturn(ReturnStmt& statement) {
  if (statement.values.empty()) {
    statement.execute = returnNothing;
  } else if (statement.values.size > 1) {
    statement.execute = returnSeveral;
  } else {
    statement.execute = statement.values[0]->kind == ExprKind::Call ? returnCall : returnValue;
  }
}

void chooseBreak(BreakStmt& statement) { statement.execute = executeBreak; }

}  // namespace tarvel::lua::internal
