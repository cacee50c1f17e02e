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
  // Pairs: all items as they were when the iterator was made, a key and a value each. Gmatch: what
  // `step` needs.
  ValueList values;
  // Pairs: the next item's place in `values`. Ipairs: the last index delivered. Gmatch: `step`'s.
  std::uint64_t position = 0;
  // Gmatch: finds the next match.
  Step step = nullptr;
  std::uint32_t itemSize = 2;  // values; Gmatch: `step`'s
  // Ipairs: the table, owned and read live, and its length when the iterator was made.
  Table* table = nullptr;
  std::uint64_t limit = 0;

  IteratorState(Kind iteratorKind, ValueList&& items)
      : kind(iteratorKind), values(std::move(items)) {}
  ~IteratorState();

  // All return an owned reference.
  static IteratorState* createPairs(Heap& heap, Table& table, Site site);
  static IteratorState* createIpairs(Heap& heap, Table& table);
  static IteratorState* createGmatch(Heap& heap, ValueList&& values, Step step);
};

}  // namespace tarvel::lua::internal
