#include "cli/interactive_loop.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <string_view>

#include "cli/reporting.h"
#include "cli/script_files.h"

namespace tarvel::lua {

namespace {

// What all lines are called in messages.
constexpr std::string_view kChunkName = "<repl>";

// The lines of a session. Where hints are wanted, each runs under a name of its own, "<repl>#7",
// because a function that fails may stand in an earlier line; messages do not show the number.
class Session {
 public:
  explicit Session(LuaVM& vm) : vm_(vm) {}

  // Throws what a run throws, and FailedRun.
  void run(const std::string& line);

 private:
  // The failure as one of the text of all lines, in which it can be looked up.
  LuaError inAllLines(LuaError error) const;

  LuaVM& vm_;
  const bool keepsLines_ = hintsAreWanted();
  std::string lines_;  // each followed by a semicolon; those that are no scripts are empty
  std::uint32_t count_ = 0;
};

void Session::run(const std::string& line) {
  std::string name(kChunkName);
  const std::size_t start = lines_.size();
  if (keepsLines_) {
    name += "#" + std::to_string(++count_);
    lines_.append(line).append(";\n");
  }
  const LuaResult result = vm_.runScriptString(line, name);
  if (result.ok) return;
  std::string message = result.error;
  if (message.starts_with(name + ":")) message.replace(0, name.size(), kChunkName);
  if (result.detail == nullptr) throw FailedRun(message);
  const bool hasPlace = keepsLines_ && result.detail->line > 0;
  const FailedRun failure(message, helpFor(inAllLines(*result.detail), hasPlace ? lines_ : line));
  if (keepsLines_ && result.detail->kind == LuaError::Kind::Syntax) {
    lines_.resize(start);
    lines_ += '\n';
  }
  throw failure;
}

LuaError Session::inAllLines(LuaError error) const {
  if (!keepsLines_) return error;
  if (error.line > 0 && error.chunk.size() > kChunkName.size()) {
    const char* const digits = error.chunk.c_str() + kChunkName.size() + 1;
    error.line = static_cast<std::uint32_t>(std::strtoul(digits, nullptr, 10));
  }
  for (LuaError::Frame& frame : error.trace) {
    if (!frame.chunk.empty()) frame.chunk = kChunkName;
  }
  return error;
}

}  // namespace

int runInteractively(LuaVM& vm) {
  Session session(vm);
  for (std::string line;;) {
    std::fputs("lua> ", stdout);
    std::fflush(stdout);
    if (!readScriptLine(stdin, line) || line == "exit" || line == "quit") return 0;
    if (line.empty()) continue;
    try {
      session.run(line);
    } catch (const std::exception& error) {
      report("", error);
    }
  }
}

}  // namespace tarvel::lua
