#pragma once

#include <tarvel/lua/lua_error.h>

#include <exception>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

// How the program tells on standard error what failed.

namespace tarvel::lua {

// Whether the messages of failed scripts are followed by a trace: the environment variable
// TARVELLUA_TRACE is "1". An interpreter has to be supervised for it.
bool traceIsWanted();

// Whether they are followed by a hint: a person reads them, at a terminal.
bool hintsAreWanted();

// A script that failed.
class FailedRun : public std::runtime_error {
 public:
  explicit FailedRun(const std::string& text, std::string linesBelow = {})
      : std::runtime_error("TarvelLua execution failed"),
        message(text),
        help(std::move(linesBelow)) {}

  std::string message;  // may be empty, or contain zero bytes
  std::string help;     // what follows the message: lines, each after a line feed
};

// FailedRun::help for the failure: its trace and the hint on it, where they are wanted and there
// are any. `source` is the text of the chunk that the error names.
std::string helpFor(const LuaError& error, std::string_view source);

// A line on standard error, in one piece where there is memory for that, so that the lines of
// programs that share it do not mix.
void report(std::string_view prefix, std::string_view message);
void report(std::string_view prefix, const std::exception& error);

// Both report "tarvellua: message" and return the exit status.
int fail(std::string_view message);
int fail(const std::exception& error);

}  // namespace tarvel::lua
