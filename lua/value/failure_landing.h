#pragma once

#include <csetjmp>
#include <utility>

namespace tarvel::lua::internal {

// Where a failure can go to without an exception, which would cost thousands of instructions for
// each function on its way: back into the innermost pcall, over frames of node functions. These
// have nothing to release. What they own stands in slots of the value stack, which pcall sweeps. At
// most they would note a call for a trace, and pcall throws its trace away.
//
// Whoever has something to release while a script runs below puts up a LandingBarrier. An
// interpreter has a pointer to its innermost landing; null means that failures are exceptions.
class FailureLanding {
 public:
  explicit FailureLanding(FailureLanding*& innermost) noexcept
      : innermost_(innermost), outer_(std::exchange(innermost, this)) {}
  ~FailureLanding() { innermost_ = outer_; }
  FailureLanding(const FailureLanding&) = delete;
  FailureLanding& operator=(const FailureLanding&) = delete;

  // For `_setjmp`, which the function that has this object must call itself.
  std::jmp_buf& point() noexcept { return point_; }
  [[noreturn]] void land() noexcept { _longjmp(point_, 1); }

 private:
  FailureLanding*& innermost_;
  FailureLanding* outer_;
  std::jmp_buf point_;
};

// While it lives, failures are exceptions.
class LandingBarrier {
 public:
  explicit LandingBarrier(FailureLanding*& innermost) noexcept
      : innermost_(innermost), outer_(std::exchange(innermost, nullptr)) {}
  [[gnu::always_inline]] ~LandingBarrier() { innermost_ = outer_; }
  LandingBarrier(const LandingBarrier&) = delete;
  LandingBarrier& operator=(const LandingBarrier&) = delete;

 private:
  FailureLanding*& innermost_;
  FailureLanding* outer_;
};

}  // namespace tarvel::lua::internal
