#pragma once

#include <cstddef>
#include <iterator>
#include <span>
#include <vector>

#include "lua/value/memory_charge.h"

namespace tarvel::lua::internal {

// The items of lists that are being read, which may nest: an inner list stands above what there is
// of the outer one.
template <class T>
class ItemStack {
 public:
  explicit ItemStack(MemoryCharge& memory) : memory_(memory) {}

  // One list, above all others during its lifetime.
  class List {
   public:
    explicit List(ItemStack& stack) : stack_(stack), first_(std::ssize(stack.items_)) {}
    ~List() { stack_.items_.erase(stack_.items_.begin() + first_, stack_.items_.end()); }
    List(const List&) = delete;
    List& operator=(const List&) = delete;

    void add(const T& item) { stack_.push(item); }
    std::span<const T> items() const {
      return std::span<const T>(stack_.items_).subspan(static_cast<std::size_t>(first_));
    }

   private:
    ItemStack& stack_;
    const std::ptrdiff_t first_;
  };

 private:
  void push(const T& item) {
    // As much again as there is: what it doubles to, with what is moved there.
    constexpr std::size_t kItemBytes = sizeof(T);  // NOLINT(bugprone-sizeof-expression): a pointer
    if (items_.size() == items_.capacity()) memory_.add((items_.size() + 1) * kItemBytes);
    items_.push_back(item);
  }

  MemoryCharge& memory_;
  std::vector<T> items_;
};

}  // namespace tarvel::lua::internal
