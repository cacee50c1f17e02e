#include "lua/value/heap.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>

#include "lua/value/memory_budget.h"
#include "lua/value/value.h"

// The parts of the heap that every build has: owners, memory counts, resources, large blocks. Small
// blocks: slabs.cpp.

namespace tarvel::lua::internal {

Heap* Heap::create() { return new Heap; }

void Heap::removeOwner() noexcept {
  if (--owners_ == 0) delete this;
}

// ---- Counting memory ----------------------------------------------------------------------------

bool Heap::tryCharge(std::size_t bytes) noexcept {
  if (chargedBytes_ > memoryLimit_ || bytes > memoryLimit_ - chargedBytes_) return false;
  if (!takeMemory(bytes)) return false;
  chargedBytes_ += bytes;
  peakBytes_ = std::max(peakBytes_, chargedBytes_);
  return true;
}

void Heap::charge(std::size_t bytes) {
  if (tryCharge(bytes)) return;
  if (bytes <= memoryLimit_ && canEverTakeMemory(bytes)) reclaimSlabs();
  if (!tryCharge(bytes)) throw std::bad_alloc();
}

void Heap::discharge(std::size_t bytes) noexcept {
  chargedBytes_ -= bytes;
  giveBackMemory(bytes);
}

#ifdef TARVELLUA_CHECKED_HEAP

namespace {

std::atomic<std::size_t> blocksAlive{0};
std::atomic<std::size_t> blocksAbandoned{0};

void countAllocation() noexcept { ++blocksAlive; }
void countRelease() noexcept { --blocksAlive; }
void countAbandoned() noexcept { ++blocksAbandoned; }

}  // namespace

std::size_t Heap::liveBlocks() noexcept { return blocksAlive; }
std::size_t Heap::abandonedBlocks() noexcept { return blocksAbandoned; }

#else

namespace {

void countAllocation() noexcept {}
void countRelease() noexcept {}
void countAbandoned() noexcept {}

}  // namespace

std::size_t Heap::liveBlocks() noexcept { return 0; }
std::size_t Heap::abandonedBlocks() noexcept { return 0; }

#endif

// ---- Resources ----------------------------------------------------------------------------------

HeapResource::HeapResource(Heap& heap) noexcept { insertBefore(heap.openResources_); }

// Closing one may destroy others, and make new ones.
void Heap::closeResources() noexcept {
  while (openResources_.next != &openResources_) {
    auto* const resource = static_cast<HeapResource*>(openResources_.next);
    resource->unlink();
    resource->insertBefore(closedResources_);
    resource->close();
  }
}

// ---- Large blocks -------------------------------------------------------------------------------

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
  while (closedResources_.next != &closedResources_) {
    delete static_cast<HeapResource*>(closedResources_.next);
  }
  while (large_ != nullptr) {
    LargeBlock* const block = large_;
    large_ = block->next;
    countRelease();
    countAbandoned();
    std::free(block);
  }
  releaseRegions();
  discharge(chargedBytes_);
}

Heap& Heap::ofLarge(const void* block) noexcept {
  return *(static_cast<const LargeBlock*>(block) - 1)->heap;
}

#ifdef TARVELLUA_CHECKED_HEAP
// Every block is a large one here.
Heap& Heap::of(const void* block) noexcept { return ofLarge(block); }
#endif

void* Heap::allocateLarge(std::size_t bytes) {
  noteLarge(bytes);
  charge(LargeBlock::cost(bytes));
  LargeBlock* const block = resizeLarge(nullptr, bytes);
  if (block == nullptr) {
    discharge(LargeBlock::cost(bytes));
    throw std::bad_alloc();
  }
  new (block) LargeBlock{nullptr, large_, this};
  if (large_ != nullptr) large_->previous = block;
  large_ = block;
  countAllocation();
  return block + 1;
}

// Whoever asks for so much room fills it, which takes longer than a step. Small blocks are left to
// those who ask for them, as checked builds do not tell them from large ones.
void Heap::noteLarge(std::size_t bytes) noexcept {
  if (bytes > kSmallLimit) meter_.note(stepsForBytes(bytes));
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
  countRelease();
  std::free(block);
}

void* Heap::reallocate(void* block, std::size_t oldBytes, std::size_t newBytes) {
  if (kHasSlabs && oldBytes <= kSmallLimit) {
    void* const moved = allocate(newBytes);
    std::copy_n(static_cast<const std::byte*>(block), oldBytes, static_cast<std::byte*>(moved));
    release(block, oldBytes);
    return moved;
  }
  noteLarge(newBytes);
  charge(newBytes - oldBytes);
  LargeBlock* const header = resizeLarge(static_cast<LargeBlock*>(block) - 1, newBytes);
  if (header == nullptr) {
    discharge(newBytes - oldBytes);
    throw std::bad_alloc();
  }
  if (header->next != nullptr) header->next->previous = header;
  (header->previous != nullptr ? header->previous->next : large_) = header;
  return header + 1;
}

}  // namespace tarvel::lua::internal
