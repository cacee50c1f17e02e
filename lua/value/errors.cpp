#include "lua/value/errors.h"

#include <new>

namespace tarvel::lua::internal {

namespace {

// Per thread, so that interpreters on two threads do not disturb each other's choice of error type.
thread_local std::int32_t protectedCallDepth = 0;

}  // namespace

void failRuntime(unsigned line, const std::string& message) {
  if (protectedCallDepth < 1) throw RuntimeError(message, line, true);
  throw ProtectedRuntimeError{message, line, true};
}

void failRuntime(unsigned line, const char* message) { failRuntime(line, std::string(message)); }

void unreachable(const char* message) { throw std::runtime_error(message); }

const char* exceptionText(const std::exception& error) noexcept {
  return dynamic_cast<const std::bad_alloc*>(&error) != nullptr ? "not enough memory"
                                                                : error.what();
}

ProtectedCallScope::ProtectedCallScope() noexcept { ++protectedCallDepth; }

ProtectedCallScope::~ProtectedCallScope() { --protectedCallDepth; }

}  // namespace tarvel::lua::internal
