#include "lua/failure_report.h"

#include <exception>
#include <new>

#include "lua/lua_vm_impl.h"
#include "lua/value/string_object.h"

namespace tarvel::lua::internal {

namespace {

LuaError::Kind publicKind(FailureKind kind) noexcept {
  switch (kind) {
    case FailureKind::Syntax:
      return LuaError::Kind::Syntax;
    case FailureKind::Script:
      break;
    case FailureKind::Host:
      return LuaError::Kind::Host;
    case FailureKind::Stack:
      return LuaError::Kind::Stack;
    case FailureKind::Memory:
      return LuaError::Kind::Memory;
  }
  return LuaError::Kind::Script;
}

}  // namespace

FailureKind hostFailureKind(const std::exception& error) noexcept {
  if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr) return FailureKind::Memory;
  const auto* const passedOn = dynamic_cast<const LuaException*>(&error);
  if (passedOn == nullptr) return FailureKind::Host;
  switch (passedOn->error().kind) {
    case LuaError::Kind::Script:
      return FailureKind::Script;
    case LuaError::Kind::Stack:
      return FailureKind::Stack;
    case LuaError::Kind::Memory:
      return FailureKind::Memory;
    default:
      return FailureKind::Host;
  }
}

// ---- While the frames stand ---------------------------------------------------------------------

FailureReport::FailureReport(const LuaVM::Impl& interpreter) {
  try {
    throw;
  } catch (const RuntimeError& error) {
    takeScriptError(interpreter, error);
  } catch (const ProtectedRuntimeError& error) {
    takeScriptError(interpreter, error);
  } catch (const UnparsedError& error) {
    takeUnparsed(error);
  } catch (const StopSignal& stop) {
    takeStop(interpreter, stop);
  } catch (const ExitSignal& exit) {
    kind_ = LuaError::Kind::Exit;
    message_ = "ended by os.exit";
    exitCode_ = exit.code;
  } catch (const std::exception& error) {
    if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr) kind_ = LuaError::Kind::Memory;
    message_ = exceptionText(error);
    takeTrace(interpreter, 0);
  }
}

template <class ScriptError>
void FailureReport::takeScriptError(const LuaVM::Impl& interpreter,
                                    const ScriptError& error) noexcept {
  kind_ = publicKind(error.kind);
  message_ = error.message;
  isLocatedInText_ = error.hasLocation;
  takePlace(interpreter, error.site);
  takeTrace(interpreter, error.site);
}

void FailureReport::takeUnparsed(const UnparsedError& error) noexcept {
  kind_ = publicKind(error.kind);
  message_ = error.message;
  isLocatedInText_ = true;
  chunk_ = error.chunk;
  place_ = {error.line, error.column};
}

void FailureReport::takeStop(const LuaVM::Impl& interpreter, const StopSignal& stop) noexcept {
  switch (stop.reason) {
    case StopSignal::Reason::Steps:
      kind_ = LuaError::Kind::Steps;
      message_ = "used up its steps";
      break;
    case StopSignal::Reason::Time:
      kind_ = LuaError::Kind::Time;
      message_ = "used up its time";
      break;
    case StopSignal::Reason::Request:
      kind_ = LuaError::Kind::Stopped;
      message_ = "stopped by the host";
      break;
  }
  isLocatedInText_ = true;
  takePlace(interpreter, stop.site);
  takeTrace(interpreter, stop.site);
}

void FailureReport::takePlace(const LuaVM::Impl& interpreter, Site site) noexcept {
  SiteTable::Entry entry = interpreter.sites.find(site);
  if (!entry.chunkName.get().isString()) return;
  chunkName_ = std::move(entry.chunkName);
  chunk_ = chunkName_.get().string->view();
  place_ = entry.place;
}

// A call was executing the call that is noted before it; the innermost one is where it failed.
void FailureReport::takeTrace(const LuaVM::Impl& interpreter, Site failedAt) noexcept {
  Site executed = failedAt;
  for (std::size_t i = 0; i < interpreter.trace.size(); ++i) {
    const Trace::Call& call = interpreter.trace[i];
    Frame& frame = frames_[frameCount_++];
    frame.function = OwnedValue::share(Value(call.function));
    if (!call.isNative) {
      SiteTable::Entry entry = interpreter.sites.find(executed);
      frame.chunk = std::move(entry.chunkName);
      frame.line = entry.place.line;
    }
    executed = call.site;
  }
}

// ---- Afterwards ---------------------------------------------------------------------------------

std::string FailureReport::textFor(std::string_view runChunk) const {
  std::string text;
  if (isLocatedInText_ && place_.line > 0) {
    text.append(runChunk).append(":").append(std::to_string(place_.line)).append(":");
    if (kind_ == LuaError::Kind::Syntax) text.append(std::to_string(place_.column)).append(":");
    text.append(" ");
  }
  return text.append(message_);
}

LuaError FailureReport::error() const {
  LuaError error;
  error.kind = kind_;
  error.message = message_;
  error.chunk = chunk_;
  error.line = place_.line;
  error.column = place_.column;
  error.exitCode = exitCode_;
  error.trace.reserve(frameCount_);
  for (std::size_t i = 0; i < frameCount_; ++i) {
    const Frame& frame = frames_[i];
    const auto text = [](const OwnedValue& value) {
      return std::string(value.get().isString() ? value.get().string->view() : std::string_view());
    };
    error.trace.push_back({text(frame.function), text(frame.chunk), frame.line});
  }
  return error;
}

}  // namespace tarvel::lua::internal
