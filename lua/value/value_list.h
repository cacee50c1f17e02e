#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>

#include "lua/value/heap.h"
#include "lua/value/value.h"

namespace tarvel::lua::internal {

// A growing list of owned values in an interpreter's memory, which must outlive it.
class ValueList {
 public:
  explicit ValueList(Heap& heap, std::size_t capacity = 0) : heap_(&heap) {
    if (capacity > 0) grow(capacity);
  }
  ValueList(ValueList&& other) noexcept
      : heap_(other.heap_),
        values_(std::exchange(other.values_, nullptr)),
        size_(std::exchange(other.size_, 0)),
        capacity_(std::exchange(other.capacity_, 0)) {}
  ValueList& operator=(ValueList&&) = delete;
  void swap(ValueList& other) noexcept {
    std::swap(heap_, other.heap_);
    std::swap(values_, other.values_);
    std::swap(size_, other.size_);
    std::swap(capacity_, other.capacity_);
  }
  ~ValueList() {
    for (std::size_t i = 0; i < size_; ++i) drop(values_[i]);
    if (values_ != nullptr) Heap::release(values_, capacity_ * sizeof(Value));
  }

  // Takes over the ownership of `owned`, also when there is no memory for it (std::bad_alloc).
  void push(Value owned) {
    OwnedValue guard(owned);
    if (size_ == capacity_) grow(std::max<std::size_t>(2 * capacity_, kFirstCapacity));
    values_[size_++] = guard.take();
  }

  // The same within the capacity that the list was made with.
  void add(Value owned) noexcept { values_[size_++] = owned; }

  std::size_t size() const noexcept { return size_; }
  const Value& operator[](std::size_t index) const noexcept { return values_[index]; }
  Value* begin() noexcept { return values_; }
  Value* end() noexcept { return values_ + size_; }

 private:
  static constexpr std::size_t kFirstCapacity = 8;

  void grow(std::size_t capacity) {
    const std::size_t bytes = capacity * sizeof(Value);
    values_ = static_cast<Value*>(
        values_ == nullptr ? heap_->allocate(bytes)
                           : heap_->reallocate(values_, capacity_ * sizeof(Value), bytes));
    capacity_ = capacity;
  }

  Heap* heap_;
  Value* values_ = nullptr;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
};

}  // namespace tarvel::lua::internal
