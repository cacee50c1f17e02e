#include "lua/value/string_object.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <new>

#include "lua/value/hashing.h"

namespace tarvel::lua::internal {

namespace {

std::uint32_t unitsFor(std::size_t length) {
  if (length > StringObject::kMaximumLength) throw std::bad_alloc();
  const std::size_t bytes = sizeof(StringObject) + length + 1;
  const std::size_t units = (bytes + Heap::kGranularity - 1) / Heap::kGranularity;
  if (units > std::numeric_limits<std::uint32_t>::max()) throw std::bad_alloc();
  return static_cast<std::uint32_t>(units);
}

// Looking at all of a long text is more than a step. Short strings, which are in small blocks, are
// looked at without a call for this.
constexpr bool isLong(std::size_t bytes) noexcept { return bytes > Heap::kSmallLimit; }

void noteLook(const StringObject* text, std::size_t bytes) noexcept {
  Heap::of(text, text->blockBytes()).meter().note(stepsForBytes(bytes));
}

[[gnu::noinline]] std::uint32_t hashOfLong(const StringObject* text) noexcept {
  noteLook(text, text->length);
  return StringObject::hashOf(text->view());
}

[[gnu::noinline]] int compareLong(const StringObject* a, const StringObject* b,
                                  std::size_t bytes) noexcept {
  noteLook(a, bytes);
  return std::memcmp(a->data(), b->data(), bytes);
}

// As memcmp, of what both have.
int compareBytes(const StringObject* a, const StringObject* b, std::size_t bytes) noexcept {
  return isLong(bytes) ? compareLong(a, b, bytes) : std::memcmp(a->data(), b->data(), bytes);
}

}  // namespace

StringObject* StringObject::createUninitialized(Heap& heap, std::size_t length) {
  const std::uint32_t units = unitsFor(length);
  auto* const text = new (heap.allocate(units * Heap::kGranularity)) StringObject;
  text->length = length;
  text->cachedHash = 0;
  text->capacityUnits = units;
  text->data()[length] = '\0';
  return text;
}

StringObject* StringObject::create(Heap& heap, std::string_view bytes) {
  StringObject* const text = createUninitialized(heap, bytes.size());
  std::copy_n(bytes.data(), bytes.size(), text->data());
  return text;
}

StringObject* StringObject::reserveInPlace(Heap& heap, StringObject* text, std::size_t more) {
  const std::uint32_t needed = unitsFor(text->length + std::min(more, kMaximumLength));
  if (needed <= text->capacityUnits) return text;
  const std::uint32_t units = std::max(needed, unitsFor(text->length + text->length / 2));
  text = static_cast<StringObject*>(
      heap.reallocate(text, text->blockBytes(), units * Heap::kGranularity));
  text->capacityUnits = units;
  return text;
}

std::uint32_t StringObject::hashOf(std::string_view bytes) noexcept {
  const std::uint32_t hash = hashOfBytes(bytes, processHashSecrets());
  return hash != 0 ? hash : 1;
}

std::uint32_t StringObject::computeHash() noexcept {
  return cachedHash = isLong(length) ? hashOfLong(this) : hashOf(view());
}

bool stringsEqual(StringObject* a, StringObject* b) noexcept {
  if (a == b) return true;
  if (a->length != b->length) return false;
  if (a->cachedHash != 0 && b->cachedHash != 0 && a->cachedHash != b->cachedHash) return false;
  return compareBytes(a, b, a->length) == 0;
}

namespace {

// The first bytes as a number that orders like them. Bytes behind a short string are its block's.
std::uint64_t leadingBytes(const StringObject* text) noexcept {
  std::uint64_t bytes;
  std::memcpy(&bytes, text->data(), sizeof bytes);
  if constexpr (std::endian::native == std::endian::little) bytes = __builtin_bswap64(bytes);
  return bytes;
}
static_assert(sizeof(StringObject) % Heap::kGranularity == Heap::kGranularity - 8,
              "every string has room for eight bytes");

}  // namespace

int compareStrings(const StringObject* a, const StringObject* b) noexcept {
  const std::size_t common = std::min(a->length, b->length);
  const std::uint64_t startOfA = leadingBytes(a);
  const std::uint64_t startOfB = leadingBytes(b);
  if (startOfA != startOfB) {
    const auto position = static_cast<std::size_t>(std::countl_zero(startOfA ^ startOfB)) / 8;
    if (position < common && !isLong(common)) return startOfA < startOfB ? -1 : 1;
  }
  if (const int order = compareBytes(a, b, common); order != 0) return order;
  return a->length < b->length ? -1 : a->length > b->length ? 1 : 0;
}

}  // namespace tarvel::lua::internal
