#include "lua/value/heap.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <cstdlib>
#include <limits>
#include <new>

#include "lua/value/value.h"

namespace tarvel::lua::internal {

namespace {

// Below this nobody asks how much memory the machine has.
constexpr std::size_t kUnquestionedBytes = std::size_t{64} << 20;

// The number that a file of the system starts with; the largest one where there is none. Needs no
// memory.
std::size_t readNumber(const char* path) noexcept {
  std::array<char, 32> text{};
  const int file = open(path, O_RDONLY | O_CLOEXEC);
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

// What all interpreters of this process together may take: most of the memory that it can get.
// Beyond it the system would end the process instead of refusing, so the refusal has to be ours.
std::size_t memoryBudget() noexcept {
  static const std::size_t budget =
      std::min({systemValue(_SC_PHYS_PAGES) * systemValue(_SC_PAGESIZE), addressSpaceLeft(),
                readNumber("/sys/fs/cgroup/memory.max"),
                readNumber("/sys/fs/cgroup/memory/memory.limit_in_bytes")}) /
      10 * 8;
  return budget;
}

// What all heaps of the process have taken from the system or been charged with.
std::atomic<std::size_t> processBytes{0};

}  // namespace

Heap* Heap::create() { return new Heap; }

void Heap::removeOwner() noexcept {
  if (--owners_ != 0) return;
  destroyWaitingObjects();
  delete this;
}

bool Heap::tryCharge(std::size_t bytes) noexcept {
  if (bytes > kUnquestionedBytes && bytes > memoryBudget()) return false;
  const std::size_t total = processBytes.fetch_add(bytes, std::memory_order_relaxed) + bytes;
  if (total > kUnquestionedBytes && total > memoryBudget()) {
    processBytes.fetch_sub(bytes, std::memory_order_relaxed);
    return false;
  }
  chargedBytes_ += bytes;
  return true;
}

void Heap::charge(std::size_t bytes) {
  if (tryCharge(bytes)) return;
  if (bytes <= memoryBudget()) reclaimSlabs();
  if (!tryCharge(bytes)) throw std::bad_alloc();
}

void Heap::discharge(std::size_t bytes) noexcept {
  chargedBytes_ -= bytes;
  processBytes.fetch_sub(bytes, std::memory_order_relaxed);
}

#ifdef TARVELLUA_CHECKED_HEAP

namespace {

std::atomic<std::size_t> blockCount{0};

}  // namespace

Heap::~Heap() { discharge(chargedBytes_); }

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

// There are no slabs here.
void Heap::reclaimSlabs() noexcept {}

std::size_t Heap::liveBlocks() noexcept { return blockCount; }

#else

// At a slab's start, which every block in it finds by rounding its address down.
struct Heap::SlabHeader {
  Heap* heap;
  std::size_t freeBytes;  // in its free blocks; of meaning only while slabs are reclaimed
};

namespace {

constexpr std::size_t kSlabBlockBytes = Heap::kSlabBytes - Heap::kGranularity;
constexpr std::size_t kFirstRegionBytes = std::size_t{1} << 20;
constexpr std::size_t kSmallestRegionBytes = std::size_t{256} << 10;
constexpr std::size_t kLargestRegionBytes = std::size_t{64} << 20;

std::byte* roundUp(std::byte* address, std::size_t alignment) {
  const auto value = reinterpret_cast<std::uintptr_t>(address);
  return address + (alignment - value % alignment) % alignment;
}

std::size_t bytesOfClass(std::size_t sizeClass) {
  return std::max<std::size_t>(sizeClass, 1) * Heap::kGranularity;
}

// The header of a block's slab.
template <class SlabHeader>
SlabHeader& slabOf(const void* block) noexcept {
  const auto address = reinterpret_cast<std::uintptr_t>(block);
  return *reinterpret_cast<SlabHeader*>(address - address % Heap::kSlabBytes);
}

}  // namespace

// A run of slabs taken from the system at once.
struct Heap::Region {
  Region* next;
  std::size_t bytes;
  std::byte* unstarted;  // where the next slab would start

