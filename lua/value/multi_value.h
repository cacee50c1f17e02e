#pragma once

#include <cstddef>
#include <initializer_list>
#include <new>
#include <utility>

#include "lua/value/value.h"

namespace tarvel::lua::internal {

// A view of consecutive values, borrowed: valid while the place they stand in is alive and
// unchanged. A native function's arguments stand on the value stack, which never moves.
class ValueSpan {
 public:
  ValueSpan() = default;
  ValueSpan(const Value* first, std::size_t count) : first_(first), count_(count) {}

  std::size_t size() const noexcept { return count_; }
  bool empty() const noexcept { return count_ == 0; }
  const Value& operator[](std::size_t index) const noexcept { return first_[index]; }
  const Value* begin() const noexcept { return first_; }
  const Value* end() const noexcept { return first_ + count_; }

 private:
  const Value* first_ = nullptr;
  std::size_t count_ = 0;
};

// A growing list of owned values with room for the first N inside the object.
template <std::size_t N>
class SmallValueStore {
 public:
  SmallValueStore() noexcept = default;
  explicit SmallValueStore(Value owned) noexcept : count_(1) { inline_[0] = owned; }
  SmallValueStore(std::initializer_list<Value> owned) {
    for (const Value& value : owned) push(value);
  }
  SmallValueStore(const SmallValueStore& other) {
    for (const Value& value : other.span()) push(retain(value));
  }
  SmallValueStore(SmallValueStore&& other) noexcept { takeFrom(other); }
  SmallValueStore& operator=(SmallValueStore other) noexcept {
    clear();
    takeFrom(other);
    return *this;
  }
  ~SmallValueStore() { clear(); }

  // Takes over the ownership of `owned`, also when there is no memory for it (std::bad_alloc).
  void push(Value owned) {
    if (count_ == capacity_) grow(owned);
    data_[count_++] = owned;
  }

  std::size_t size() const noexcept { return count_; }
  bool empty() const noexcept { return count_ == 0; }
  const Value& operator[](std::size_t index) const noexcept { return data_[index]; }
  ValueSpan span() const noexcept { return {data_, count_}; }

  // The first value, or nil when there is none: what an expression that wants one value gets.
  // Borrowed.
  Value first() const noexcept { return count_ == 0 ? Value() : data_[0]; }

  // Hands all values to the caller, who stores them before anything else runs.
  ValueSpan release() noexcept {
    const ValueSpan values = span();
    count_ = 0;
    return values;
  }

 private:
  void grow(Value pending) {
    Value* larger = new (std::nothrow) Value[capacity_ * 2];
    if (larger == nullptr) {
      drop(pending);
      throw std::bad_alloc();
    }
    for (std::size_t i = 0; i < count_; ++i) larger[i] = data_[i];
    if (data_ != inline_) delete[] data_;
    data_ = larger;
    capacity_ *= 2;
  }

  void clear() noexcept {
    for (std::size_t i = 0; i < count_; ++i) drop(data_[i]);
    count_ = 0;
    if (data_ != inline_) delete[] data_;
    data_ = inline_;
    capacity_ = N;
  }

  void takeFrom(SmallValueStore& other) noexcept {
    count_ = std::exchange(other.count_, 0);
    if (other.data_ == other.inline_) {
      for (std::size_t i = 0; i < count_; ++i) inline_[i] = other.inline_[i];
      return;
    }
    data_ = std::exchange(other.data_, other.inline_);
    capacity_ = std::exchange(other.capacity_, N);
  }

  Value* data_ = inline_;
  std::size_t count_ = 0;
  std::size_t capacity_ = N;
  Value inline_[N];
};

// What a call returns: almost always none, one or two values.
using MultiValue = SmallValueStore<2>;

}  // namespace tarvel::lua::internal
