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
    blockBytes_ = next_ = 0;
    charge_.clear();
  }

  template <class T, class... Arguments>
  T* make(Arguments&&... arguments) {
    static_assert(std::is_trivially_destructible_v<T>);
    return new (allocate(sizeof(T), alignof(T))) T(std::forward<Arguments>(arguments)...);
  }

  template <class T>
  ArenaList<T> list(const std::vector<T>& elements) {
    static_assert(std::is_trivially_copyable_v<T>);
    if (elements.empty()) return {};
    const std::size_t bytes = std::as_bytes(std::span(elements)).size();
    T* data = static_cast<T*>(allocate(bytes, alignof(T)));
    std::uninitialized_copy(elements.begin(), elements.end(), data);
    return {data, static_cast<std::uint32_t>(elements.size())};
  }

 private:
  static constexpr std::size_t kBlockBytes = 8192;

  void* allocate(std::size_t bytes, std::size_t alignment) {
    next_ = (next_ + alignment - 1) / alignment * alignment;
    if (blocks_.empty() || next_ + bytes > blockBytes_) {
      const std::size_t size = std::max(kBlockBytes, bytes);
      charge_.add(size);
      blocks_.push_back(std::make_unique<std::byte[]>(size));
      blockBytes_ = size;
      next_ = 0;
    }
    void* result = blocks_.back().get() + next_;
    next_ += bytes;
    return result;
  }

  MemoryCharge charge_;
  std::vector<std::unique_ptr<std::byte[]>> blocks_;
  std::size_t blockBytes_ = 0;  // size of the last block
  std::size_t next_ = 0;        // first unused byte of the last block
};

}  // namespace tarvel::lua::internal
