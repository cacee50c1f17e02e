#include "lua/evaluator/iteration.h"

#include <algorithm>
#include <new>

namespace tarvel::lua::internal {

namespace {

// The table is read as it is now; the number of items was fixed when the iterator was made.
bool nextOfTable(IteratorState& state, Value* slots, std::uint32_t count) noexcept {
  if (state.position >= state.limit) return false;
  const auto index = static_cast<std::int64_t>(++state.position);
  slots[0] = Value(index);
  if (count > 1) slots[1] = retain(state.table->getInteger(index));
  for (std::uint32_t i = 2; i < count; ++i) slots[i] = Value();
  return true;
}

// The next item of the parts that a table has lent, at state.position.
bool nextOfParts(IteratorState& state, Value* slots, std::uint32_t count) noexcept {
  const Table& parts = state.parts;
  const std::uint64_t elements = parts.arraySize();
  Value key;
  Value value;
  for (; value.isNil() && state.position < elements; ++state.position) {
    value = parts.element(static_cast<std::uint32_t>(state.position));
    key = Value(static_cast<std::int64_t>(state.position) + 1);
  }
  for (; value.isNil() && state.position < elements + parts.entryCount(); ++state.position) {
    const auto number = static_cast<std::uint32_t>(state.position - elements);
    value = parts.entryValue(number);
    key = parts.entryKey(number).toValue();
  }
  if (value.isNil()) return false;
  slots[0] = retain(key);
  if (count > 1) slots[1] = retain(value);
  for (std::uint32_t i = 2; i < count; ++i) slots[i] = Value();
  return true;
}

}  // namespace

bool nextIteratorItem(LuaVM::Impl& interpreter, IteratorState& state, Value* slots,
                      std::uint32_t count, Site site) {
  if (state.kind == IteratorState::Kind::Ipairs) return nextOfTable(state, slots, count);
  if (state.step != nullptr) return state.step(interpreter, state, slots, count, site);
  if (state.table != nullptr) return nextOfParts(state, slots, count);
  if (state.hasLost) throw std::bad_alloc();
  if (state.position >= state.values.size()) return false;
  const Value* const item = &state.values[state.position];
  state.position += state.itemSize;
  const std::uint32_t given = std::min(count, state.itemSize);
  for (std::uint32_t i = 0; i < given; ++i) slots[i] = retain(item[i]);
  for (std::uint32_t i = given; i < count; ++i) slots[i] = Value();
  return true;
}

}  // namespace tarvel::lua::internal
