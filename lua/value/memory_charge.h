#pragma once

#include <algorithm>
#include <cstddef>

#include "lua/value/heap.h"

namespace tarvel::lua::internal {

// Memory outside a heap that grows with what a script asks for. While it lives, what was added
// counts against the memory that the process may take; the heap must outlive it.
class MemoryCharge {
 public:
  explicit MemoryCharge(Heap& heap) noexcept : heap_(heap) {}
  ~MemoryCharge() { clear(); }
  MemoryCharge(const MemoryCharge&) = delete;
  MemoryCharge& operator=(const MemoryCharge&) = delete;

  // The memory is gone.
  void clear() noexcept {
    heap_.discharge(charged_);
    charged_ = 0;
    credit_ = kFree;
  }

  // To be called before the memory is taken. Throws std::bad_alloc when there is not so much left.
  void add(std::size_t bytes) {
    if (bytes > credit_) extend(bytes - credit_);
    credit_ -= bytes;
  }

 private:
  static constexpr std::size_t kFree = 4096;  // bytes that are not worth counting
  static constexpr std::size_t kStep = std::size_t{8} << 10;

  void extend(std::size_t missing) {
    const std::size_t bytes = std::max(missing, kStep);
    heap_.charge(bytes);
    charged_ += bytes;
    credit_ += bytes;
  }

  Heap& heap_;
  std::size_t credit_ = kFree;
  std::size_t charged_ = 0;
};

}  // namespace tarvel::lua::internal
