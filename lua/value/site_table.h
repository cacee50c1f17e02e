#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include "lua/value/errors.h"
#include "lua/value/heap_allocator.h"
#include "lua/value/value.h"

namespace tarvel::lua::internal {

// Where something stands in a text: line and column, in bytes, both from 1.
struct Place {
  std::uint32_t line = 0;
  std::uint32_t column = 0;
};

// A chunk's places, one for each byte of the text and one for its end, in the order of the text.
// They stay as long as the chunk, so they take no more than it takes to find the lines.
class Places {
 public:
  // Throws std::bad_alloc, also for a text of 4 GB: sites could not number its bytes.
  Places(Heap& heap, std::string_view text);

  std::size_t size() const noexcept { return size_; }
  Place operator[](std::uint32_t index) const noexcept;

 private:
  std::vector<std::uint32_t, HeapAllocator<std::uint32_t>> lineStarts_;  // from the second line on
  std::size_t size_;
};

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
// Numbers are handed out in rising order, and once the largest has been reached again from 1 on,
// in the gaps that chunks have left. So a number is not used again soon, and there is always a next
// one, however many have been used over time.
class SiteTable {
 public:
  // What one site stands for.
  struct Entry {
    OwnedValue chunkName;  // a string; nil for an unknown site
    Place place;
  };

  // Numbers end at `last`.
  explicit SiteTable(Heap& heap, Site last = std::numeric_limits<Site>::max())
      : chunks_(HeapAllocator<Chunks::value_type>(heap)), last_(last) {}
  SiteTable(const SiteTable&) = delete;
  SiteTable& operator=(const SiteTable&) = delete;

  // Numbers `places`, of which there is one at least. Throws std::bad_alloc.
  SiteRange add(const OwnedValue& chunkName, Places&& places);

  // Allocates nothing.
  Entry find(Site site) const noexcept;

 private:
  friend class SiteRange;

  struct Chunk {
    Chunk(const OwnedValue& chunkName, Site firstSite, Places&& chunkPlaces) noexcept
        : name(chunkName), first(firstSite), places(std::move(chunkPlaces)) {}

    OwnedValue name;
    Site first;
    Places places;
  };
  // By the last site of each.
  using Chunks = std::map<Site, Chunk, std::less<>, HeapAllocator<std::pair<const Site, Chunk>>>;

  Site roomFrom(std::uint64_t first, std::uint64_t count) const noexcept;

  Chunks chunks_;
  const std::uint64_t last_;  // the largest number
  Site next_ = 1;             // where to look for room first
};

}  // namespace tarvel::lua::internal
