#include "cli/reporting.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <new>

#include "cli/hints.h"

namespace tarvel::lua {

namespace {

constexpr std::string_view kProgramPrefix = "tarvellua: ";

void write(std::string_view text) { std::fwrite(text.data(), 1, text.size(), stderr); }

void reportWithHelp(std::string_view prefix, std::string_view message, std::string_view help) {
  try {
    std::string lines;
    lines.reserve(prefix.size() + message.size() + help.size() + 1);
    write(lines.append(prefix).append(message).append(help).append("\n"));
  } catch (const std::bad_alloc&) {
    for (const std::string_view part : {prefix, message, help, std::string_view("\n")}) write(part);
  }
}

std::string_view messageOf(const std::exception& error) {
  if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr) return "not enough memory";
  const auto* const failedRun = dynamic_cast<const FailedRun*>(&error);
  if (failedRun != nullptr && !failedRun->message.empty()) return failedRun->message;
  return error.what();
}

std::string traceOf(const LuaError& error) {
  LuaError callsOnly;
  callsOnly.trace = error.trace;
  return callsOnly.toString();
}

}  // namespace

bool traceIsWanted() {
  const char* const value = std::getenv("TARVELLUA_TRACE");
  return value != nullptr && std::string_view(value) == "1";
}

bool hintsAreWanted() { return isatty(STDERR_FILENO) == 1; }

std::string helpFor(const LuaError& error, std::string_view source) {
  try {
    std::string help = traceOf(error);
    const std::string hint = hintsAreWanted() ? hintFor(error, source) : std::string();
    if (!hint.empty()) help.append("\nhint: ").append(hint);
    return help;
  } catch (const std::bad_alloc&) {
    return {};  // the message is what has to come out
  }
}

void report(std::string_view prefix, std::string_view message) {
  reportWithHelp(prefix, message, {});
}

void report(std::string_view prefix, const std::exception& error) {
  const auto* const failedRun = dynamic_cast<const FailedRun*>(&error);
  const std::string_view help = failedRun != nullptr ? failedRun->help : std::string_view();
  reportWithHelp(prefix, messageOf(error), help);
}

int fail(std::string_view message) {
  report(kProgramPrefix, message);
  return 1;
}

int fail(const std::exception& error) {
  report(kProgramPrefix, error);
  return 1;
}

}  // namespace tarvel::lua
