#include <tarvel/lua/lua_error.h>

#include <memory>
#include <new>
#include <string>
#include <utility>

// Failures as hosts see them.

namespace tarvel::lua {

namespace {

std::string located(const LuaError& error) {
  std::string text;
  if (!error.chunk.empty() && error.line > 0) {
    text.append(error.chunk).append(":").append(std::to_string(error.line)).append(":");
    if (error.kind == LuaError::Kind::Syntax) text.append(std::to_string(error.column)).append(":");
    text.append(" ");
  }
  return text.append(error.message);
}

// Made while there is memory; outcomes may refer to it until the process ends.
LuaError& errorWithoutMemory =
    *new LuaError{LuaError::Kind::Memory, "not enough memory", {}, 0, 0, 0, {}};

}  // namespace

namespace bridge {

HeldError holdError(LuaError&& error) noexcept {
  const bool hasWords = error.kind != LuaError::Kind::Memory || !error.message.empty();
  auto* const held = hasWords ? new (std::nothrow) LuaError(std::move(error)) : nullptr;
  return HeldError(held != nullptr ? held : &errorWithoutMemory);
}

void ErrorRelease::operator()(LuaError* error) const noexcept {
  if (error != &errorWithoutMemory) delete error;
}

}  // namespace bridge

std::string LuaError::toString() const {
  std::string text = located(*this);
  for (const Frame& frame : trace) {
    text.append("\n  in ").append(frame.function);
    if (frame.chunk.empty()) continue;
    text.append(" (").append(frame.chunk);
    if (frame.line > 0) text.append(":").append(std::to_string(frame.line));
    text.append(")");
  }
  return text;
}

LuaException::LuaException(LuaError error)
    : std::runtime_error(located(error)),
      error_(std::make_shared<const LuaError>(std::move(error))) {}

LuaException::~LuaException() = default;

}  // namespace tarvel::lua
