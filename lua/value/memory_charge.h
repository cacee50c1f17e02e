#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>

#include "lua/value/heap.h"

namespace tarvel::lua::internal {

// Memory outside a heap that grows with what a script asks for. While it lives, what was added
// counts against the memory that the process may take; the heap must outlive it.
class MemoryCharge {
 public:
  // What was counted, in bytes, for a charge that goes on elsewhere.
  struct Count {
    std::size_t credit = kFree;
    std::size_t charged = 0;
  };

  explicit MemoryCharge(Heap& heap) noexcept : heap_(heap) {}
  MemoryCharge(Heap& heap, Count count) noexcept : heap_(heap), count_(count) {}
  ~MemoryCharge() { clear(); }
  MemoryCharge(const MemoryCharge&) = delete;
  MemoryCharge& operator=(const MemoryCharge&) = delete;

  // The memory is gone.
  void clear() noexcept {
    heap_.discharge(count_.charged);
    count_ = Count();
  }
  // The memory stays, and whoever gets the count goes on with it.
  Count release() noexcept { return std::exchange(count_, Count()); }

  // To be called before the memory is taken. Throws std::bad_alloc when there is not so much left.
  void add(std::size_t bytes) {
    if (bytes > count_.credit) extend(bytes - count_.credit);
    count_.credit -= bytes;
  }

 private:
  static constexpr std::size_t kFree = 4096;  // bytes that are not worth counting
  static constexpr std::size_t kStep = std::size_t{8} << 10;

  void extend(std::size_t missing) {
    const std::size_t bytes = std::max(missing, kStep);
    heap_.charge(bytes);
    count_.charged += bytes;
    count_.credit += bytes;
  }

  Heap& heap_;
  Count count_;
};

}  // namespace tarvel::lua::internal
