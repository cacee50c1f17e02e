#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "lua/value/heap.h"
#include "lua/value/heap_resource.h"
#include "lua/value/value.h"

namespace tarvel::lua::internal {

class NativeClass;

// What a native object stands for. The library derives open files and output streams.
struct NativeHandle : HeapResource {
  explicit NativeHandle(Heap& heap) noexcept : HeapResource(heap) {}
};

// An object of the host's.
struct HostObjectHandle final : NativeHandle {
  // Throws std::bad_alloc when there is no room for it.
  HostObjectHandle(Heap& handleHeap, const std::shared_ptr<void>& hostObject)
      : NativeHandle(handleHeap), object(hostObject), address(hostObject.get()), heap(handleHeap) {
    heap.charge(kCharge);
  }
  // The object goes last: its destructor can run scripts and end the interpreter.
  ~HostObjectHandle() override {
    leaveHeap();
    heap.discharge(kCharge);
  }

  std::shared_ptr<void> object;  // empty once the interpreter has ended
  const void* const address;     // of the object, also then

 private:
  // The handle, its place in the class and what the system's allocator adds, in bytes.
  static constexpr std::size_t kCharge = 192;

  void close() noexcept override { const std::shared_ptr<void> closed = std::move(object); }

  Heap& heap;
};

// Something outside the heap that a script holds. Releasing the last reference destroys the handle,
// which closes a file.
struct NativeObject : Object {
  enum class Kind : std::uint8_t { File = 0, Stream = 1, Host = 2 };

  const Kind kind;
  NativeClass& type;
  std::unique_ptr<NativeHandle> handle;  // of the concrete type that `kind` says; may be empty

  NativeObject(Kind objectKind, NativeClass& objectType, std::unique_ptr<NativeHandle> objectHandle)
      : kind(objectKind), type(objectType), handle(std::move(objectHandle)) {}

  // Returns an owned reference.
  static NativeObject* create(Heap& heap, Kind kind, NativeClass& type,
                              std::unique_ptr<NativeHandle> handle);

  // For the moment in which nothing refers to the object any more: from then on another one may
  // stand for what this one stood for.
  void leaveClass() const noexcept;
};

}  // namespace tarvel::lua::internal
