#include "lua/value/value_stack.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstddef>
#include <new>

namespace tarvel::lua::internal {

namespace {

constexpr std::size_t kReservedBytes = std::size_t{512} << 20;
constexpr std::size_t kSmallestReservation = std::size_t{1} << 20;
constexpr std::ptrdiff_t kLimitStep = 64;  // slots by which the soft limit rises

}  // namespace

// Where address space is short, as much as this takes is left for all else.
ValueStack::ValueStack() {
  for (std::size_t bytes = kReservedBytes; bytes >= kSmallestReservation; bytes /= 2) {
    void* const memory = mmap(nullptr, 2 * bytes, PROT_READ | PROT_WRITE,
                              MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (memory == MAP_FAILED) continue;
    munmap(static_cast<std::byte*>(memory) + bytes, bytes);
    // Fresh pages are all zero, which is nil.
    base_ = static_cast<Value*>(memory);
    end_ = base_ + bytes / sizeof(Value);
    limit_ = end_;
    softLimit_ = base_;
    top_ = base_;
    return;
  }
  throw std::bad_alloc();
}

ValueStack::~ValueStack() { munmap(base_, static_cast<std::size_t>(end_ - base_) * sizeof(Value)); }

void ValueStack::limitFrames(std::size_t bytes) noexcept {
  const std::size_t slots = bytes / sizeof(Value);
  limit_ = bytes == 0 || slots > static_cast<std::size_t>(end_ - base_) ? end_ : base_ + slots;
}

bool ValueStack::makeRoom(const Value* end, std::uint32_t hostBytes) noexcept {
  if (hostStackPointer() < hostFloor_ + hostBytes) return false;
  if (end <= softLimit_) return true;
  if (end > limit_) return false;
  const std::ptrdiff_t steps = (end - base_ + kLimitStep - 1) / kLimitStep;
  softLimit_ = std::min(limit_, base_ + steps * kLimitStep);
  return true;
}

void ValueStack::unwindTo(const Mark& mark) noexcept {
  clearSlots(mark.first, softLimit_);
  // The frame that goes on, and those below it, keep their room.
  const std::ptrdiff_t room = mark.first == mark.top ? largestFrame_ : 0;
  const std::ptrdiff_t steps = (mark.first - base_ + room + kLimitStep - 1) / kLimitStep;
  softLimit_ = std::min(softLimit_, base_ + steps * kLimitStep);
  leaveTo(mark);
}

}  // namespace tarvel::lua::internal
