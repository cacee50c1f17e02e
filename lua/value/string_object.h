#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "lua/value/heap.h"
#include "lua/value/value.h"

namespace tarvel::lua::internal {

// An immutable byte string; the bytes follow the header and end with a zero byte that is not part
// of the length. The one exception to "immutable": whoever holds the only reference may append in
// place (reserveInPlace, append).
struct StringObject : Object {
  static constexpr std::size_t kMaximumLength = static_cast<std::size_t>(1) << 40;  // bytes

  std::uint64_t length;
  std::uint32_t cachedHash;     // 0: not computed yet
  std::uint32_t capacityUnits;  // room for bytes, in units of Heap::kGranularity, header included

  // All return an owned reference and throw std::bad_alloc when there is no room.
  static StringObject* create(Heap& heap, std::string_view bytes);
  static StringObject* createUninitialized(Heap& heap, std::size_t length);

  char* data() noexcept { return reinterpret_cast<char*>(this + 1); }
  const char* data() const noexcept { return reinterpret_cast<const char*>(this + 1); }
  std::string_view view() const noexcept { return {data(), length}; }
  std::uint32_t hash() noexcept { return cachedHash != 0 ? cachedHash : computeHash(); }

  static std::uint32_t hashOf(std::string_view bytes) noexcept;  // never 0

  // For a string that the caller holds the only reference to: makes room for `more` bytes and
  // returns the string's new place; on failure (std::bad_alloc) the old one stays as it was. Room
  // grows by half, so that appending n bytes one by one costs O(n).
  static StringObject* reserveInPlace(Heap& heap, StringObject* text, std::size_t more);
  // The bytes that can be appended to such a string before it has to move.
  std::size_t room() const noexcept { return blockBytes() - sizeof(StringObject) - 1 - length; }
  // Appends to such a string, within its room.
  void append(std::string_view more) noexcept {
    std::copy_n(more.data(), more.size(), data() + length);
    length += more.size();
    data()[length] = '\0';
    cachedHash = 0;
  }

  std::size_t blockBytes() const noexcept {
    return static_cast<std::size_t>(capacityUnits) * Heap::kGranularity;
  }

 private:
  std::uint32_t computeHash() noexcept;
};

// Of an empty string the zero byte behind it, so that where two differ, they order the strings.
inline int firstByte(const StringObject* text) noexcept {
  return static_cast<unsigned char>(text->data()[0]);
}

bool stringsEqual(StringObject* a, StringObject* b) noexcept;

// Orders by unsigned bytes, then the shorter string first: negative, zero or positive.
int compareStrings(const StringObject* a, const StringObject* b) noexcept;

// The printable form of a value. Of a string it is the string itself, which must outlive it.
class PrintableText {
 public:
  explicit PrintableText(const Value& value) {
    if (!value.isString()) value.appendTo(rendering_);
    view_ = value.isString() ? value.string->view() : std::string_view(rendering_);
  }
  PrintableText(const PrintableText&) = delete;
  PrintableText& operator=(const PrintableText&) = delete;

  std::string_view view() const noexcept { return view_; }

 private:
  std::string rendering_;
  std::string_view view_;
};

}  // namespace tarvel::lua::internal
