#include "lua/evaluator/trace.h"

#include "lua/frontend/syntax_tree.h"
#include "lua/lua_vm_impl.h"
#include "lua/value/string_object.h"

namespace tarvel::lua::internal {

void Trace::note(const FunctionObject& callee, Site site) noexcept {
  if (count_ == kMostCalls) return;
  ++callee.name->count;
  calls_[count_++] = {callee.name, site, callee.isNative()};
}

void Trace::clear() noexcept {
  while (count_ > 0) drop(Value(calls_[--count_].function));
}

// A call was executing the call that is noted before it; the innermost one is where it failed.
void Trace::locate(Site failedAt) noexcept {
  for (std::size_t i = count_; i-- > 0;) {
    const Site executed = i > 0 ? calls_[i - 1].site : failedAt;
    calls_[i].site = calls_[i].isNative ? 0 : executed;
  }
}

std::vector<LuaError::Frame> Trace::frames(const std::string& chunkName) const {
  std::vector<LuaError::Frame> frames;
  frames.reserve(count_);
  for (std::size_t i = 0; i < count_; ++i) {
    const Call& call = calls_[i];
    frames.push_back(
        {std::string(call.function->view()), call.isNative ? std::string() : chunkName, call.site});
  }
  return frames;
}

// ---- Runs ---------------------------------------------------------------------------------------

RunSupervision::RunSupervision(LuaVM::Impl& vmInterpreter) noexcept
    : interpreter_(vmInterpreter), outer_(vmInterpreter.supervision) {
  interpreter_.supervision = this;
}

RunSupervision::~RunSupervision() {
  interpreter_.supervision = outer_;
  if (outer_ == nullptr) interpreter_.heap.meter().endRun();
}

void RunSupervision::begin() {
  if (outer_ == nullptr) interpreter_.heap.meter().beginRun();
}

// ---- Calls --------------------------------------------------------------------------------------

void noteScriptCall(const FunctionExpr& body, const Value* frame, Site site) noexcept {
  noteNativeCall(*body.interpreter, frame, site);
}

void noteNativeCall(LuaVM::Impl& interpreter, const Value* frame, Site site) noexcept {
  interpreter.supervision->trace.note(*frame[0].function, site);
}

}  // namespace tarvel::lua::internal
