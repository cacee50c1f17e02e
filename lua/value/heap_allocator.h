#pragma once

#include <cstddef>

#include "lua/value/heap.h"

namespace tarvel::lua::internal {

// Lets the containers of the standard library take their memory from a heap, which must outlive
// them.
template <class T>
struct HeapAllocator {
  using value_type = T;

  explicit HeapAllocator(Heap& owner) noexcept : heap(&owner) {}
  template <class U>
  explicit HeapAllocator(const HeapAllocator<U>& other) noexcept : heap(other.heap) {}

  T* allocate(std::size_t count) { return static_cast<T*>(heap->allocate(count * sizeof(T))); }
  void deallocate(T* block, std::size_t count) noexcept { Heap::release(block, count * sizeof(T)); }
  bool operator==(const HeapAllocator& other) const noexcept = default;

  Heap* heap;
};

}  // namespace tarvel::lua::internal
