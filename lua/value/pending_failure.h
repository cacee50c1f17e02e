#pragma once

#include <string>
#include <utility>

#include "lua/value/errors.h"
#include "lua/value/value.h"

namespace tarvel::lua::internal {

// What a failed completion (completion.h) stands for, from where it is made to the pcall that takes
// it or to where it is raised as an exception. An interpreter has one at a time, because nothing
// runs meanwhile.
class PendingFailure {
 public:
  // Each takes over the text and returns the completion. A message from outside the interpreter's
  // memory stays there until the abandoned frames have been released.
  Value set(OwnedValue text, Site site) noexcept;
  Value set(std::string message, Site site) noexcept;
  Value set(ProtectedRuntimeError&& error) noexcept;

  // Throws it, in the form that the active pcalls ask for. Inline, because unwinding costs
  // thousands of instructions for each function on the way.
  [[noreturn, gnu::always_inline]] inline void raise() {
    prepareError();
    if (isInProtectedCall()) throw std::move(error_);
    raiseUnprotected();
  }
  // For a pcall: the text as a string, or nil, and then it is message().
  Value takeText() noexcept { return text_.take(); }
  const std::string& message() const noexcept { return error_.message; }

 private:
  void prepareError();
  [[noreturn]] void raiseUnprotected();

  OwnedValue text_;
  ProtectedRuntimeError error_;
};

}  // namespace tarvel::lua::internal
