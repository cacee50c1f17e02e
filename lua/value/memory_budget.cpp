#include "lua/value/memory_budget.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <limits>

namespace tarvel::lua::internal {

namespace {

// Up to this, in bytes, memory is granted without asking how much the machine has.
constexpr std::size_t kAlwaysGranted = std::size_t{64} << 20;

// The number that a file of the system starts with; the largest one where there is none, and 0
// while the process has no descriptor left to read it with. Needs no memory.
std::size_t readNumber(const char* path) noexcept {
  std::array<char, 32> text{};
  const int file = open(path, O_RDONLY | O_CLOEXEC);
  if (file < 0 && (errno == EMFILE || errno == ENFILE || errno == ENOMEM)) return 0;
  const ssize_t length = file < 0 ? -1 : read(file, text.data(), text.size());
  if (file >= 0) close(file);
  std::size_t number = std::numeric_limits<std::size_t>::max();
  if (length > 0) std::from_chars(text.data(), text.data() + length, number);
  return number;
}

std::size_t systemValue(int name) noexcept {
  return static_cast<std::size_t>(std::max(sysconf(name), 1L));
}

// What is left of the address space that the process may use.
std::size_t addressSpaceLeft() noexcept {
  rlimit limit{};
  if (getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) {
    return std::numeric_limits<std::size_t>::max();
  }
  const std::size_t pagesUsed = readNumber("/proc/self/statm");
  const std::size_t pages = limit.rlim_cur / systemValue(_SC_PAGESIZE);
  return (pages > pagesUsed ? pages - pagesUsed : pages) * systemValue(_SC_PAGESIZE);
}

std::size_t askForBudget() noexcept {
  return std::min({systemValue(_SC_PHYS_PAGES) * systemValue(_SC_PAGESIZE), addressSpaceLeft(),
                   readNumber("/sys/fs/cgroup/memory.max"),
                   readNumber("/sys/fs/cgroup/memory/memory.limit_in_bytes")}) /
         10 * 8;
}

// Asked for once. 0 while it cannot be known: a script that holds all descriptors must not be
// granted more than there is.
std::size_t memoryBudget() noexcept {
  static std::atomic<std::size_t> known{0};
  std::size_t budget = known.load(std::memory_order_relaxed);
  if (budget == 0) known.store(budget = askForBudget(), std::memory_order_relaxed);
  return budget;
}

std::atomic<std::size_t> bytesTaken{0};

}  // namespace

bool canEverTakeMemory(std::size_t bytes) noexcept {
  return bytes <= kAlwaysGranted || bytes <= memoryBudget();
}

bool takeMemory(std::size_t bytes) noexcept {
  if (!canEverTakeMemory(bytes)) return false;
  const std::size_t total = bytesTaken.fetch_add(bytes, std::memory_order_relaxed) + bytes;
  if (total <= kAlwaysGranted || total <= memoryBudget()) return true;
  giveBackMemory(bytes);
  return false;
}

void giveBackMemory(std::size_t bytes) noexcept {
  bytesTaken.fetch_sub(bytes, std::memory_order_relaxed);
}

}  // namespace tarvel::lua::internal
