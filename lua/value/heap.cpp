#include "lua/value/heap.h"

#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <new>
#include <string>

#include "lua/value/value.h"

namespace tarvel::lua::internal {

namespace {

// Below this nobody asks how much memory the machine has.
constexpr std::size_t kUnquestionedBytes = std::size_t{64} << 20;

// What is left of the address space that the process may use.
std::size_t addressSpaceLeft() {
  rlimit limit{};
  if (getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) {
    return std::numeric_limits<std::size_t>::max();
  }
  std::ifstream file("/proc/self/statm");
  std::size_t pages = 0;
  file >> pages;
  const std::size_t used = pages * static_cast<std::size_t>(std::max(sysconf(_SC_PAGESIZE), 1L));
  return limit.rlim_cur > used ? limit.rlim_cur - used : 0;
}

std::size_t readLimitFile(const char* path) {
  std::ifstream file(path);
  std::size_t bytes = 0;
  return file >> bytes ? bytes : std::numeric_limits<std::size_t>::max();
}

// What one interpreter may take: most of the memory that this process can get. Beyond it the system
// would end the process instead of refusing, so the refusal has to be ours.
std::size_t memoryBudget() {
  static const std::size_t budget = [] {
    const auto pages = static_cast<std::size_t>(std::max(sysconf(_SC_PHYS_PAGES), 1L));
    const auto pageBytes = static_cast<std::size_t>(std::max(sysconf(_SC_PAGESIZE), 1L));
    const std::size_t available =
        std::min({pages * pageBytes, addressSpaceLeft(), readLimitFile("/sys/fs/cgroup/memory.max"),
                  readLimitFile("/sys/fs/cgroup/memory/memory.limit_in_bytes")});
    return available / 10 * 8;
  }();
  return budget;
}

}  // namespace

Heap* Heap::create() { return new Heap; }

void Heap::removeOwner() noexcept {
  if (--owners_ != 0) return;
  destroyWaitingObjects();
  delete this;
}

bool Heap::tryCharge(std::size_t bytes) noexcept {
  if (bytes > kUnquestionedBytes || systemBytes_ + bytes > kUnquestionedBytes) {
    const std::size_t budget = memoryBudget();
    if (bytes > budget || systemBytes_ > budget - bytes) return false;
  }
  systemBytes_ += bytes;
  return true;
}

void Heap::charge(std::size_t bytes) {
  if (!tryCharge(bytes)) throw std::bad_alloc();
}

#ifdef TARVELLUA_CHECKED_HEAP

namespace {

std::atomic<std::size_t> blockCount{0};

}  // namespace

Heap::~Heap() = default;

// A block does not know its heap here, and needs not to: all heaps allocate alike.
Heap& Heap::of(const void*) noexcept {
  static Heap* const shared = create();
  return *shared;
}

void* Heap::allocateLarge(std::size_t bytes) {
  if (bytes > memoryBudget()) throw std::bad_alloc();
  void* block = std::malloc(bytes);
  if (block == nullptr) throw std::bad_alloc();
  ++blockCount;
  return block;
}

void Heap::releaseLarge(void* block, std::size_t) noexcept {
  --blockCount;
  std::free(block);
}

void* Heap::reallocate(void* block, std::size_t, std::size_t newBytes) {
  if (newBytes > memoryBudget()) throw std::bad_alloc();
  void* moved = std::realloc(block, newBytes);
  if (moved == nullptr) throw std::bad_alloc();
  return moved;
}

std::size_t Heap::liveBlocks() noexcept { return blockCount; }

#else

// At a slab's start, which every block in it finds by rounding its address down.
struct Heap::SlabHeader {
  Heap* heap;
};

// A run of slabs taken from the system at once.
struct Heap::Region {
  Region* next;
  std::size_t bytes;
};

// In front of every large block; the list is what the heap returns with its end.
struct alignas(Heap::kGranularity) Heap::LargeBlock {
  LargeBlock* previous;
  LargeBlock* next;
  Heap* heap;
};

namespace {

constexpr std::size_t kFirstRegionBytes = std::size_t{1} << 20;
constexpr std::size_t kSmallestRegionBytes = std::size_t{256} << 10;
constexpr std::size_t kLargestRegionBytes = std::size_t{64} << 20;

std::byte* roundUp(std::byte* address, std::size_t alignment) {
  const auto value = reinterpret_cast<std::uintptr_t>(address);
  return address + (alignment - value % alignment) % alignment;
}

}  // namespace

Heap::~Heap() {
  while (large_ != nullptr) {
    LargeBlock* const block = large_;
    large_ = block->next;
    std::free(block);
  }
  while (regions_ != nullptr) {
    Region* const region = regions_;
    regions_ = region->next;
    munmap(region, region->bytes);
  }
}

Heap& Heap::of(const void* smallBlock) noexcept {
  const auto address = reinterpret_cast<std::uintptr_t>(smallBlock);
  return *reinterpret_cast<const SlabHeader*>(address - address % kSlabBytes)->heap;
}

void* Heap::carve(std::size_t sizeClass) {
  const std::size_t bytes = std::max<std::size_t>(sizeClass, 1) * kGranularity;
  if (static_cast<std::size_t>(slabEnd_ - bump_) < bytes) {
    try {
      startSlab();
    } catch (const std::bad_alloc&) {
      return splitLargerBlock(std::max<std::size_t>(sizeClass, 1));
    }
  }
  void* const block = bump_;
  bump_ += bytes;
  return block;
}

// With no more memory to be had, free blocks of larger classes serve. Throws std::bad_alloc when
// there are none either.
void* Heap::splitLargerBlock(std::size_t sizeClass) {
  for (std::size_t larger = sizeClass + 1; larger < free_.size(); ++larger) {
    FreeBlock* const block = free_[larger];
    if (block == nullptr) continue;
    free_[larger] = block->next;
    release(reinterpret_cast<std::byte*>(block) + sizeClass * kGranularity,
            (larger - sizeClass) * kGranularity);
    return block;
  }
  throw std::bad_alloc();
}

void Heap::startSlab() {
  if (static_cast<std::size_t>(regionEnd_ - regionNext_) < kSlabBytes) addRegion();
  new (regionNext_) SlabHeader{this};
  bump_ = regionNext_ + kGranularity;
  regionNext_ += kSlabBytes;
  slabEnd_ = regionNext_;
}

// Tries smaller regions before it gives up.
void Heap::addRegion() {
  std::size_t bytes =
      regions_ == nullptr ? kFirstRegionBytes : std::min(regions_->bytes * 2, kLargestRegionBytes);
  void* memory = MAP_FAILED;
  for (;; bytes /= 2) {
    if (bytes < kSmallestRegionBytes) throw std::bad_alloc();
    if (!tryCharge(bytes)) continue;
    memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory != MAP_FAILED) break;
    systemBytes_ -= bytes;
  }
  regions_ = new (memory) Region{regions_, bytes};
  std::byte* const start = static_cast<std::byte*>(memory);
  regionNext_ = roundUp(start + sizeof(Region), kSlabBytes);
  regionEnd_ = start + bytes;
}

