#include "lua/value/host_stack.h"

#include <pthread.h>

#include <algorithm>
#include <mutex>

namespace tarvel::lua::internal {

namespace {

// Assumed at the start of a HostStackScope where the thread's bounds do not contain its stack
// pointer.
constexpr std::size_t kUnknownStackBudget = std::size_t{64} << 10;

ThreadStack askForThreadStack() noexcept {
  ThreadStack stack;
  pthread_attr_t attributes;
  if (pthread_getattr_np(pthread_self(), &attributes) != 0) return stack;
  void* low = nullptr;
  std::size_t size = 0;
  std::size_t guard = 0;
  if (pthread_attr_getstack(&attributes, &low, &size) == 0 &&
      pthread_attr_getguardsize(&attributes, &guard) == 0) {
    stack.low = reinterpret_cast<std::uintptr_t>(low) + guard;
    stack.high = reinterpret_cast<std::uintptr_t>(low) + size;
    stack.floor =
        stack.low + std::min<std::size_t>(stack_cost::kReserve, (stack.high - stack.low) / 4);
  }
  pthread_attr_destroy(&attributes);
  return stack;
}

// The scopes on stacks of the hosts' own, of all threads: what runs on such a stack may go on on
// another thread, and no two stacks have the same addresses.
std::mutex scopesMutex;
HostStackScope* latestScope = nullptr;

}  // namespace

void HostStackScope::enter(std::uintptr_t here) noexcept {
  floor_ = findHostStackFloor(here);
  isListed_ = !threadStack.contains(here);
  if (!isListed_) return;
  const std::lock_guard lock(scopesMutex);
  earlier_ = latestScope;
  latestScope = this;
}

void HostStackScope::leave() noexcept {
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
    if (scope->floor_ - here <= stack_cost::kReserve) floorAbove = scope->floor_;
  }
  return floorAbove != 0 ? floorAbove : here - kUnknownStackBudget;
}

std::uintptr_t findHostStackFloor(std::uintptr_t here) noexcept {
  if (threadStack.high == 0) threadStack = askForThreadStack();
  return threadStack.contains(here) ? threadStack.floor
                                    : HostStackScope::floorOfSwitchedStack(here);
}

std::size_t hostStackRoom() noexcept {
  const std::uintptr_t floor = hostStackFloor();
  const std::uintptr_t here = hostStackPointer();
  return here > floor ? here - floor : 0;
}

}  // namespace tarvel::lua::internal
