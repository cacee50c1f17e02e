#pragma once

#include <cstddef>
#include <cstdint>

#include "lua/value/host_stack.h"
#include "lua/value/value.h"

namespace tarvel::lua::internal {

// The frames of one interpreter: one reservation of address space that never moves, so pointers
// into it stay valid. Memory is used only as far as the frames have reached.
//
// Invariants:
// - A slot at or above the live frames never owns anything. What empties a slot makes it nil first.
// - No slot at or above the soft limit has ever been used since the limit was last lowered. The
//   limit rises in steps as frames need room, so after an error the sweep up to it finds everything
//   that the abandoned frames owned.
class ValueStack {
 public:
  // Slots above the top for which there is still room after a run that began at the top, where
  // there was room before.
  static constexpr std::uint32_t kLeastRoom = 8;

  // Throws std::bad_alloc when not even a small reservation can be had.
  ValueStack();
  ~ValueStack();
  ValueStack(const ValueStack&) = delete;
  ValueStack& operator=(const ValueStack&) = delete;

  // True when slots up to `end` may be used and the host's stack has `hostBytes` left.
  bool hasRoom(const Value* end, std::uint32_t hostBytes) const noexcept {
    return end <= softLimit_ && hostStackPointer() - hostBytes >= hostFloor_;
  }
  // As hasRoom, raising the soft limit as needed; false when the stack is exhausted.
  bool makeRoom(const Value* end, std::uint32_t hostBytes) noexcept;

  // Bounds the frames together, in bytes; 0 for no bound but the reservation. Those that stand
  // already stay.
  void limitFrames(std::size_t bytes) noexcept;

  // Every frame has at most as many slots as the largest one announced here.
  void announceFrame(std::uint32_t slots) noexcept {
    if (slots > largestFrame_) largestFrame_ = slots;
  }

  // The first slot that a native function may use for calls of its own.
  Value* top() const noexcept { return top_; }
  void setTop(Value* top) noexcept { top_ = top; }

  // What a caller that survives errors (the start of a run, pcall) restores afterwards.
  struct Mark {
    Value* top;
    Value* first;  // where the frames begin that an error abandons
    std::uintptr_t hostFloor;
  };
  Mark mark() const noexcept { return {top_, top_, hostFloor_}; }
  // For what stands from `first` on below the top, too.
  Mark markAt(Value* first) const noexcept { return {first, first, hostFloor_}; }
  // For a run that starts in the middle of destroying an object, which can be in the middle of any
  // frame: moves the top beyond all frames in use.
  Mark markBeyondFrames() noexcept {
    const Mark mark{top_, softLimit_, hostFloor_};
    top_ = softLimit_;
    return mark;
  }
  // Takes the limit of the calling thread's stack.
  void enterThread(std::uintptr_t hostFloor) noexcept { hostFloor_ = hostFloor; }
  // Releases everything from the mark on.
  void unwindTo(const Mark& mark) noexcept;
  // Back to the mark's limits when nothing was abandoned.
  void leaveTo(const Mark& mark) noexcept {
    top_ = mark.top;
    hostFloor_ = mark.hostFloor;
  }

 private:
  // What every call from a host stores stands apart: compilers load neighbours together, and such a
  // load has to wait for stores to its halves.
  std::uintptr_t hostFloor_ = 0;
  Value* base_ = nullptr;
  Value* top_ = nullptr;
  Value* end_ = nullptr;
  Value* softLimit_ = nullptr;
  Value* limit_ = nullptr;  // frames end here at the latest
  std::uint32_t largestFrame_ = kLeastRoom;
};

}  // namespace tarvel::lua::internal