void* Heap::allocateLarge(std::size_t bytes) {
  charge(bytes);
  auto* const block = static_cast<LargeBlock*>(std::malloc(sizeof(LargeBlock) + bytes));
  if (block == nullptr) {
    systemBytes_ -= bytes;
    throw std::bad_alloc();
  }
  new (block) LargeBlock{nullptr, large_, this};
  if (large_ != nullptr) large_->previous = block;
  large_ = block;
  return block + 1;
}

void Heap::releaseLarge(void* memory, std::size_t bytes) noexcept {
  auto* const block = static_cast<LargeBlock*>(memory) - 1;
  if (block->next != nullptr) block->next->previous = block->previous;
  (block->previous != nullptr ? block->previous->next : block->heap->large_) = block->next;
  block->heap->systemBytes_ -= bytes;
  std::free(block);
}

void* Heap::reallocate(void* block, std::size_t oldBytes, std::size_t newBytes) {
  if (oldBytes <= kSmallLimit || newBytes <= kSmallLimit) {
    void* const moved = allocate(newBytes);
    std::copy_n(static_cast<const std::byte*>(block), std::min(oldBytes, newBytes),
                static_cast<std::byte*>(moved));
    release(block, oldBytes);
    return moved;
  }
  if (newBytes > oldBytes) charge(newBytes - oldBytes);
  auto* const header = static_cast<LargeBlock*>(
      std::realloc(static_cast<LargeBlock*>(block) - 1, sizeof(LargeBlock) + newBytes));
  if (header == nullptr) {
    if (newBytes > oldBytes) systemBytes_ -= newBytes - oldBytes;
    throw std::bad_alloc();
  }
  if (newBytes < oldBytes) systemBytes_ -= oldBytes - newBytes;
  if (header->next != nullptr) header->next->previous = header;
  (header->previous != nullptr ? header->previous->next : large_) = header;
  return header + 1;
}

std::size_t Heap::liveBlocks() noexcept { return 0; }

#endif

}  // namespace tarvel::lua::internal
