#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <span>
#include <type_traits>
#include <utility>
#include <vector>

#include "lua/value/memory_charge.h"

namespace tarvel::lua::internal {

// A list of fixed length whose elements live in an arena.
template <class T>
struct ArenaList {
  T* data = nullptr;
  std::uint32_t size = 0;

  T* begin() const noexcept { return data; }
  T* end() const noexcept { return data + size; }
  T& operator[](std::size_t index) const noexcept { return data[index]; }
  bool empty() const noexcept { return size == 0; }
};

// Memory for a syntax tree: allocated piecewise, freed at once. What lives here is never destroyed
// one by one, so a tree of any depth goes away without recursion; its types must not need a
// destructor.
class Arena {
 public:
  // The memory counts as part of what `heap` takes, which must outlive the arena.
  explicit Arena(Heap& heap) : charge_(heap) {}

  // Gives the memory back; nothing that was made here may be used any more.
  void clear() noexcept {
    blocks_ = std::vector<std::unique_ptr<std::byte[]>>();
    blockBytes_ = kFirstBlockBytes;
    next_ = nullptr;
    room_ = 0;
    charge_.clear();
  }

  template <class T, class... Arguments>
  T* make(Arguments&&... arguments) {
    static_assert(std::is_trivially_destructible_v<T> && alignof(T) <= kAlignment);
    return new (allocate(sizeof(T), alignof(T))) T(std::forward<Arguments>(arguments)...);
  }

  template <class T>
  ArenaList<T> list(const std::vector<T>& elements) {
    return list(std::span<const T>(elements));
  }
  template <class T>
  ArenaList<T> list(std::span<const T> elements) {
    static_assert(std::is_trivially_copyable_v<T> && alignof(T) <= kAlignment);
    if (elements.empty()) return {};
    const std::size_t bytes = elements.size_bytes();
    T* data = static_cast<T*>(allocate(bytes, alignof(T)));
    std::uninitialized_copy(elements.begin(), elements.end(), data);
    return {data, static_cast<std::uint32_t>(elements.size())};
  }

 private:
  // Blocks double in size from the first, so that a small chunk takes little and a large one asks
  // rarely.
  static constexpr std::size_t kFirstBlockBytes = std::size_t{8} << 10;
  static constexpr std::size_t kLargestBlockBytes = std::size_t{64} << 10;
  static constexpr std::size_t kAlignment = __STDCPP_DEFAULT_NEW_ALIGNMENT__;  // of a block

  // `alignment` is a power of two.
  void* allocate(std::size_t bytes, std::size_t alignment) {
    const std::size_t padding = -reinterpret_cast<std::uintptr_t>(next_) & (alignment - 1);
    if (padding + bytes > room_) return allocateFromNewBlock(bytes);
    void* const result = next_ + padding;
    next_ += padding + bytes;
    room_ -= padding + bytes;
    return result;
  }

  // What would use up much of a block gets one of its own, and the others go on in the current one.
  [[gnu::noinline]] void* allocateFromNewBlock(std::size_t bytes) {
    if (bytes > blockBytes_ / 4) return addBlock(bytes);
    std::byte* const block = addBlock(blockBytes_);
    next_ = block + bytes;
    room_ = blockBytes_ - bytes;
    blockBytes_ = std::min(2 * blockBytes_, kLargestBlockBytes);
    return block;
  }

  std::byte* addBlock(std::size_t bytes) {
    charge_.add(bytes);
    blocks_.push_back(std::make_unique_for_overwrite<std::byte[]>(bytes));
    return blocks_.back().get();
  }

  MemoryCharge charge_;
  std::vector<std::unique_ptr<std::byte[]>> blocks_;
  std::size_t blockBytes_ = kFirstBlockBytes;  // of the next block
  std::byte* next_ = nullptr;                  // first unused byte of the current block
  std::size_t room_ = 0;                       // bytes from there to the block's end
};

}  // namespace tarvel::lua::internal
