#include "lua/value/pending_failure.h"

#include <utility>

#include "lua/value/completion.h"
#include "lua/value/string_object.h"

namespace tarvel::lua::internal {

Value PendingFailure::set(OwnedValue text, Site site) noexcept {
  text_ = std::move(text);
  error_.site = site;
  error_.hasLocation = true;
  error_.kind = FailureKind::Script;
  return failedCompletion();
}

Value PendingFailure::set(std::string message, Site site) noexcept {
  return set({std::move(message), site, true, FailureKind::Script});
}

Value PendingFailure::set(ProtectedRuntimeError&& error) noexcept {
  text_ = OwnedValue();
  error_ = std::move(error);
  return failedCompletion();
}

void PendingFailure::prepareError() {
  if (!text_.get().isString()) return;
  error_.message = text_.get().string->view();
  text_ = OwnedValue();
}

void PendingFailure::raiseUnprotected() {
  throw RuntimeError(error_.message, error_.site, error_.hasLocation, error_.kind);
}

}  // namespace tarvel::lua::internal
