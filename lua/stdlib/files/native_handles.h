#pragma once

#include <memory>
#include <utility>

#include "lua/stdlib/files/buffered_file.h"
#include "lua/stdlib/files/standard_streams.h"
#include "lua/value/memory_charge.h"
#include "lua/value/native_object.h"

// What the native objects of the library hold.

namespace tarvel::lua::internal {

// NativeObject::Kind::File.
struct FileHandle final : NativeHandle {
  FileHandle(Heap& heap, std::unique_ptr<BufferedFile> openFile)
      : NativeHandle(heap), file(std::move(openFile)), memory_(heap) {
    memory_.add(2 * BufferedFile::kBufferBytes);
  }

  std::unique_ptr<BufferedFile> file;  // empty once closed

  void forgetFile() noexcept {
    file.reset();
    memory_.clear();
  }

 private:
  void close() noexcept override { forgetFile(); }

  MemoryCharge memory_;  // for the file's buffers
};

// NativeObject::Kind::Stream.
struct StreamHandle final : NativeHandle {
  StreamHandle(Heap& heap, StandardStream standardStream) noexcept
      : NativeHandle(heap), stream(standardStream) {}

  StandardStream stream;

 private:
  void close() noexcept override {}
};

}  // namespace tarvel::lua::internal
