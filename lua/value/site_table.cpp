#include "lua/value/site_table.h"

#include <algorithm>
#include <new>

namespace tarvel::lua::internal {

Places::Places(Heap& heap, std::string_view text)
    : lineStarts_(HeapAllocator<std::uint32_t>(heap)), size_(text.size() + 1) {
  if (size_ > std::numeric_limits<std::uint32_t>::max()) throw std::bad_alloc();
  lineStarts_.reserve(static_cast<std::size_t>(std::ranges::count(text, '\n')));
  for (std::size_t end = text.find('\n'); end != std::string_view::npos;
       end = text.find('\n', end + 1)) {
    lineStarts_.push_back(static_cast<std::uint32_t>(end + 1));
  }
}

Place Places::operator[](std::uint32_t index) const noexcept {
  const auto nextLine = std::ranges::upper_bound(lineStarts_, index);
  const std::uint32_t lineStart = nextLine == lineStarts_.begin() ? 0 : *(nextLine - 1);
  return {static_cast<std::uint32_t>(nextLine - lineStarts_.begin() + 1), index - lineStart + 1};
}

void SiteRange::clear() noexcept {
  if (table_ != nullptr) table_->chunks_.erase(last_);
  table_ = nullptr;
}

SiteRange SiteTable::add(const OwnedValue& chunkName, Places&& places) {
  Site first = roomFrom(next_, places.size());
  if (first == 0) first = roomFrom(1, places.size());
  if (first == 0) throw std::bad_alloc();
  const Site last = first + static_cast<Site>(places.size() - 1);
  chunks_.try_emplace(last, chunkName, first, std::move(places));
  next_ = last == last_ ? 1 : last + 1;
  return {*this, first, last};
}

// The first of `count` numbers in a row that are free, at `first` or behind it; 0 if there are
// none.
Site SiteTable::roomFrom(std::uint64_t first, std::uint64_t count) const noexcept {
  auto chunk = chunks_.lower_bound(static_cast<Site>(first));
  for (; chunk != chunks_.end() && first + count > chunk->second.first; ++chunk) {
    first = std::uint64_t{chunk->first} + 1;
  }
  return first + count - 1 <= last_ ? static_cast<Site>(first) : 0;
}

SiteTable::Entry SiteTable::find(Site site) const noexcept {
  const auto chunk = chunks_.lower_bound(site);
  if (chunk == chunks_.end() || site < chunk->second.first) return {};
  return {chunk->second.name, chunk->second.places[site - chunk->second.first]};
}

}  // namespace tarvel::lua::internal
