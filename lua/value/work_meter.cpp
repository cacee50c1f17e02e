#include "lua/value/work_meter.h"

#include <algorithm>

namespace tarvel::lua::internal {

void WorkMeter::beginRun() {
  if (!supervised_) return;
  runLimits_ = limits_;
  ++run_;
  isRunning_ = true;
  usedBefore_ = 0;
  if (runLimits_.time.count() > 0) deadline_ = std::chrono::steady_clock::now() + runLimits_.time;
  startSlice();
  if (runLimits_.stop.stop_requested()) throw StopSignal{StopSignal::Reason::Request, 0};
}

void WorkMeter::startSlice() noexcept {
  slice_ = kSlice;
  if (runLimits_.steps > 0) {
    slice_ =
        static_cast<std::int64_t>(std::min<std::uint64_t>(kSlice, runLimits_.steps - usedBefore_));
  }
  left_ = slice_;
}

std::uint64_t WorkMeter::countSteps() const noexcept {
  return usedBefore_ + static_cast<std::uint64_t>(slice_ - left_);
}

std::optional<StopSignal::Reason> WorkMeter::findReasonToStop() const noexcept {
  if (runLimits_.steps > 0 && countSteps() > runLimits_.steps) return StopSignal::Reason::Steps;
  if (runLimits_.stop.stop_requested()) return StopSignal::Reason::Request;
  if (runLimits_.time.count() > 0 && std::chrono::steady_clock::now() >= deadline_) {
    return StopSignal::Reason::Time;
  }
  return std::nullopt;
}

void WorkMeter::endSlice(const Site& site) {
  if (!tryStartSlice()) throw StopSignal{*findReasonToStop(), site};
}

// What ends a run stays true until it has ended, so a slice that cannot start never can.
bool WorkMeter::tryStartSlice() noexcept {
  if (!supervised_ || !isRunning_) {
    left_ = slice_ = kUnlimited;
    return true;
  }
  if (findReasonToStop()) return false;
  usedBefore_ = countSteps();
  startSlice();
  return true;
}

void WorkMeter::endRun() noexcept {
  usedBefore_ = usedSteps();
  isRunning_ = false;
  left_ = slice_ = kUnlimited;
}

std::uint64_t WorkMeter::usedSteps() const noexcept {
  if (!supervised_) return 0;
  const std::uint64_t used = isRunning_ ? countSteps() : usedBefore_;
  return runLimits_.steps > 0 ? std::min(used, runLimits_.steps) : used;
}

}  // namespace tarvel::lua::internal
