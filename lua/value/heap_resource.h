#pragma once

namespace tarvel::lua::internal {

class Heap;

// One place in a ring of resources.
struct ResourceLink {
  ResourceLink* previous = this;
  ResourceLink* next = this;

  ResourceLink() noexcept = default;
  ResourceLink(const ResourceLink&) = delete;
  ResourceLink& operator=(const ResourceLink&) = delete;

  void insertBefore(ResourceLink& other) noexcept {
    previous = other.previous;
    next = &other;
    previous->next = this;
    other.previous = this;
  }
  void unlink() noexcept {
    previous->next = next;
    next->previous = previous;
    previous = next = this;
  }
};

// What the objects of a heap hold outside of it: syntax trees, functions of the host, open files.
// Usually a resource goes with the last reference to its object. The heap lists all of them, so
// that the end of an interpreter can give back also those that a circle of objects still refers to.
class HeapResource : private ResourceLink {
 public:
  HeapResource(const HeapResource&) = delete;
  HeapResource& operator=(const HeapResource&) = delete;
  virtual ~HeapResource() { unlink(); }

 protected:
  // `heap` must outlive the resource.
  explicit HeapResource(Heap& heap) noexcept;

  // For one that runs code of the host's while it is destroyed: first leaves the list, because that
  // code may end the interpreter.
  void leaveHeap() noexcept { unlink(); }

 private:
  friend class Heap;

  // Gives back what it holds. Called once, when the interpreter has ended: from then on nothing
  // uses the resource but to destroy it.
  virtual void close() noexcept = 0;
};

}  // namespace tarvel::lua::internal
