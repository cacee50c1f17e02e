#include "lua/value/value_stack.h"

#include <pthread.h>
#include <sys/mman.h>

#include <algorithm>
#include <mutex>
#include <new>

namespace tarvel::lua::internal {

namespace {

constexpr std::size_t kReservedBytes = std::size_t{512} << 20;
constexpr std::size_t kSmallestReservation = std::size_t{1} << 20;
constexpr std::ptrdiff_t kLimitStep = 256;  // slots by which the soft limit rises

// Kept free for what runs at the deepest point: the C++ library, the unwinder, a native function's
// own frames.
constexpr std::size_t kHostReserve = std::size_t{96} << 10;  // bytes
// Assumed at the start of a HostStackScope where the thread's bounds do not contain its stack
// pointer.
constexpr std::size_t kUnknownStackBudget = std::size_t{64} << 10;

struct StackBounds {
  std::uintptr_t low = 0;
  std::uintptr_t high = 0;
};

StackBounds threadStackBounds() noexcept {
  StackBounds bounds;
  pthread_attr_t attributes;
  if (pthread_getattr_np(pthread_self(), &attributes) != 0) return bounds;
  void* low = nullptr;
  std::size_t size = 0;
  std::size_t guard = 0;
  if (pthread_attr_getstack(&attributes, &low, &size) == 0 &&
      pthread_attr_getguardsize(&attributes, &guard) == 0) {
    bounds.low = reinterpret_cast<std::uintptr_t>(low) + guard;
    bounds.high = reinterpret_cast<std::uintptr_t>(low) + size;
  }
  pthread_attr_destroy(&attributes);
  return bounds;
}

const StackBounds& boundsOfThisThread() noexcept {
  thread_local const StackBounds bounds = threadStackBounds();
  return bounds;
}

bool isOnThreadStack(std::uintptr_t here) noexcept {
  const StackBounds& bounds = boundsOfThisThread();
  return here > bounds.low && here <= bounds.high;
}

// The scopes on stacks of the hosts' own, of all threads: what runs on such a stack may go on on
// another thread, and no two stacks have the same addresses.
std::mutex scopesMutex;
HostStackScope* latestScope = nullptr;

}  // namespace

HostStackScope::HostStackScope() noexcept
    : floor_(hostStackFloor()), isListed_(!isOnThreadStack(hostStackPointer())) {
  if (!isListed_) return;
  const std::lock_guard lock(scopesMutex);
  earlier_ = latestScope;
  latestScope = this;
}

HostStackScope::~HostStackScope() {
  if (!isListed_) return;
  const std::lock_guard lock(scopesMutex);
  HostStackScope** link = &latestScope;
  while (*link != this) link = &(*link)->earlier_;
  *link = earlier_;
}

std::uintptr_t HostStackScope::floorOfSwitchedStack(std::uintptr_t here) noexcept {
  const std::lock_guard lock(scopesMutex);
  std::uintptr_t floorAbove = 0;  // of a stack that is used up
  for (const HostStackScope* scope = latestScope; scope != nullptr; scope = scope->earlier_) {
    if (here - scope->floor_ <= kUnknownStackBudget) return scope->floor_;
    if (scope->floor_ - here <= kHostReserve) floorAbove = scope->floor_;
  }
  return floorAbove != 0 ? floorAbove : here - kUnknownStackBudget;
}

std::uintptr_t hostStackFloor() noexcept {
  const std::uintptr_t here = hostStackPointer();
  if (!isOnThreadStack(here)) return HostStackScope::floorOfSwitchedStack(here);
  const StackBounds& bounds = boundsOfThisThread();
  return bounds.low + std::min<std::size_t>(kHostReserve, (bounds.high - bounds.low) / 4);
}

std::size_t hostStackRoom() noexcept {
  const std::uintptr_t floor = hostStackFloor();
  const std::uintptr_t here = hostStackPointer();
  return here > floor ? here - floor : 0;
}

ValueStack::ValueStack() {
  for (std::size_t bytes = kReservedBytes; bytes >= kSmallestReservation; bytes /= 2) {
    void* const memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE,
                              MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (memory == MAP_FAILED) continue;
    // Fresh pages are all zero, which is nil.
    base_ = static_cast<Value*>(memory);
    end_ = base_ + bytes / sizeof(Value);
    softLimit_ = base_;
    top_ = base_;
    return;
  }
  throw std::bad_alloc();
}

ValueStack::~ValueStack() { munmap(base_, static_cast<std::size_t>(end_ - base_) * sizeof(Value)); }

bool ValueStack::makeRoom(const Value* end, std::uint32_t hostBytes) noexcept {
  if (hostStackPointer() < hostFloor_ + hostBytes) return false;
  if (end <= softLimit_) return true;
  if (end > end_) return false;
  const std::ptrdiff_t steps = (end - base_ + kLimitStep - 1) / kLimitStep;
  softLimit_ = std::min(end_, base_ + steps * kLimitStep);
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
