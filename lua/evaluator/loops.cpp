#include <cstdint>

#include "lua/evaluator/execute.h"
#include "lua/evaluator/iteration.h"
#include "lua/evaluator/node_functions.h"
#include "lua/evaluator/supervision.h"
#include "lua/lua_vm_impl.h"
#include "lua/value/completion.h"
#include "lua/value/errors.h"

// `while` and both kinds of `for`. The body's block releases the iteration's locals; the loop only
// looks at how the body ended. Each loop has two forms, with the policies of supervision.h.

namespace tarvel::lua::internal {

namespace {

template <class Supervision>
Value executeWhile(const Node* node, Value* base) {
  const auto* const loop = static_cast<const WhileStmt*>(node);
  const Expr* const condition = loop->condition;
  const Node* const body = loop->bodyNode;
  typename Supervision::Rounds rounds(loop->interpreter->heap.meter(), loop->site);
  while (evaluateCondition(condition, base)) {
    rounds.next();
    const Value completion = executeStatement(body, base);
    if (isNormal(completion)) [[likely]]
      continue;
    return BreakSignal::is(completion) ? normalCompletion() : completion;
  }
  return normalCompletion();
}

// ---- Numeric for --------------------------------------------------------------------------------

// The loop's control value is separate from its variable: assigning the variable does not change
// the iteration.
template <class Supervision>
Value iterateIntegers(const NumericForStmt* loop, Value* base, std::int64_t start,
                      std::int64_t limit, std::int64_t step) {
  if (step > 0 ? start > limit : start < limit) return normalCompletion();
  // The number of further iterations, which also ends a loop whose next step would overflow.
  const std::uint64_t distance =
      step > 0 ? static_cast<std::uint64_t>(limit) - static_cast<std::uint64_t>(start)
               : static_cast<std::uint64_t>(start) - static_cast<std::uint64_t>(limit);
  const std::uint64_t magnitude =
      step > 0 ? static_cast<std::uint64_t>(step) : -static_cast<std::uint64_t>(step);
  std::uint64_t remaining = distance / magnitude;
  const Node* const body = loop->bodyNode;
  Value& variable = slotAt(base, loop->variableOffset);
  auto control = static_cast<std::uint64_t>(start);
  typename Supervision::Rounds rounds(loop->interpreter->heap.meter(), loop->site);
  for (;; --remaining, control += static_cast<std::uint64_t>(step)) {
    rounds.next();
    variable = Value(static_cast<std::int64_t>(control));
    const Value completion = executeStatement(body, base);
    if (!isNormal(completion)) [[unlikely]]
      return BreakSignal::is(completion) ? normalCompletion() : completion;
    if (remaining == 0) return normalCompletion();
  }
}

// The step is added each time; multiplying would round differently.
template <class Supervision>
Value iterateFloats(const NumericForStmt* loop, Value* base, double start, double limit,
                    double step) {
  const Node* const body = loop->bodyNode;
  Value& variable = slotAt(base, loop->variableOffset);
  const auto goesOn = [&](double control) {
    return (step > 0 && control <= limit) || (step <= 0 && control >= limit);  // NaN: neither
  };
  typename Supervision::Rounds rounds(loop->interpreter->heap.meter(), loop->site);
  for (double control = start; goesOn(control); control += step) {
    rounds.next();
    variable = Value(control);
    const Value completion = executeStatement(body, base);
    if (!isNormal(completion)) [[unlikely]]
      return BreakSignal::is(completion) ? normalCompletion() : completion;
  }
  return normalCompletion();
}

struct Range {
  Value start;
  Value limit;
  Value step;
};

[[gnu::noinline]] Range evaluateRange(const NumericForStmt* loop, Value* base) {
  const LandingBarrier barrier(loop->interpreter->landing);
  const OwnedValue start(evaluateExpression(loop->start, base));
  const OwnedValue limit(evaluateExpression(loop->limit, base));
  const OwnedValue step(loop->step != nullptr ? evaluateExpression(loop->step, base)
                                              : Value(std::int64_t{1}));
  if (!start.get().isNumber() || !limit.get().isNumber() || !step.get().isNumber()) {
    failRuntime(loop->site, "numeric for loop expects numeric bounds");
  }
  if (step.get().asFloat() == 0.0) failRuntime(loop->site, "numeric for step cannot be zero");
  return {start.get(), limit.get(), step.get()};
}

template <class Supervision>
Value executeNumericFor(const Node* node, Value* base) {
  const auto* const loop = static_cast<const NumericForStmt*>(node);
  const Range range = evaluateRange(loop, base);
  if (range.start.isInteger() && range.limit.isInteger() && range.step.isInteger()) {
    return iterateIntegers<Supervision>(loop, base, range.start.integer, range.limit.integer,
                                        range.step.integer);
  }
  return iterateFloats<Supervision>(loop, base, range.start.asFloat(), range.limit.asFloat(),
                                    range.step.asFloat());
}

// ---- Generic for --------------------------------------------------------------------------------

// Evaluates the expression list into consecutive slots and keeps the first value.
[[gnu::noinline]] void evaluateIterator(const GenericForStmt* loop, Value* slots, Value* base) {
  const ArenaList<Expr*>& iterators = loop->iterators;
  for (std::uint32_t i = 0; i < iterators.size; ++i)
    slots[i] = evaluateExpression(iterators[i], base);
  clearSlots(slots + 1, slots + iterators.size);
  // Deliberate: only iterators, no iterator functions, so that a step of the loop is no call.
  if (slots[0].tag != kIterator) failRuntime(loop->site, "generic for loop expects an iterator");
}

template <class Supervision>
Value executeGenericFor(const Node* node, Value* base) {
  const auto* const loop = static_cast<const GenericForStmt*>(node);
  Value& iterator = slotAt(base, loop->iteratorOffset);
  evaluateIterator(loop, &iterator, base);
  Value* const names = &slotAt(base, loop->firstNameOffset);
  const Node* const body = loop->bodyNode;
  Value completion = normalCompletion();
  typename Supervision::Rounds rounds(loop->interpreter->heap.meter(), loop->site);
  while (isNormal(completion) && nextIteratorItem(*loop->interpreter, *iterator.iterator, names,
                                                  loop->names.size, loop->site)) {
    rounds.next();
    completion = executeStatement(body, base);
  }
  if (isFailed(completion)) return completion;
  clearSlot(iterator);
  return BreakSignal::is(completion) ? normalCompletion() : completion;
}

bool isSupervised(const Node& loop) noexcept { return loop.interpreter->options.supervised; }

}  // namespace

void chooseWhile(WhileStmt& loop) {
  loop.bodyNode = bodyNodeOf(*loop.body);
  loop.execute = isSupervised(loop) ? executeWhile<Supervised> : executeWhile<Unsupervised>;
}

void chooseNumericFor(NumericForStmt& loop) {
  loop.bodyNode = bodyNodeOf(*loop.body);
  loop.execute =
      isSupervised(loop) ? executeNumericFor<Supervised> : executeNumericFor<Unsupervised>;
}

void chooseGenericFor(GenericForStmt& loop) {
  loop.bodyNode = bodyNodeOf(*loop.body);
  loop.execute =
      isSupervised(loop) ? executeGenericFor<Supervised> : executeGenericFor<Unsupervised>;
}

}  // namespace tarvel::lua::internal
