#include "lua/stdlib/files/standard_streams.h"

#include <cstdio>
#include <memory>

#include "lua/stdlib/files/native_handles.h"

namespace tarvel::lua::internal {

bool writeStandardOutput(std::string_view text) noexcept {
  return std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
}

namespace {

bool writeStandardError(std::string_view text) noexcept {
  return std::fwrite(text.data(), 1, text.size(), stderr) == text.size();
}

Value makeStream(Heap& heap, NativeClass& type, StreamHandle::Writer writer) {
  return Value(NativeObject::create(heap, NativeObject::Kind::Stream, type,
                                    std::make_unique<StreamHandle>(heap, writer)));
}

}  // namespace

Value makeStandardOutput(Heap& heap, NativeClass& type) {
  return makeStream(heap, type, writeStandardOutput);
}

Value makeStandardError(Heap& heap, NativeClass& type) {
  return makeStream(heap, type, writeStandardError);
}

}  // namespace tarvel::lua::internal
