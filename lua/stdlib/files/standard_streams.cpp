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

Value makeStream(Heap& heap, StreamHandle::Writer writer) {
  return Value(NativeObject::create(heap, NativeObject::Kind::Stream,
                                    std::make_unique<StreamHandle>(heap, writer)));
}

}  // namespace

Value makeStandardOutput(Heap& heap) { return makeStream(heap, writeStandardOutput); }

Value makeStandardError(Heap& heap) { return makeStream(heap, writeStandardError); }

}  // namespace tarvel::lua::internal
