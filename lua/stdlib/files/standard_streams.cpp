#include "lua/stdlib/files/standard_streams.h"

#include <cstdio>
#include <exception>
#include <functional>
#include <memory>
#include <string>

#include "lua/lua_vm_impl.h"
#include "lua/stdlib/files/native_handles.h"
#include "lua/value/metered_work.h"

namespace tarvel::lua::internal {

namespace {

void hand(const std::function<void(std::string_view)>& receiver, std::string_view text, Site site) {
  try {
    receiver(text);
  } catch (const std::exception& error) {
    failRuntime(site, std::string(exceptionText(error)), FailureKind::Host);
  }
}

}  // namespace

bool writeToStandard(StandardStream stream, LuaVM& vm, std::string_view text, Site site) {
  LuaVM::Impl& interpreter = LuaVM::Impl::of(vm);
  const bool isOutput = stream == StandardStream::Output;
  const LuaOptions& options = interpreter.options;
  const auto& receiver = isOutput ? options.output : options.errorOutput;
  std::FILE* const file = isOutput ? stdout : stderr;
  bool isStored = true;
  inPieces(interpreter.heap.meter(), text, site, [&](std::string_view piece) {
    if (receiver) return hand(receiver, piece, site);
    if (std::fwrite(piece.data(), 1, piece.size(), file) != piece.size()) isStored = false;
  });
  return isStored;
}

Value makeStandardStream(Heap& heap, NativeClass& type, StandardStream stream) {
  return Value(NativeObject::create(heap, NativeObject::Kind::Stream, type,
                                    std::make_unique<StreamHandle>(heap, stream)));
}

}  // namespace tarvel::lua::internal
