#include "lua/value/host_stack.h"

#include <pthread.h>

#include <algorithm>
#include <mutex>

namespace tarvel::lua::internal {

namespace {

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
    if (scope->floor_ - here <= stack_cost::kReserve) floorAbove = scope->floor_;
  }
  return floorAbove != 0 ? floorAbove : here - kUnknownStackBudget;
}

std::uintptr_t hostStackFloor() noexcept {
  const std::uintptr_t here = hostStackPointer();
  if (!isOnThreadStack(here)) return HostStackScope::floorOfSwitchedStack(here);
  const StackBounds& bounds = boundsOfThisThread();
  return bounds.low + std::min<std::size_t>(stack_cost::kReserve, (bounds.high - bounds.low) / 4);
}

std::size_t hostStackRoom() noexcept {
  const std::uintptr_t floor = hostStackFloor();
  const std::uintptr_t here = hostStackPointer();
  return here > floor ? here - floor : 0;
}

}  // namespace tarvel::lua::internal
