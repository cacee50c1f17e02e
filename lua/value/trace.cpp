#include "lua/value/trace.h"

#include "lua/value/string_object.h"

namespace tarvel::lua::internal {

void Trace::note(const FunctionObject& callee, Site site) noexcept {
  if (count_ == kMostCalls) return;
  ++callee.name->count;
  calls_[count_++] = {callee.name, site, callee.isNative()};
}

void Trace::forget() noexcept {
  while (count_ > start_) drop(Value(calls_[--count_].function));
}

}  // namespace tarvel::lua::internal
