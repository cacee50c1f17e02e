#pragma once

#include <tarvel/lua/lua_export.h>
#include <tarvel/lua/lua_value.h>

#include <cassert>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

// What a run, a call or a conversion came to. These are plain values of the host: they own what
// they hold, outlive the LuaVM, and may be used on any thread, except for functions in a LuaValue,
// see LuaFunctionHandle.

namespace tarvel::lua {

// What ended a run, or why a value could not be had.
struct TARVELLUA_API LuaError {
  enum class Kind : std::uint32_t {
    Syntax,   // the text is not well-formed; nothing of it ran
    Script,   // an error of the script, of a library function, or in a bound function's arguments
    Host,     // a std::exception that a function or an output callback of the host threw
    Value,    // a value is not of the C++ type that the host asked for, or cannot cross; where
              // that shows only at the host, there is no chunk and no line
    Stack,    // calls nested too deeply for the thread's stack, or for LuaLimits::stack
    Memory,   // the process has no more memory to give, or LuaLimits::memory is reached
    Steps,    // LuaLimits::steps used up
    Time,     // LuaLimits::time used up
    Stopped,  // LuaLimits::stop was requested
    Exit,     // the script called os.exit; `exitCode` is set
  };
  // A call that the error passed through.
  struct Frame {
    std::string function{};  // "total", "Account:deposit"; "<chunk>" for a script's top level
    std::string chunk{};     // empty for a function of the library or the host
    std::uint32_t line = 0;  // the line that was being executed there, 1-based; 0 where unknown
  };

  Kind kind = Kind::Script;
  std::string message{};     // without the location
  std::string chunk{};       // the chunk that the failing code stands in, whoever called it
  std::uint32_t line = 0;    // 1-based; 0 where unknown
  std::uint32_t column = 0;  // 1-based, in bytes; 0 where unknown
  std::int32_t exitCode = 0;
  // Innermost first, at most 32; empty unless LuaOptions::supervised.
  std::vector<Frame> trace{};

  // "chunk:line: message", for Syntax "chunk:line:column: message"; then one line for each frame.
  std::string toString() const;
};

// Thrown by LuaOutcome::value, and by nothing else of the library. what() is LuaError::toString
// without the trace.
class TARVELLUA_API LuaException : public std::runtime_error {
 public:
  explicit LuaException(LuaError error);
  ~LuaException() override;
  const LuaError& error() const noexcept { return *error_; }

 private:
  std::shared_ptr<const LuaError> error_;  // shared, because copying an exception must not fail
};

namespace bridge {

// Not for hosts. The error of an outcome; where there is no memory for it, one that all outcomes
// share and that says so.
struct TARVELLUA_API ErrorRelease {
  void operator()(LuaError* error) const noexcept;
};
using HeldError = std::unique_ptr<LuaError, ErrorRelease>;
TARVELLUA_API HeldError holdError(LuaError&& error) noexcept;

// Leaves another error behind where it is moved from, so that an outcome that failed stays one.
class MovableError {
 public:
  MovableError() = default;
  explicit MovableError(LuaError&& error) noexcept : held_(holdError(std::move(error))) {}
  MovableError(MovableError&& other) noexcept : held_(std::move(other.held_)) { refill(other); }
  MovableError& operator=(MovableError&& other) noexcept {
    held_ = std::move(other.held_);
    refill(other);
    return *this;
  }
  ~MovableError() = default;

  bool isNone() const noexcept { return held_ == nullptr; }
  const LuaError& get() const noexcept {
    assert(held_ != nullptr);
    return *held_;
  }

 private:
  void refill(MovableError& other) const noexcept {
    if (held_ != nullptr && other.held_ == nullptr)
      other.held_ = holdError({.kind = LuaError::Kind::Value, .message = "was moved from"});
  }

  HeldError held_;
};

}  // namespace bridge

// A value or an error; T may be void. Can be moved, not copied. One that was moved from is true or
// false as before; its value is then a T that was moved from, its error says "was moved from".
//
// `*outcome` and `outcome->` are only for an outcome that is true, error() only for one that is
// false. Anything else is undefined; assert() finds it in debug builds.
template <class T>
class [[nodiscard]] LuaOutcome {
 public:
  // Both are meant to be implicit: a function returns either.
  // NOLINTNEXTLINE(google-explicit-constructor)
  LuaOutcome(T value) : value_(std::move(value)) {}
  // NOLINTNEXTLINE(google-explicit-constructor)
  LuaOutcome(LuaError error) noexcept : error_(std::move(error)) {}
  // Whether there is a value. For a LuaOutcome<bool>, too: `if (vm.call<bool>(rule))` does not ask
  // what the rule said.
  explicit operator bool() const noexcept { return value_.has_value(); }

  // Only where there is a value; a reference into this outcome.
  T& operator*() noexcept {
    assert(value_.has_value());
    return *value_;
  }
  const T& operator*() const noexcept {
    assert(value_.has_value());
    return *value_;
  }
  T* operator->() noexcept { return &**this; }
  const T* operator->() const noexcept { return &**this; }

  // Only where there is no value.
  const LuaError& error() const noexcept { return error_.get(); }

  // For hosts that prefer exceptions: the value, or throws LuaException. The value is moved out, so
  // this is for one use; `*outcome` is for several.
  T value() {
    if (!value_) throw LuaException(error_.get());
    return std::move(*value_);
  }

 private:
  std::optional<T> value_;
  bridge::MovableError error_;
};

template <>
class [[nodiscard]] LuaOutcome<void> {
 public:
  LuaOutcome() = default;
  // NOLINTNEXTLINE(google-explicit-constructor)
  LuaOutcome(LuaError error) noexcept : error_(std::move(error)) {}
  explicit operator bool() const noexcept { return error_.isNone(); }
  const LuaError& error() const noexcept { return error_.get(); }
  void value() {
    if (!error_.isNone()) throw LuaException(error_.get());
  }

 private:
  bridge::MovableError error_;
};

// What one run of a script came to. It owns what it holds and stays valid after the LuaVM is gone.
struct LuaResult {
  bool ok = false;  // the run finished without an error
  // What the script returned: nil, one value, or several as a table with the keys 1, 2, ...: a
  // sequence, or an object if there is a nil among them; nils at the end are lost.
  LuaValue value;
  // "chunk:line: message". The chunk is the one that was run, also where the failing function came
  // from another one; the line is that of the function's own text. Without chunk and line "value
  // cannot be bridged out of TarvelLua" when the script returned what a LuaValue cannot hold: a
  // file, an iterator, an object of the host, or a table that contains itself. A script gets the
  // same message where it prints one of these, which have no printable form. Empty on success, and
  // where there was no memory even for the message.
  std::string error;
  bool exitRequested = false;  // the script called os.exit; `value` is then the code
  std::int32_t exitCode = 0;   // the code that it passed
  // The same failure as data, with the chunk that the failing code really stands in; null on
  // success, and where there was no memory for it.
  std::shared_ptr<const LuaError> detail;
};

}  // namespace tarvel::lua
