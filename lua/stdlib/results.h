#pragma once

#include <cstdint>
#include <utility>

#include "lua/evaluator/execute.h"
#include "lua/value/completion.h"
#include "lua/value/value_stack.h"
#include "lua/value/work_meter.h"

namespace tarvel::lua::internal {

// Where a library function that gives several values puts them: on the value stack, behind its
// arguments. While there are some, it makes no calls.
class Results {
 public:
  Results(ValueStack& stack, WorkMeter& meter, Site site) noexcept
      : stack_(stack), meter_(meter), site_(site), first_(stack.top()), end_(first_) {}

  // Takes over the ownership of `owned`, also where it raises "stack overflow".
  void push(Value owned) {
    if (!stack_.hasRoom(end_ + 1, 0) && !stack_.makeRoom(end_ + 1, 0)) [[unlikely]] {
      drop(owned);
      failStackOverflow(site_);
    }
    *end_++ = owned;
  }

  // The completion of the function's call. Several values count as moved.
  Value take() {
    const std::ptrdiff_t count = end_ - first_;
    if (count == 1) return std::exchange(*first_, Value());
    if (count == 0) return ReturnSignal::noValues();
    countMoved(meter_, static_cast<std::size_t>(count), site_);
    return ReturnSignal::severalValues(first_, static_cast<std::uint32_t>(count));
  }

  // What moving several values on counts.
  static void countMoved(WorkMeter& meter, std::size_t count, Site site) {
    meter.spend(stepsForBytes(count * sizeof(Value)), site);
  }

 private:
  ValueStack& stack_;
  WorkMeter& meter_;
  Site site_;
  Value* first_;
  Value* end_;
};

}  // namespace tarvel::lua::internal
