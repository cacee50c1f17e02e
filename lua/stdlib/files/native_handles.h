#pragma once

#include <memory>
#include <string_view>
#include <utility>

#include "lua/stdlib/files/buffered_file.h"
#include "lua/value/native_object.h"

// What the native objects of the library hold.

namespace tarvel::lua::internal {

// NativeObject::Kind::File.
struct FileHandle final : NativeHandle {
  FileHandle(Heap& heap, std::unique_ptr<BufferedFile> openFile) noexcept
      : NativeHandle(heap), file(std::move(openFile)) {}

  std::unique_ptr<BufferedFile> file;  // empty once closed

 private:
  void close() noexcept override { file.reset(); }
};

// NativeObject::Kind::Stream.
struct StreamHandle final : NativeHandle {
  // Returns false when the stream could not take all of the text.
  using Writer = bool (*)(std::string_view text) noexcept;

  StreamHandle(Heap& heap, Writer writer) noexcept : NativeHandle(heap), write(writer) {}

  Writer write;  // null for an object without a stream

 private:
  void close() noexcept override {}
};

}  // namespace tarvel::lua::internal
