#include "lua/value/work_meter.h"

#include <algorithm>

namespace tarvel::lua::internal {

void WorkMeter::beginRun() {
  if (!supervised_) return;
  runLimits_ = limits_;
  isRunning_ = true;
  usedBefore_ = 0;
  if (runLimits_.time.count() > 0) deadline_ = std::chrono::steady_clock::now() + runLimits_.time;
  startSlice();
  if (runLimits_.stop.stop_requested()) throw StopSignal{StopSignal::Reason::Request, 0};
}

void WorkMeter::endRun() noexcept {
  if (!isRunning_) return;
  usedByLastRun_ = usedSteps();
  isRunning_ = false;
  runLimits_ = {};
  startSlice();
}

void WorkMeter::startSlice() noexcept {
  slice_ = kSlice;
  if (runLimits_.steps > 0) {
    slice_ =
        static_cast<std::int64_t>(std::min<std::uint64_t>(kSlice, runLimits_.steps - usedBefore_));
  }
  left_ = slice_;
}

void WorkMeter::endSlice(const Site& site) {
  if (!supervised_) {
    left_ = slice_ = kUnlimited;
    return;
  }
  const std::uint64_t used = usedBefore_ + static_cast<std::uint64_t>(slice_ - left_);
  if (runLimits_.steps > 0 && used > runLimits_.steps)
    throw StopSignal{StopSignal::Reason::Steps, site};
  if (runLimits_.stop.stop_requested()) throw StopSignal{StopSignal::Reason::Request, site};
  if (runLimits_.time.count() > 0 && std::chrono::steady_clock::now() >= deadline_)
    throw StopSignal{StopSignal::Reason::Time, site};
  usedBefore_ = used;
  startSlice();
}

std::uint64_t WorkMeter::usedSteps() const noexcept {
  if (!isRunning_) return usedByLastRun_;
  const std::uint64_t used = usedBefore_ + static_cast<std::uint64_t>(slice_ - left_);
  return runLimits_.steps > 0 ? std::min(used, runLimits_.steps) : used;
}

}  // namespace tarvel::lua::internal
