#pragma once

#include <array>
#include <cstddef>
#include <utility>

#include "lua/value/errors.h"
#include "lua/value/function_handle.h"

namespace tarvel::lua::internal {

// The calls that an exception passes through on its way to where it is reported, innermost first.
// Only supervised call nodes note them. Nothing here allocates or throws.
class Trace {
 public:
  static constexpr std::size_t kMostCalls = 32;  // of those further out nothing is known

  struct Call {
    StringObject* function;  // the callee's name, owned
    Site site;               // where the call was made
    bool isNative;
  };

  Trace() noexcept = default;
  ~Trace() {
    start_ = 0;
    clear();
  }
  Trace(const Trace&) = delete;
  Trace& operator=(const Trace&) = delete;

  // The exception leaves a call of `callee` that was made at `site`.
  void note(const FunctionObject& callee, Site site) noexcept;
  // The exception was caught, or nobody asks for its way.
  void clear() noexcept {
    if (count_ > start_) forget();
  }

  // Of the exception of the innermost run.
  std::size_t size() const noexcept { return count_ - start_; }
  const Call& operator[](std::size_t index) const noexcept { return calls_[start_ + index]; }

  // A run begins, which has a trace of its own even in the middle of another exception: what this
  // returns is for the call that ends it.
  std::size_t beginRun() noexcept { return std::exchange(start_, count_); }
  void endRun(std::size_t outerStart) noexcept {
    clear();
    start_ = outerStart;
  }

 private:
  void forget() noexcept;

  std::array<Call, kMostCalls> calls_;  // `count_` of them are set
  std::size_t count_ = 0;
  std::size_t start_ = 0;  // of the innermost run's
};

}  // namespace tarvel::lua::internal
