#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <stop_token>

#include "lua/value/errors.h"

namespace tarvel::lua::internal {

// Counts the work of a supervised interpreter and ends a run that does too much of it, takes too
// long, or is stopped: counting then throws StopSignal, again and again until the run has ended.
//
// A step is a call or a round of a loop. The library counts its work in proportion: see
// stepsForBytes. The count depends on the script and its input only, never on the machine, on time,
// or on what a cache holds. Nothing that is one step may take longer than some microseconds.
//
// An interpreter that is not supervised counts nothing, and what the library counts has no effect.
class WorkMeter {
 public:
  struct Limits {
    std::uint64_t steps = 0;           // 0: no bound
    std::chrono::nanoseconds time{0};  // 0: no bound
    std::stop_token stop = {};
  };

  // For the runs that begin from now on.
  void supervise(const Limits& limits) { limits_ = limits; }
  bool isSupervised() const noexcept { return supervised_; }
  void setSupervised() noexcept { supervised_ = true; }

  // A run begins that no other run is around of. Throws StopSignal when it must end at once.
  void beginRun();

  // One step, about to be done at `site`.
  void step(const Site& site) {
    if (--left_ < 0) [[unlikely]]
      endSlice(site);
  }
  // So many steps, about to be done. Throws before they are done when that is too much.
  void spend(std::uint64_t steps, Site site) {
    note(steps);
    if (left_ < 0) [[unlikely]]
      endSlice(site);
  }
  // False when spending would throw, or would look at the clock.
  bool hasStepsLeft() const noexcept { return left_ >= 0; }
  // As spend, for where nothing may throw: false when the run has to end. Then the next step or
  // spending throws.
  bool poll(std::uint64_t steps) noexcept {
    note(steps);
    return left_ >= 0 || tryStartSlice();
  }
  // For where nothing may throw: the next step or spending notices it.
  void note(std::uint64_t steps) noexcept {
    left_ -= static_cast<std::int64_t>(steps < kMostAtOnce ? steps : kMostAtOnce);
  }

  // The outermost run has ended: what is done outside of runs counts nothing.
  void endRun() noexcept;
  // Tells one outermost run from another.
  std::uint64_t currentRun() const noexcept { return run_; }

  // Of the run that is under way, else of the last one; never more than its limit.
  std::uint64_t usedSteps() const noexcept;

 private:
  // Steps between two looks at the clock and the token: so few that even slow ones do not add up to
  // milliseconds.
  static constexpr std::int64_t kSlice = 256;
  // Keeps `left_` far from overflow however often it is lowered between two steps.
  static constexpr std::uint64_t kMostAtOnce = std::uint64_t{1} << 40;
  static constexpr std::int64_t kUnlimited = std::int64_t{1} << 62;

  void endSlice(const Site& site);
  bool tryStartSlice() noexcept;
  void startSlice() noexcept;
  std::uint64_t countSteps() const noexcept;
  std::optional<StopSignal::Reason> findReasonToStop() const noexcept;

  std::int64_t left_ = kUnlimited;  // of the slice; below 0 when more was done
  std::int64_t slice_ = kUnlimited;
  std::uint64_t usedBefore_ = 0;  // in the slices before this one
  std::uint64_t run_ = 0;
  bool supervised_ = false;
  bool isRunning_ = false;
  Limits limits_;
  Limits runLimits_;  // of the run that is under way
  std::chrono::steady_clock::time_point deadline_;
};

// What making, moving or comparing so many bytes counts: small amounts belong to the step that asks
// for them.
constexpr std::size_t kBytesPerStep = 128;
constexpr std::uint64_t stepsForBytes(std::uint64_t bytes) noexcept {
  return bytes / kBytesPerStep;
}

}  // namespace tarvel::lua::internal
