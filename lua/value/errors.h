#pragma once

#include <cstdint>
#include <exception>
#include <stdexcept>
#include <string>
#include <string_view>

namespace tarvel::lua::internal {

// A script error raised outside any pcall.
class RuntimeError : public std::runtime_error {
 public:
  RuntimeError(const std::string& text, unsigned errorLine, bool located)
      : std::runtime_error(text), message(text), line(errorLine), hasLocation(located) {}

  std::string message;  // all of it; what() ends at the first zero byte
  unsigned line;        // 1-based
  bool hasLocation;
};

// A script error raised while a pcall is active. Not a standard exception, so that no handler for
// those between the error and the pcall can take it.
struct ProtectedRuntimeError {
  std::string message;
  unsigned line;  // 1-based
  bool hasLocation;
};

// os.exit on its way to the run's start; pcall lets it pass.
struct ExitSignal {
  std::int32_t code;
};

// Raises a script error at a line of the running chunk. The message never contains the location;
// that is added once, where the failure is reported.
[[noreturn]] void failRuntime(unsigned line, const std::string& message);

// "attempt to <action> a <kind> value" and the like are built here, away from the hot paths.
[[noreturn]] void failRuntime(unsigned line, const char* message);

// Raises a std::runtime_error: the interpreter itself is wrong, for a well-formed tree never gets
// here. Ends switches over operators and kinds of nodes, so that one that is new and forgotten
// somewhere is noticed.
[[noreturn]] void unreachable(const char* message);

// What a standard exception is reported as: its own text, but "not enough memory" for
// std::bad_alloc, whose text is the C++ library's. Valid as long as the exception.
std::string_view exceptionText(const std::exception& error) noexcept;

// Counts the active pcalls of this thread while it lives.
class ProtectedCallScope {
 public:
  ProtectedCallScope() noexcept;
  ~ProtectedCallScope();
  ProtectedCallScope(const ProtectedCallScope&) = delete;
  ProtectedCallScope& operator=(const ProtectedCallScope&) = delete;
};

}  // namespace tarvel::lua::internal
