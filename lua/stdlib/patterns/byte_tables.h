#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "lua/stdlib/patterns/byte_set.h"

namespace tarvel::lua::internal {

// A set of bytes as one bit in each entry of a table, which makes asking for a byte one access. The
// tables are a ByteTables'.
struct TableSet {
  const std::uint8_t* table = nullptr;
  std::uint8_t bit = 0;

  bool contains(char byte) const noexcept {
    return (table[static_cast<unsigned char>(byte)] & bit) != 0;
  }
};

// The tables of an expression's sets, eight of them in each.
class ByteTables {
 public:
  static constexpr std::size_t kMostSets = 128;

  // The number of the set, which may be that of an equal one; at least kMostSets when there are too
  // many.
  std::size_t add(const ByteSet& set);
  // To be called once, after all were added.
  void fill();
  TableSet at(std::size_t number) const noexcept;

  std::size_t bytes() const noexcept { return tables_.capacity(); }

 private:
  static constexpr std::size_t kEntries = 256;
  static constexpr std::size_t kSetsInTable = 8;

  std::vector<ByteSet> sets_;  // until the tables are filled
  std::vector<std::uint8_t> tables_;
};

}  // namespace tarvel::lua::internal
