#include <cmath>

#include "lua/lua_vm_impl.h"
#include "lua/stdlib/arguments.h"
#include "lua/stdlib/library.h"
#include "lua/value/metered_work.h"
#include "lua/value/number_rules.h"

// math.min, math.max, math.floor. All compute with doubles, so integers beyond 2^53 lose their last
// digits; this is the dialect's number model.

namespace tarvel::lua::internal {

namespace {

// A whole result becomes an integer whatever the arguments were.
template <class Fold>
Value foldNumbers(const char* name, LuaVM& vm, ValueSpan args, Site site, Fold fold) {
  requireArgumentCount(name, args.size(), 1, kAnyCount);
  LuaVM::Impl::of(vm).heap.meter().spend(args.size() / kElementsPerStep, site);
  double result = requireNumber(name, args, 0, site);
  for (std::size_t i = 1; i < args.size(); ++i) {
    result = fold(result, requireNumber(name, args, i, site));
  }
  std::int64_t whole = 0;
  return wholeNumber(result, whole) ? Value(whole) : Value(result);
}

}  // namespace

Value mathMin(LuaVM& vm, ValueSpan args, Site site) {
  return foldNumbers("math.min", vm, args, site,
                     [](double a, double b) { return std::fmin(a, b); });
}

Value mathMax(LuaVM& vm, ValueSpan args, Site site) {
  return foldNumbers("math.max", vm, args, site,
                     [](double a, double b) { return std::fmax(a, b); });
}

namespace {

// 2^63 itself counts as in range and saturates; NaN becomes 0.
Value floorOf(double number) noexcept {
  const double floored = std::floor(number);
  if (std::fabs(floored) > kTwoTo63) return Value(floored);
  return Value(saturatingInteger(floored));
}

}  // namespace

Value mathFloor(LuaVM&, ValueSpan args, Site site) {
  requireArgumentCount("math.floor", args.size(), 1, 1);
  return floorOf(requireNumber("math.floor", args, 0, site));
}

Value mathFloorOfOne(LuaVM::Impl&, Value number) {
  double value = 0;
  if (!tryAsFloat(number, value)) return Value::ofTag(kNotAnswered);
  if (!(std::fabs(value) < kTwoTo63)) [[unlikely]]
    return floorOf(value);
  const auto truncated = static_cast<std::int64_t>(value);
  return Value(truncated - (static_cast<double>(truncated) > value ? 1 : 0));
}

}  // namespace tarvel::lua::internal
