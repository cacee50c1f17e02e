#pragma once

#include <tarvel/lua/lua_vm.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "lua/value/errors.h"
#include "lua/value/function_handle.h"

namespace tarvel::lua::internal {

struct FunctionExpr;

// The calls that an exception passes through on its way to where it is reported, innermost first.
// Only supervised call nodes note them. Noting and locating allocate nothing and never throw.
class Trace {
 public:
  static constexpr std::size_t kMostCalls = 32;  // of those further out nothing is known

  Trace() noexcept = default;
  ~Trace() { clear(); }
  Trace(const Trace&) = delete;
  Trace& operator=(const Trace&) = delete;

  // The exception leaves a call of `callee` that was made at `site`.
  void note(const FunctionObject& callee, Site site) noexcept;
  // The exception was caught, or nobody asks for its way.
  void clear() noexcept;

  // Looks up where each call was when the exception, raised at `failedAt` (0 where unknown), passed
  // it: to be done once, before the sweep of the value stack, with which chunks may go.
  void locate(Site failedAt) noexcept;
  // Of a located trace.
  std::vector<LuaError::Frame> frames(const std::string& chunkName) const;

 private:
  struct Call {
    StringObject* function;  // owned
    Site site;               // of the call; once located, the line that was executed in the callee
    bool isNative;
  };

  std::array<Call, kMostCalls> calls_;  // `count_` of them are set
  std::size_t count_ = 0;
};

// What an interpreter knows of a run while it is under way. Runs nest: a function of the host, or a
// destructor of one of its objects, may start another one.
class RunSupervision {
 public:
  explicit RunSupervision(LuaVM::Impl& vmInterpreter) noexcept;
  ~RunSupervision();
  RunSupervision(const RunSupervision&) = delete;
  RunSupervision& operator=(const RunSupervision&) = delete;

  // Before anything of the script runs. Throws StopSignal when the run must end at once.
  void begin();

  Trace trace;  // of this run alone, whatever passes through the runs around it

 private:
  LuaVM::Impl& interpreter_;
  RunSupervision* const outer_;  // null for the outermost run
};

// An exception leaves a call of the function in frame[0], which was made at `site`.
[[gnu::cold]] void noteScriptCall(const FunctionExpr& body, const Value* frame, Site site) noexcept;
[[gnu::cold]] void noteNativeCall(LuaVM::Impl& interpreter, const Value* frame, Site site) noexcept;

}  // namespace tarvel::lua::internal
