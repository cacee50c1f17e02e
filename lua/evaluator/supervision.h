#pragma once

#include <tarvel/lua/lua_vm.h>

#include <cstddef>

#include "lua/value/errors.h"
#include "lua/value/value.h"
#include "lua/value/work_meter.h"

// What calls and loops do besides their work, as a policy that their node functions are made with.
// Which one is decided when a script is loaded, so interpreters that are not supervised execute
// nothing for it.

namespace tarvel::lua::internal {

struct FunctionExpr;

// An exception leaves a call of the function in frame[0], which was made at `site`.
[[gnu::cold]] void noteScriptCall(const FunctionExpr& body, const Value* frame, Site site) noexcept;
[[gnu::cold]] void noteNativeCall(LuaVM& vm, const Value* frame, Site site) noexcept;

// True where a failed completion goes to a pcall that takes it, which throws its trace away.
bool isTakenByPcall(const LuaVM::Impl& interpreter) noexcept;

struct Unsupervised {
  static void step(WorkMeter&, const Site&) noexcept {}
  static void moved(std::size_t, WorkMeter&, Site) noexcept {}
  static void hostReturned(WorkMeter&, Site) noexcept {}

  struct Rounds {
    Rounds(WorkMeter&, const Site&) noexcept {}
    void next() noexcept {}
  };
  struct ScriptCall {
    ScriptCall(const FunctionExpr*, const Value*, const Site&) noexcept {}
    void returned() noexcept {}
    void failed(const LuaVM::Impl&) noexcept {}
  };
  struct NativeCall {
    NativeCall(LuaVM&, const Value*, const Site&) noexcept {}
    void returned() noexcept {}
    void failed(const LuaVM::Impl&) noexcept {}
  };
};

struct Supervised {
  // A call is about to be made.
  static void step(WorkMeter& meter, const Site& site) { meter.step(site); }

  // A call passes on so many values, as every call does that returns them further.
  static void moved(std::size_t values, WorkMeter& meter, Site site) {
    meter.spend(stepsForBytes(values * sizeof(Value)), site);
  }

  // A function of the host has returned, called at `site`. A run inside of it may have used up what
  // this one had.
  static void hostReturned(WorkMeter& meter, Site site) { meter.spend(0, site); }

  // The rounds of a loop at `site`.
  class Rounds {
   public:
    Rounds(WorkMeter& meter, const Site& site) noexcept : meter_(meter), site_(site) {}
    void next() { meter_.step(site_); }

   private:
    WorkMeter& meter_;
    const Site& site_;
  };

  // Notes that an exception leaves the call. It needs nothing that the call does not keep anyway,
  // and a call that returns executes nothing for it.
  class ScriptCall {
   public:
    ScriptCall(const FunctionExpr* body, const Value* frame, const Site& site) noexcept
        : body_(body), frame_(frame), site_(site) {}
    [[gnu::always_inline]] ~ScriptCall() {
      if (!hasReturned_) noteScriptCall(*body_, frame_, site_);
    }
    ScriptCall(const ScriptCall&) = delete;
    ScriptCall& operator=(const ScriptCall&) = delete;
    void returned() noexcept { hasReturned_ = true; }
    // With a failed completion.
    void failed(const LuaVM::Impl& interpreter) noexcept {
      hasReturned_ = isTakenByPcall(interpreter);
    }

   private:
    const FunctionExpr* body_;
    const Value* frame_;
    const Site& site_;
    bool hasReturned_ = false;
  };

  class NativeCall {
   public:
    NativeCall(LuaVM& vm, const Value* frame, const Site& site) noexcept
        : vm_(vm), frame_(frame), site_(site) {}
    [[gnu::always_inline]] ~NativeCall() {
      if (!hasReturned_) noteNativeCall(vm_, frame_, site_);
    }
    NativeCall(const NativeCall&) = delete;
    NativeCall& operator=(const NativeCall&) = delete;
    void returned() noexcept { hasReturned_ = true; }
    void failed(const LuaVM::Impl& interpreter) noexcept {
      hasReturned_ = isTakenByPcall(interpreter);
    }

   private:
    LuaVM& vm_;
    const Value* frame_;
    const Site& site_;
    bool hasReturned_ = false;
  };
};

}  // namespace tarvel::lua::internal
