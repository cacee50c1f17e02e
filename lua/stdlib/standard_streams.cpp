#include <cstdio>
#include <memory>

#include "lua/stdlib/library.h"
#include "lua/stdlib/native_handles.h"
#include "lua/stdlib/standard_output.h"

// io.stderr and io.stdout.

namespace tarvel::lua::internal {

namespace {

bool writeStandardError(std::string_view text) noexcept {
  return std::fwrite(text.data(), 1, text.size(), stderr) == text.size();
}

Value makeStream(Heap& heap, StreamHandle::Writer writer) {
  return Value(NativeObject::create(heap, NativeObject::Kind::Stream,
                                    std::make_unique<StreamHandle>(heap, writer)));
}

}  // namespace

Value makeStandardError(Heap& heap) { return makeStream(heap, writeStandardError); }

Value makeStandardOutput(Heap& heap) { return makeStream(heap, writeStandardOutput); }

}  // namespace tarvel::lua::internal
