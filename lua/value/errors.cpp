#include "lua/value/errors.h"

#include <new>
#include <utility>

namespace tarvel::lua::internal {

namespace {

// Per thread, so that interpreters on two threads do not disturb each other's choice of error type.
thread_local std::int32_t protectedCallDepth = 0;

}  // namespace

std::string joinText(std::initializer_list<std::string_view> pieces) {
  std::string text;
  for (const std::string_view piece : pieces) text.append(piece);
  return text;
}

void failRuntime(Site site, std::string_view message, FailureKind kind) {
  if (!isInProtectedCall()) throw RuntimeError(std::string(message), site, true, kind);
  throw ProtectedRuntimeError{std::string(message), site, true, kind};
}

void failRuntime(Site site, std::initializer_list<std::string_view> pieces) {
  if (!isInProtectedCall()) throw RuntimeError(joinText(pieces), site, true);
  throw ProtectedRuntimeError{joinText(pieces), site, true, FailureKind::Script};
}

bool isInProtectedCall() noexcept { return protectedCallDepth > 0; }

void failHost(Site site, const std::exception& error, FailureKind kind) {
  throw RuntimeError(std::string(exceptionText(error)), site, false, kind);
}

void unreachable(const char* message) { throw std::runtime_error(message); }

std::string_view exceptionText(const std::exception& error) noexcept {
  if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr) return "not enough memory";
  const auto* const runtimeError = dynamic_cast<const RuntimeError*>(&error);
  return runtimeError != nullptr ? runtimeError->message : std::string_view(error.what());
}

ProtectedCallScope::ProtectedCallScope() noexcept { ++protectedCallDepth; }

ProtectedCallScope::~ProtectedCallScope() { --protectedCallDepth; }

}  // namespace tarvel::lua::internal
