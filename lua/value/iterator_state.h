#pragma once

#include <tarvel/lua/lua_vm.h>

#include <cstdint>

#include "lua/value/heap.h"
#include "lua/value/table.h"
#include "lua/value/value.h"
#include "lua/value/value_list.h"

namespace tarvel::lua::internal {

// What a generic `for` steps through. Made by pairs, ipairs and string.gmatch; shared by reference,
// so that a second loop over the same iterator goes on where the first stopped.
struct IteratorState : Object {
  enum class Kind : std::uint8_t { Pairs = 0, Gmatch = 1, Ipairs = 2 };

  // As nextIteratorItem.
  using Step = bool (*)(LuaVM::Impl& interpreter, IteratorState& state, Value* slots,
                        std::uint32_t count, Site site);

  Kind kind;
  // Pairs gives all items as they were when the iterator was made. Until the table is accessed
  // again, it lends the iterator its parts; then the items that are left are copied.
  bool hasLost = false;  // Pairs: there was no memory for that copy
  // Pairs without the table's parts: the items, a key and a value each. Gmatch: what `step` needs.
  ValueList values;
  // Pairs: the next item's place in `values` or among the parts. Ipairs: the last index delivered.
  // Gmatch: `step`'s.
  std::uint64_t position = 0;
  // Gmatch: finds the next match.
  Step step = nullptr;
  std::uint32_t itemSize = 2;  // values; Gmatch: `step`'s
  // Owned. Ipairs: the table, read live. Pairs: the table that lends its parts.
  Table* table = nullptr;
  std::uint64_t limit = 0;  // Ipairs: the table's length when the iterator was made
  Table parts;              // Pairs, while `table` is not null

  IteratorState(Kind iteratorKind, ValueList&& items)
      : kind(iteratorKind), values(std::move(items)) {}
  ~IteratorState();

  // Returns the parts to the table that lends them, for its items may change now. Throws
  // std::bad_alloc when there is no memory for a copy of those that are left, and has done nothing.
  void endLoan();
  // Then for where nothing may throw: the next step does.
  void loseItems() noexcept;

  // All return an owned reference.
  static IteratorState* createPairs(Heap& heap, Table& table, Site site);
  static IteratorState* createIpairs(Heap& heap, Table& table);
  static IteratorState* createGmatch(Heap& heap, ValueList&& values, Step step);

 private:
  void copyItems(Heap& heap, WorkMeter& meter, Site site);
  void returnParts() noexcept;
};

}  // namespace tarvel::lua::internal
