#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "lua/value/heap.h"
#include "lua/value/string_object.h"
#include "lua/value/value.h"

namespace tarvel::lua::internal {

// The strings of an interpreter that exist once: the names and literals of its scripts, so that
// looking up a field by name is usually a comparison of addresses, and those of one byte, which
// cutting text into characters gives. Holds a reference to each; those that nobody else holds are
// dropped when it grows.
class StringPool {
 public:
  explicit StringPool(Heap& heap) : heap_(heap) {}
  ~StringPool();
  StringPool(const StringPool&) = delete;
  StringPool& operator=(const StringPool&) = delete;

  // Return an owned reference. The one string with these bytes, or for `make` a new one, unless it
  // is short.
  StringObject* intern(std::string_view bytes) {
    return internHashed(bytes, StringObject::hashOf(bytes));
  }
  // For whoever knows the hash.
  StringObject* internHashed(std::string_view bytes, std::uint32_t hash);
  Value make(std::string_view bytes);
  Heap& heap() const noexcept { return heap_; }

 private:
  void rebuild();

  Heap& heap_;
  std::vector<StringObject*> slots_;  // open addressing, a power of two; null: free
  std::size_t used_ = 0;
  std::array<OwnedValue, 256> oneByteStrings_;  // made when first needed
  OwnedValue emptyString_;
};

}  // namespace tarvel::lua::internal
