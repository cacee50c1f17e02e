#pragma once

#include <cstdint>
#include <memory>

#include "lua/value/heap.h"
#include "lua/value/heap_resource.h"
#include "lua/value/value.h"

namespace tarvel::lua::internal {

// What a native object stands for. The library derives the concrete kinds: open files and output
// streams.
struct NativeHandle : HeapResource {
  explicit NativeHandle(Heap& heap) noexcept : HeapResource(heap) {}
};

// Something of the host's that a script holds. Releasing the last reference destroys the handle,
// which closes a file.
struct NativeObject : Object {
  enum class Kind : std::uint8_t { File = 0, Stream = 1 };

  Kind kind;
  std::unique_ptr<NativeHandle> handle;  // of the concrete type that `kind` says; may be empty

  NativeObject(Kind objectKind, std::unique_ptr<NativeHandle> objectHandle)
      : kind(objectKind), handle(std::move(objectHandle)) {}

  // Returns an owned reference.
  static NativeObject* create(Heap& heap, Kind kind, std::unique_ptr<NativeHandle> handle);
};

}  // namespace tarvel::lua::internal
