#pragma once

#include <tarvel/lua/lua_export.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <stop_token>
#include <string_view>

// What an interpreter may do. Decided when it is made, except for LuaLimits, which LuaVM::setLimits
// changes.

namespace tarvel::lua {

// Effects outside the interpreter. Everything else in the library is pure and always there. What is
// not granted does not exist for scripts: `io.open` is nil without Files.
enum class LuaReach : std::uint32_t {
  None = 0,
  Output = 1,    // print, io.write, io.stdout, io.stderr
  Files = 2,     // io.open
  Commands = 4,  // os.execute
  Exit = 8,      // os.exit, which ends the run and never the process
  All = 15,
};
constexpr LuaReach operator|(LuaReach a, LuaReach b) noexcept {
  return static_cast<LuaReach>(static_cast<std::uint32_t>(a) | static_cast<std::uint32_t>(b));
}

// Bounds of one run: of each runScriptString or call that the host begins; those begun inside of it
// share its bounds. 0 means no bound. A run that exceeds steps or time, or is stopped, ends like
// one that called os.exit: no pcall catches it. Memory and stack are script errors, which pcall
// catches; the bound holds all the same. The interpreter can be used after any of them.
//
// Not counted: reading a script, which takes time in proportion to its length, and what functions
// of the host do.
struct LuaLimits {
  // A step is a call or a round of a loop; library functions count what they do in proportion to
  // size or effort (bytes made, comparisons of a sort, moves of a pattern search). The count does
  // not depend on the machine: the same script with the same input always ends at the same point.
  // What cannot be interrupted is refused in supervised interpreters when it would take more than
  // some milliseconds: patterns of more than about 100 sets or 20,000 bytes, numbers in texts of
  // more than 256 KB, error messages of more than 1 MB.
  std::uint64_t steps = 0;
  // By the steady clock, looked at every few hundred steps. A function of the host that does not
  // return is not interrupted.
  std::chrono::nanoseconds time{0};
  std::size_t memory = 0;  // bytes that the interpreter holds, at any time
  std::size_t stack = 0;   // bytes of frames: about 16 for each local of each pending call
  // Ends the run soon after a thread requests it; any thread may, a signal handler may not. A run
  // that begins later with the same token ends at once: give each request its own std::stop_source.
  std::stop_token stop = {};
};

struct LuaOptions {
  LuaReach reach = LuaReach::All;
  // Counts steps and notes calls: needed for LuaLimits::steps, time and stop, and for
  // LuaError::trace. Chosen here because scripts are prepared for it when they are loaded; without
  // it they pay nothing.
  bool supervised = false;
  LuaLimits limits = {};
  // Take what scripts write to standard output and standard error, in order, in pieces of any size.
  // The process's streams if empty. Called on the thread that runs the script, while it runs. What
  // they throw is an error of the script, of kind Host, where it writes. The interpreter keeps
  // copies of them until it ends.
  std::function<void(std::string_view)> output = {};
  std::function<void(std::string_view)> errorOutput = {};
};

struct LuaUsage {
  std::uint64_t steps = 0;     // of the run that is under way, else of the last; 0 unsupervised
  std::size_t memory = 0;      // bytes held now
  std::size_t peakMemory = 0;  // the most since the interpreter was made
};

}  // namespace tarvel::lua
