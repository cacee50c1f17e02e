#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <new>
#include <utility>

#include "lua/value/heap.h"

// The heap's small blocks. Checked builds have none.

namespace tarvel::lua::internal {

#ifdef TARVELLUA_CHECKED_HEAP

void Heap::reclaimSlabs() noexcept {}
void Heap::releaseRegions() noexcept {}

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
// From here on a region asks for large pages: the system then clears and maps memory in fewer
// steps, for at most one such page more than is used.
constexpr std::size_t kHugePagesFrom = std::size_t{8} << 20;
constexpr std::size_t kReclaimedBytesPerStep = 1024;

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
  std::byte* unstarted;     // where the next slab would start
  std::size_t parkedSlabs;  // of those started, free ones whose memory was given back

  bool contains(const void* block) const noexcept {
    return block > this && block < reinterpret_cast<const std::byte*>(this) + bytes;
  }

  std::byte* firstSlab() noexcept {
    return roundUp(reinterpret_cast<std::byte*>(this + 1), kSlabBytes);
  }
  bool hasRoom() noexcept {
    const std::byte* const end = reinterpret_cast<std::byte*>(this) + bytes;
    return static_cast<std::size_t>(end - unstarted) >= kSlabBytes;
  }
  // What counts as memory of the interpreter: the system lends pages only when they are used.
  std::size_t chargedBytes() noexcept {
    return static_cast<std::size_t>(unstarted - firstSlab()) - parkedSlabs * kSlabBytes;
  }
  template <class Visit>
  void forEachSlab(Visit visit) {
    for (std::byte* slab = firstSlab(); slab != unstarted; slab += kSlabBytes) {
      visit(*reinterpret_cast<SlabHeader*>(slab));
    }
  }
};

void Heap::releaseRegions() noexcept {
  while (regions_ != nullptr) {
    Region* const region = regions_;
    regions_ = region->next;
    munmap(region, region->bytes);
  }
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
    if (!tryCharge(kSlabBytes)) return false;
    bump_ = reinterpret_cast<std::byte*>(freeSlabs_);
    freeSlabs_ = freeSlabs_->next;
    Region* region = regions_;
    while (!region->contains(bump_)) region = region->next;
    --region->parkedSlabs;
  } else if (((regions_ != nullptr && regions_->hasRoom()) || addRegion()) &&
             tryCharge(kSlabBytes)) {
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
    memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory != MAP_FAILED) break;
  }
#ifdef MADV_HUGEPAGE
  if (bytes >= kHugePagesFrom) madvise(memory, bytes, MADV_HUGEPAGE);
#endif
  regions_ = new (memory) Region{regions_, bytes, nullptr, 0};
  regions_->unstarted = regions_->firstSlab();
  return true;
}

// ---- Slabs in which nothing is in use any more --------------------------------------------------

// Returns whole regions to the system, and the pages of other free slabs, which are kept for blocks
// of any size. The time is proportional to the number of free blocks; so this is done only where an
// allocation would fail otherwise.
void Heap::reclaimSlabs() noexcept {
  meter_.note(chargedBytes_ / kReclaimedBytesPerStep);
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

namespace {

// Of a free slab, all pages but the one with its header.
void giveBackPages(void* slab) noexcept {
  static const auto pageBytes = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  if (pageBytes >= Heap::kSlabBytes) return;
  madvise(static_cast<std::byte*>(slab) + pageBytes, Heap::kSlabBytes - pageBytes, MADV_DONTNEED);
}

}  // namespace

void Heap::releaseFreeRegions() noexcept {
  freeSlabs_ = nullptr;
  Region** link = &regions_;
  while (Region* const region = *link) {
    bool inUse = false;
    region->forEachSlab([&](SlabHeader& slab) { inUse |= slab.freeBytes != kSlabBlockBytes; });
    if (!inUse) {
      *link = region->next;
      discharge(region->chargedBytes());
      munmap(region, region->bytes);
      continue;
    }
    const std::size_t parkedBefore = std::exchange(region->parkedSlabs, 0);
    region->forEachSlab([&](SlabHeader& slab) {
      if (slab.freeBytes != kSlabBlockBytes) return;
      freeSlabs_ = new (&slab + 1) FreeBlock{freeSlabs_};
      ++region->parkedSlabs;
      giveBackPages(&slab);
    });
    discharge((region->parkedSlabs - parkedBefore) * kSlabBytes);
    link = &region->next;
  }
}

#endif

}  // namespace tarvel::lua::internal
