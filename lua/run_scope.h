#pragma once

#include <cstddef>

#include "lua/lua_vm_impl.h"
#include "lua/value/host_stack.h"
#include "lua/value/value_stack.h"

namespace tarvel::lua::internal {

// One use of an interpreter by its host that may run something of a script: what it may take of the
// stacks, how it counts, and what it leaves behind, which is nothing.
class RunScope {
 public:
  explicit RunScope(LuaVM::Impl& interpreter) noexcept
      : use_(interpreter),
        // One that starts in the middle of destroying an object can be in the middle of any frame.
        mark_(destruction_.isNested() ? interpreter.stack.markBeyondFrames()
                                      : interpreter.stack.mark()) {
    interpreter.stack.enterThread(hostStack_.floor());
    if (interpreter.options.supervised) outerTrace_ = interpreter.trace.beginRun();
  }
  ~RunScope() {
    sweep();
    if (interpreter().options.supervised) leaveSupervised();
  }
  RunScope(const RunScope&) = delete;
  RunScope& operator=(const RunScope&) = delete;

  // Before anything of a script runs. Throws what ends the run at once.
  void begin() {
    if (interpreter().options.supervised) beginSupervised();
    interpreter().requireLife();
  }

  // Something stands on the value stack, or may do so when an exception comes.
  void expectValues() noexcept { hasValues_ = true; }
  void expectNoValues() noexcept { hasValues_ = false; }
  // Releases all of it, and gives the stack back.
  void sweep() noexcept {
    if (hasValues_) {
      interpreter().stack.unwindTo(mark_);
      hasValues_ = false;
    } else {
      interpreter().stack.leaveTo(mark_);
    }
  }

  LuaVM::Impl& interpreter() const noexcept { return use_.interpreter(); }
  // Where its values begin on the stack.
  Value* first() const noexcept { return mark_.first; }

 private:
  // Runs inside others share what those may do.
  void beginSupervised() {
    isCounted_ = true;
    if (interpreter().activeRuns++ == 0) interpreter().heap.meter().beginRun();
  }
  void leaveSupervised() noexcept {
    interpreter().trace.endRun(outerTrace_);
    if (isCounted_ && --interpreter().activeRuns == 0) interpreter().heap.meter().endRun();
  }

  const InterpreterInUse use_;
  const HostStackScope hostStack_;
  const DestructionScope destruction_;
  const ValueStack::Mark mark_;
  bool hasValues_ = false;
  bool isCounted_ = false;  // among the interpreter's active runs
  std::size_t outerTrace_ = 0;
};

}  // namespace tarvel::lua::internal
