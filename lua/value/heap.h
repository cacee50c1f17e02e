#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "lua/value/heap_resource.h"
#include "lua/value/work_meter.h"

namespace tarvel::lua::internal {

// The memory of one interpreter: size-class free lists over aligned slabs for small blocks, the
// system's allocator for large ones. Every block belongs to exactly one heap and can find it again
// from its own address, so a value can be dropped by whoever holds it last, also when that is a
// host after the interpreter is gone.
//
// Not thread-safe, like the interpreter it serves. A heap lives as long as it has owners (the
// interpreter and every function handle that crossed to the host); with the last owner it returns
// all its memory and resources, also those in circles of objects.
//
// Free lists hide leaks and use after release from the sanitizers. With TARVELLUA_CHECKED_HEAP
// every block is a block of the system's allocator instead, and blocks are counted.
class Heap {
 public:
  // In bytes. Every block is aligned to the granularity; those larger than the limit come from the
  // system's allocator; a slab's size is also its alignment.
  static constexpr std::size_t kGranularity = 16;
  static constexpr std::size_t kSmallLimit = 512;
  static constexpr std::size_t kSlabBytes = 1 << 16;
#ifdef TARVELLUA_CHECKED_HEAP
  static constexpr bool kHasSlabs = false;
#else
  static constexpr bool kHasSlabs = true;
#endif

  // A new heap with one owner.
  static Heap* create();
  void addOwner() noexcept { ++owners_; }
  void removeOwner() noexcept;

  // Closes all resources, in the order in which they were made; see HeapResource::close.
  void closeResources() noexcept;

  // The heap that a small block (at most kSmallLimit bytes) belongs to, or one of any size.
  static Heap& of(const void* smallBlock) noexcept;
  static Heap& of(const void* block, std::size_t bytes) noexcept {
    return kHasSlabs && bytes <= kSmallLimit ? of(block) : ofLarge(block);
  }

  // Throws std::bad_alloc when the system refuses or what this process may take of the machine's
  // memory is used up.
  void* allocate(std::size_t bytes) {
    if constexpr (kHasSlabs) {
      if (bytes <= kSmallLimit) {
        const std::size_t sizeClass = (bytes + kGranularity - 1) / kGranularity;
        if (FreeBlock* block = free_[sizeClass]) {
          free_[sizeClass] = block->next;
          return block;
        }
        return carve(sizeClass);
      }
    }
    return allocateLarge(bytes);
  }

  // `bytes` is the size that the block was allocated with.
  static void release(void* block, std::size_t bytes) noexcept {
    if constexpr (kHasSlabs) {
      if (bytes <= kSmallLimit) {
        const std::size_t sizeClass = (bytes + kGranularity - 1) / kGranularity;
        Heap& heap = of(block);
        heap.free_[sizeClass] = new (block) FreeBlock{heap.free_[sizeClass]};
        return;
      }
    }
    releaseLarge(block, bytes);
  }

  // Moves a block to a larger size, keeping its bytes. On failure (std::bad_alloc) the old block
  // stays valid.
  void* reallocate(void* block, std::size_t oldBytes, std::size_t newBytes);

  // Counts memory that stands elsewhere against what this process may take, as MemoryCharge does
  // for as long as it lives. Throws std::bad_alloc when there is not so much left.
  void charge(std::size_t bytes);
  void discharge(std::size_t bytes) noexcept;
  // For copies that are soon gone: throws std::bad_alloc unless so much is left now.
  void requireRoom(std::size_t bytes) {
    charge(bytes);
    discharge(bytes);
  }

  // Bounds what this heap alone may take, in bytes; 0 for no bound but the process's. What it has
  // already stays.
  void limitMemory(std::size_t bytes) noexcept { memoryLimit_ = bytes == 0 ? SIZE_MAX : bytes; }
  std::size_t memoryLimit() const noexcept { return memoryLimit_; }
  std::size_t heldMemory() const noexcept { return chargedBytes_; }
  std::size_t peakMemory() const noexcept { return peakBytes_; }

  // The work of the interpreter, which the heap holds because every object can find its heap.
  WorkMeter& meter() noexcept { return meter_; }
  const WorkMeter& meter() const noexcept { return meter_; }

  // Of all heaps of the process; counted in checked builds only, 0 otherwise. The blocks that are
  // allocated and not released, and those that nothing had released when their heap ended: parts of
  // circles, or references that were lost.
  static std::size_t liveBlocks() noexcept;
  static std::size_t abandonedBlocks() noexcept;

  Heap(const Heap&) = delete;
  Heap& operator=(const Heap&) = delete;

 private:
  struct FreeBlock {
    FreeBlock* next;
  };
  struct SlabHeader;
  struct Region;
  struct LargeBlock;

  friend class HeapResource;

  Heap() = default;
  ~Heap();

  void* carve(std::size_t sizeClass);
  void* splitLargerBlock(std::size_t sizeClass) noexcept;
  bool startSlab() noexcept;
  void leaveSlab() noexcept;
  bool addRegion() noexcept;
  static Heap& ofLarge(const void* block) noexcept;
  void* allocateLarge(std::size_t bytes);
  void noteLarge(std::size_t bytes) noexcept;
  LargeBlock* resizeLarge(LargeBlock* block, std::size_t bytes) noexcept;
  static void releaseLarge(void* block, std::size_t bytes) noexcept;
  bool tryCharge(std::size_t bytes) noexcept;

  void reclaimSlabs() noexcept;
  void countFreeBytes() noexcept;
  void forgetBlocksOfFreeSlabs() noexcept;
  void releaseFreeRegions() noexcept;
  void releaseRegions() noexcept;

  std::array<FreeBlock*, kSmallLimit / kGranularity + 1> free_{};
  std::byte* bump_ = nullptr;  // the unused rest of the current slab
  std::byte* slabEnd_ = nullptr;
  FreeBlock* freeSlabs_ = nullptr;  // each the whole room of a slab in which nothing is in use
  Region* regions_ = nullptr;       // the latest first, which alone has room for more slabs
  LargeBlock* large_ = nullptr;
  ResourceLink openResources_;
  ResourceLink closedResources_;
  std::size_t chargedBytes_ = 0;  // this heap's part of what the process has taken
  std::size_t peakBytes_ = 0;     // the most that was charged
  std::size_t memoryLimit_ = SIZE_MAX;
  WorkMeter meter_;
  std::size_t owners_ = 1;
};

// One owner's share in a new heap, so that the heap goes last among an interpreter's members.
class HeapOwner {
 public:
  HeapOwner() : heap_(Heap::create()) {}
  ~HeapOwner() { heap_->removeOwner(); }
  HeapOwner(const HeapOwner&) = delete;
  HeapOwner& operator=(const HeapOwner&) = delete;
  Heap& get() const noexcept { return *heap_; }

 private:
  Heap* heap_;
};

}  // namespace tarvel::lua::internal
