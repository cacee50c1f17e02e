#include "tests/refusal/refused_memory.h"

#include <malloc.h>
#include <sys/mman.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace tarvel::lua::refusal {

namespace {

struct State {
  bool isActive = false;
  Refused which = Refused::Alone;
  std::size_t number = 0;
  std::size_t count = 0;
  // What was refused last: whoever asks for the same again at once is refused again.
  const void* block = nullptr;
  std::size_t bytes = 0;
};

State state;
std::atomic<std::size_t> hostBlocks{0};

std::atomic<std::size_t> bytesInUse{0};
std::atomic<std::size_t> peak{0};

void countBlock(void* block) noexcept {
  const std::size_t now = bytesInUse += malloc_usable_size(block);
  if (now > peak) peak = now;
}

bool isRefused(const void* block, std::size_t bytes) noexcept {
  if (!state.isActive) return false;
  if (bytes != 0 && block == state.block && bytes == state.bytes) return true;
  const std::size_t number = state.count++;
  const bool isRefusedNow =
      state.which == Refused::Alone ? number == state.number : number >= state.number;
  state.block = block;
  state.bytes = isRefusedNow ? bytes : 0;
  return isRefusedNow;
}

void* newHostBlock(std::size_t bytes) noexcept {
  void* const block = isRefused(nullptr, 0) ? nullptr : std::malloc(bytes == 0 ? 1 : bytes);
  if (block != nullptr) ++hostBlocks;
  countBlock(block);
  return block;
}

void* newHostBlockOrThrow(std::size_t bytes) {
  void* const block = newHostBlock(bytes);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

void deleteHostBlock(void* block) noexcept {
  if (block != nullptr) --hostBlocks;
  std::free(block);  // which is counted below
}

}  // namespace

MemoryRefusal::MemoryRefusal(std::size_t number, Refused which) noexcept {
  state = {true, which, number, 0, nullptr, 0};
}

MemoryRefusal::~MemoryRefusal() { state.isActive = false; }

std::size_t MemoryRefusal::count() noexcept { return state.count; }

std::size_t liveHostBlocks() noexcept { return hostBlocks; }

std::size_t startPeakBytes() noexcept { return peak = bytesInUse.load(); }

std::size_t peakBytes() noexcept { return peak; }

}  // namespace tarvel::lua::refusal

using namespace tarvel::lua::refusal;

extern "C" {
void* __real_realloc(void* block, std::size_t bytes);
void* __wrap_realloc(void* block, std::size_t bytes) {
  if (isRefused(block, bytes)) return nullptr;
  const std::size_t before = malloc_usable_size(block);
  void* const resized = __real_realloc(block, bytes);
  if (resized == nullptr) return nullptr;
  bytesInUse -= before;
  countBlock(resized);
  return resized;
}

void __real_free(void* block);
void __wrap_free(void* block) {
  bytesInUse -= malloc_usable_size(block);
  __real_free(block);
}

void* __real_mmap(void* at, std::size_t bytes, int access, int kind, int file, off_t offset);
void* __wrap_mmap(void* at, std::size_t bytes, int access, int kind, int file, off_t offset) {
  if (!isRefused(at, bytes)) return __real_mmap(at, bytes, access, kind, file, offset);
  errno = ENOMEM;
  return MAP_FAILED;
}
}

void* operator new(std::size_t bytes) { return newHostBlockOrThrow(bytes); }
void* operator new[](std::size_t bytes) { return newHostBlockOrThrow(bytes); }
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
  return newHostBlock(bytes);
}
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept {
  return newHostBlock(bytes);
}
void operator delete(void* block) noexcept { deleteHostBlock(block); }
void operator delete[](void* block) noexcept { deleteHostBlock(block); }
void operator delete(void* block, std::size_t) noexcept { deleteHostBlock(block); }
void operator delete[](void* block, std::size_t) noexcept { deleteHostBlock(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { deleteHostBlock(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { deleteHostBlock(block); }