  std::byte* firstSlab() noexcept {
    return roundUp(reinterpret_cast<std::byte*>(this + 1), kSlabBytes);
  }
  bool hasRoom() noexcept {
    const std::byte* const end = reinterpret_cast<std::byte*>(this) + bytes;
    return static_cast<std::size_t>(end - unstarted) >= kSlabBytes;
  }
  template <class Visit>
  void forEachSlab(Visit visit) {
    for (std::byte* slab = firstSlab(); slab != unstarted; slab += kSlabBytes) {
      visit(*reinterpret_cast<SlabHeader*>(slab));
    }
  }
};

// In front of every large block; the list is what the heap returns with its end.
struct alignas(Heap::kGranularity) Heap::LargeBlock {
  LargeBlock* previous;
  LargeBlock* next;
  Heap* heap;

  // What a block of so many bytes costs, with what the system's allocator adds.
  static std::size_t cost(std::size_t bytes) noexcept {
    return bytes + sizeof(LargeBlock) + kGranularity;
  }
};

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
  discharge(chargedBytes_);
}

Heap& Heap::of(const void* smallBlock) noexcept { return *slabOf<SlabHeader>(smallBlock).heap; }

// ---- Small blocks -------------------------------------------------------------------------------

// With no more memory to be had, free blocks of larger classes serve, and then slabs in which
// nothing is in use any more.
void* Heap::carve(std::size_t sizeClass) {
  const std::size_t bytes = bytesOfClass(sizeClass);
  if (static_cast<std::size_t>(slabEnd_ - bump_) < bytes && !startSlab()) {
    if (void* const block = splitLargerBlock(bytes / kGranularity)) return block;
    reclaimSlabs();
    if (!startSlab()) throw std::bad_alloc();
  }
  void* const block = bump_;
  bump_ += bytes;
  return block;
}

// Null when there is none.
void* Heap::splitLargerBlock(std::size_t sizeClass) noexcept {
  for (std::size_t larger = sizeClass + 1; larger < free_.size(); ++larger) {
    FreeBlock* const block = free_[larger];
    if (block == nullptr) continue;
    free_[larger] = block->next;
    release(reinterpret_cast<std::byte*>(block) + sizeClass * kGranularity,
            (larger - sizeClass) * kGranularity);
    return block;
  }
  return nullptr;
}

bool Heap::startSlab() noexcept {
  leaveSlab();
  if (freeSlabs_ != nullptr) {
    bump_ = reinterpret_cast<std::byte*>(freeSlabs_);
    freeSlabs_ = freeSlabs_->next;
  } else if ((regions_ != nullptr && regions_->hasRoom()) || addRegion()) {
    new (regions_->unstarted) SlabHeader{this, 0};
    bump_ = regions_->unstarted + kGranularity;
    regions_->unstarted += kSlabBytes;
  } else {
    return false;
  }
  slabEnd_ = bump_ + kSlabBlockBytes;
  return true;
}

// The unused rest of the current slab becomes free blocks: blocks make up the whole of every slab
// but the current one.
void Heap::leaveSlab() noexcept {
  while (bump_ != slabEnd_) {
    const std::size_t bytes = std::min(kSmallLimit, static_cast<std::size_t>(slabEnd_ - bump_));
    release(bump_, bytes);
    bump_ += bytes;
  }
  bump_ = slabEnd_ = nullptr;
}

// Tries smaller regions before it gives up.
bool Heap::addRegion() noexcept {
  std::size_t bytes =
      regions_ == nullptr ? kFirstRegionBytes : std::min(regions_->bytes * 2, kLargestRegionBytes);
  void* memory = MAP_FAILED;
  for (;; bytes /= 2) {
    if (bytes < kSmallestRegionBytes) return false;
    if (!tryCharge(bytes)) continue;
    memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory != MAP_FAILED) break;
    discharge(bytes);
  }
  regions_ = new (memory) Region{regions_, bytes, nullptr};
  regions_->unstarted = regions_->firstSlab();
  return true;
}

// ---- Slabs in which nothing is in use any more --------------------------------------------------

