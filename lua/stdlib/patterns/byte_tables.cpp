#include "lua/stdlib/patterns/byte_tables.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace tarvel::lua::internal {

namespace {

// Eight bits as eight bytes that are 0 or 1.
constexpr auto kSpread = [] {
  std::array<std::uint64_t, 256> spread{};
  for (unsigned bits = 0; bits < spread.size(); ++bits) {
    std::array<std::uint8_t, 8> bytes{};
    for (unsigned i = 0; i < bytes.size(); ++i)
      bytes[i] = static_cast<std::uint8_t>((bits >> i) & 1);
    spread[bits] = std::bit_cast<std::uint64_t>(bytes);
  }
  return spread;
}();

}  // namespace

std::size_t ByteTables::add(const ByteSet& set) {
  const auto known = std::find(sets_.begin(), sets_.end(), set);
  const auto number = static_cast<std::size_t>(known - sets_.begin());
  if (known == sets_.end() && number < kMostSets) sets_.push_back(set);
  return number;
}

void ByteTables::fill() {
  tables_.resize((sets_.size() + kSetsInTable - 1) / kSetsInTable * kEntries);
  for (std::size_t number = 0; number < sets_.size(); ++number) {
    std::uint8_t* const table = tables_.data() + number / kSetsInTable * kEntries;
    for (std::size_t i = 0; i < kEntries / 8; ++i) {
      std::uint64_t entries;
      std::memcpy(&entries, table + 8 * i, sizeof entries);
      entries |= kSpread[sets_[number].eightFrom(i)] << (number % kSetsInTable);
      std::memcpy(table + 8 * i, &entries, sizeof entries);
    }
  }
  sets_ = {};
}

TableSet ByteTables::at(std::size_t number) const noexcept {
  return {tables_.data() + number / kSetsInTable * kEntries,
          static_cast<std::uint8_t>(1U << (number % kSetsInTable))};
}

}  // namespace tarvel::lua::internal
