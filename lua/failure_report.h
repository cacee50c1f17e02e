#pragma once

#include <tarvel/lua/lua_vm.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <string>
#include <string_view>

#include "lua/value/errors.h"
#include "lua/value/site_table.h"
#include "lua/value/trace.h"

namespace tarvel::lua::internal {

// Of what a function of the host threw. Errors of runs inside of it that it passes on keep theirs.
FailureKind hostFailureKind(const std::exception& error) noexcept;

// What ended a run, on its way from an exception to the words for the host. In two steps, because
// the frames of the run keep alive what is needed to say where it failed, and use memory that may
// be missing for saying it:
//
//   catch (...) {
//     const FailureReport failure(interpreter);  // while the frames stand
//     ...                                        // the frames are released
//     return failure.error();
//   }
//
// Valid as long as its handler handles the exception, whose text it borrows, and the interpreter
// lives.
class FailureReport {
 public:
  // Reads the exception that is being handled. Allocates nothing, and throws nothing but that
  // exception itself where it is none that ends a run: neither a std::exception nor one of the
  // interpreter's.
  explicit FailureReport(const LuaVM::Impl& interpreter);
  FailureReport(const FailureReport&) = delete;
  FailureReport& operator=(const FailureReport&) = delete;

  // Both throw std::bad_alloc. For LuaResult::error, "chunk:line: message" with the chunk that was
  // run; and the whole failure, with the chunk that failed.
  std::string textFor(std::string_view runChunk) const;
  LuaError error() const;

 private:
  template <class ScriptError>
  void takeScriptError(const LuaVM::Impl& interpreter, const ScriptError& error) noexcept;
  void takeUnparsed(const UnparsedError& error) noexcept;
  void takeStop(const LuaVM::Impl& interpreter, const StopSignal& stop) noexcept;
  void takeTrace(const LuaVM::Impl& interpreter, Site failedAt) noexcept;
  void takePlace(const LuaVM::Impl& interpreter, Site site) noexcept;

  LuaError::Kind kind_ = LuaError::Kind::Script;
  std::string_view message_;
  OwnedValue chunkName_;    // keeps what `chunk_` shows
  std::string_view chunk_;  // that failed; empty where unknown
  Place place_;             // 0:0 where unknown
  bool isLocatedInText_ = false;
  std::int32_t exitCode_ = 0;

  // The calls that the failure passed through, as LuaError::Frame has them.
  struct Frame {
    OwnedValue function;
    OwnedValue chunk;  // nil where unknown
    std::uint32_t line = 0;
  };
  std::array<Frame, Trace::kMostCalls> frames_;
  std::size_t frameCount_ = 0;
};

}  // namespace tarvel::lua::internal