// Returns whole regions to the system and keeps other free slabs for blocks of any size. The time
// is proportional to the number of free blocks; so this is done only where an allocation would fail
// otherwise.
void Heap::reclaimSlabs() noexcept {
  leaveSlab();
  countFreeBytes();
  forgetBlocksOfFreeSlabs();
  releaseFreeRegions();
}

void Heap::countFreeBytes() noexcept {
  for (Region* region = regions_; region != nullptr; region = region->next) {
    region->forEachSlab([](SlabHeader& slab) { slab.freeBytes = 0; });
  }
  for (FreeBlock* slab = freeSlabs_; slab != nullptr; slab = slab->next) {
    slabOf<SlabHeader>(slab).freeBytes = kSlabBlockBytes;
  }
  for (std::size_t sizeClass = 0; sizeClass < free_.size(); ++sizeClass) {
    for (FreeBlock* block = free_[sizeClass]; block != nullptr; block = block->next) {
      slabOf<SlabHeader>(block).freeBytes += bytesOfClass(sizeClass);
    }
  }
}

void Heap::forgetBlocksOfFreeSlabs() noexcept {
  for (FreeBlock*& list : free_) {
    FreeBlock** link = &list;
    for (FreeBlock* block = list; block != nullptr; block = block->next) {
      if (slabOf<SlabHeader>(block).freeBytes == kSlabBlockBytes) continue;
      *link = block;
      link = &block->next;
    }
    *link = nullptr;
  }
}

void Heap::releaseFreeRegions() noexcept {
  freeSlabs_ = nullptr;
  Region** link = &regions_;
  while (Region* const region = *link) {
    bool inUse = false;
    region->forEachSlab([&](SlabHeader& slab) { inUse |= slab.freeBytes != kSlabBlockBytes; });
    if (!inUse) {
      *link = region->next;
      discharge(region->bytes);
      munmap(region, region->bytes);
      continue;
    }
    region->forEachSlab([&](SlabHeader& slab) {
      if (slab.freeBytes == kSlabBlockBytes) freeSlabs_ = new (&slab + 1) FreeBlock{freeSlabs_};
    });
    link = &region->next;
  }
}

// ---- Large blocks -------------------------------------------------------------------------------

void* Heap::allocateLarge(std::size_t bytes) {
  charge(LargeBlock::cost(bytes));
  LargeBlock* const block = resizeLarge(nullptr, bytes);
  if (block == nullptr) {
    discharge(LargeBlock::cost(bytes));
    throw std::bad_alloc();
  }
  new (block) LargeBlock{nullptr, large_, this};
  if (large_ != nullptr) large_->previous = block;
  large_ = block;
  return block + 1;
}

// Null when the system refuses, also once it has got free slabs back. A null block makes a new one.
Heap::LargeBlock* Heap::resizeLarge(LargeBlock* block, std::size_t bytes) noexcept {
  void* resized = std::realloc(block, sizeof(LargeBlock) + bytes);
  if (resized == nullptr) {
    reclaimSlabs();
    resized = std::realloc(block, sizeof(LargeBlock) + bytes);
  }
  return static_cast<LargeBlock*>(resized);
}

void Heap::releaseLarge(void* memory, std::size_t bytes) noexcept {
  auto* const block = static_cast<LargeBlock*>(memory) - 1;
  if (block->next != nullptr) block->next->previous = block->previous;
  (block->previous != nullptr ? block->previous->next : block->heap->large_) = block->next;
  block->heap->discharge(LargeBlock::cost(bytes));
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
  LargeBlock* const header = resizeLarge(static_cast<LargeBlock*>(block) - 1, newBytes);
  if (header == nullptr) {
    if (newBytes > oldBytes) discharge(newBytes - oldBytes);
    throw std::bad_alloc();
  }
  if (newBytes < oldBytes) discharge(oldBytes - newBytes);
  if (header->next != nullptr) header->next->previous = header;
  (header->previous != nullptr ? header->previous->next : large_) = header;
  return header + 1;
}

std::size_t Heap::liveBlocks() noexcept { return 0; }

#endif

}  // namespace tarvel::lua::internal
