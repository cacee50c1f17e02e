#pragma once

#include <cstdint>
#include <exception>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <string_view>

namespace tarvel::lua::internal {

// The number of a place in a script's text, or 0 where no script is active. Nodes carry one, and
// functions of the library get that of their call and pass it on unseen; what it stands for is
// looked up in the interpreter's SiteTable when a failure is reported.
using Site = std::uint32_t;

// What kind of failure a script error is for the host. Scripts see no difference.
enum class FailureKind : std::uint8_t {
  Syntax,  // a text is not well-formed
  Script,  // of the script or of a library function
  Host,    // a std::exception that a function of the host threw
  Stack,   // calls nested too deeply
  Memory,  // not enough memory
};

// A script error raised outside any pcall. `hasLocation` is whether the text of a failed run names
// the line; the site may be known all the same.
class RuntimeError : public std::runtime_error {
 public:
  RuntimeError(const std::string& text, Site errorSite, bool located,
               FailureKind failureKind = FailureKind::Script)
      : std::runtime_error(text),
        message(text),
        site(errorSite),
        hasLocation(located),
        kind(failureKind) {}

  std::string message;  // all of it; what() ends at the first zero byte
  Site site;
  bool hasLocation;
  FailureKind kind;
};

// A script error raised while a pcall is active. Not a standard exception, so that no handler for
// those between the error and the pcall can take it.
struct ProtectedRuntimeError {
  std::string message;
  Site site = 0;
  bool hasLocation = false;
  FailureKind kind = FailureKind::Script;
};

// A failure where there is no tree whose nodes could have a site: a fault in a source text, or no
// room to begin with one. As a standard exception its text is "chunk:line:column: message".
class UnparsedError : public std::runtime_error {
 public:
  UnparsedError(FailureKind failureKind, const std::string& chunkName, std::uint32_t errorLine,
                std::uint32_t errorColumn, const std::string& text)
      : std::runtime_error(chunkName + ":" + std::to_string(errorLine) + ":" +
                           std::to_string(errorColumn) + ": " + text),
        kind(failureKind),
        chunk(chunkName),
        line(errorLine),
        column(errorColumn),
        message(text) {}

  FailureKind kind;
  std::string chunk;
  std::uint32_t line;
  std::uint32_t column;  // in bytes
  std::string message;
};

// os.exit on its way to the run's start; pcall lets it pass.
struct ExitSignal {
  std::int32_t code;
};

// The end of a run that used up its steps or its time, or was stopped, on its way to the run's
// start; pcall lets it pass.
struct StopSignal {
  enum class Reason : std::uint8_t { Steps, Time, Request };

  Reason reason;
  Site site;  // what was about to be executed
};

// Raises a script error at a place of the running chunk. The message never contains the location;
// that is added once, where the failure is reported.
[[noreturn]] void failRuntime(Site site, std::string_view message,
                              FailureKind kind = FailureKind::Script);

// The same for a message of several pieces. Whoever fails with them has nothing to destroy that an
// exception would stop for on its way.
[[noreturn]] void failRuntime(Site site, std::initializer_list<std::string_view> pieces);

std::string joinText(std::initializer_list<std::string_view> pieces);

// Whether a pcall is active on this thread, so that errors are thrown as ProtectedRuntimeError.
bool isInProtectedCall() noexcept;

// Raises what a function of the host threw as a script error with the exception's text. The text of
// a failed run deliberately names no line: hosts know these texts without one.
[[noreturn]] void failHost(Site site, const std::exception& error, FailureKind kind);

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
