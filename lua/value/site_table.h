#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <utility>
#include <vector>

#include "lua/value/errors.h"
#include "lua/value/heap_allocator.h"
#include "lua/value/value.h"

namespace tarvel::lua::internal {

// Where a token begins: line and column, in bytes, both from 1.
struct Place {
  std::uint32_t line = 0;
  std::uint32_t column = 0;
};

// A chunk's places, one for each token, in the order of the text.
using Places = std::vector<Place, HeapAllocator<Place>>;

class SiteTable;

// The sites of one chunk: a number for each of its places, one after the other. They go back to the
// table, which must outlive them, when this is cleared or destroyed.
class SiteRange {
 public:
  SiteRange() noexcept = default;
  SiteRange& operator=(SiteRange&& other) noexcept {
    std::swap(table_, other.table_);
    std::swap(first_, other.first_);
    std::swap(last_, other.last_);
    return *this;
  }
  ~SiteRange() { clear(); }

  Site first() const noexcept { return first_; }
  void clear() noexcept;

 private:
  friend class SiteTable;
  SiteRange(SiteTable& table, Site first, Site last) noexcept
      : table_(&table), first_(first), last_(last) {}

  SiteTable* table_ = nullptr;
  Site first_ = 0;
  Site last_ = 0;
};

// What the sites of an interpreter stand for, for as long as their chunks live. 0 is no site.
//
// Numbers are handed out in rising order, and when the largest has been reached again from 1 on,
// where there is room. So a number is not used again soon, and never runs out while the chunks that
// live have room for one more.
class SiteTable {
 public:
  // What one site stands for.
  struct Entry {
    OwnedValue chunkName;  // a string; nil for an unknown site
    Place place;
  };

  explicit SiteTable(Heap& heap, Site next = 1)
      : chunks_(HeapAllocator<Chunks::value_type>(heap)), next_(next) {}
  SiteTable(const SiteTable&) = delete;
  SiteTable& operator=(const SiteTable&) = delete;

  // Numbers `places`, of which there is one at least. Throws std::bad_alloc.
  SiteRange add(OwnedValue chunkName, Places places);

  // Allocates nothing.
  Entry find(Site site) const noexcept;

 private:
  friend class SiteRange;

  struct Chunk {
    Chunk(OwnedValue chunkName, Site firstSite, Places chunkPlaces) noexcept
        : name(std::move(chunkName)), first(firstSite), places(std::move(chunkPlaces)) {}

    OwnedValue name;
    Site first;
    Places places;
  };
  // By the last site of each.
  using Chunks = std::map<Site, Chunk, std::less<>, HeapAllocator<std::pair<const Site, Chunk>>>;

  Site roomFrom(std::uint64_t first, std::uint64_t count) const noexcept;

  Chunks chunks_;
  Site next_;  // where to look for room first
};

}  // namespace tarvel::lua::internal
