#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "lua/frontend/syntax_tree.h"
#include "lua/value/string_pool.h"

namespace tarvel::lua::internal {

// The names of one chunk, each of which exists once, however often the text mentions it. What is
// found out about a name while the chunk is bound is kept with it.
class NameTable {
 public:
  // The names live in the chunk's arena.
  NameTable(ResolvedChunk& chunk, StringPool& strings)
      : chunk_(chunk), strings_(strings), slots_(kFewest) {}

  Name* find(std::string_view text);

 private:
  static constexpr std::size_t kFewest = 64;  // slots

  void grow();

  ResolvedChunk& chunk_;
  StringPool& strings_;
  std::vector<Name*> slots_;  // open addressing, a power of two; null: free
  std::size_t used_ = 0;
};

}  // namespace tarvel::lua::internal
