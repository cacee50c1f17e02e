#include "cli/hints.h"

#include <cstddef>
#include <exception>
#include <string>
#include <string_view>

#include "cli/hints/argument_hints.h"
#include "cli/hints/operand_hints.h"
#include "cli/hints/pattern_hints.h"
#include "cli/hints/syntax_hints.h"
#include "cli/hints/value_hints.h"

namespace tarvel::lua {

namespace {

using internal::ScriptCode;
using internal::ScriptNames;
using internal::ScriptTokens;
using internal::TokenKind;

// Of a failure whose place is not known.
std::string hintWithoutPlace(std::string_view message, std::string_view source) {
  const ScriptTokens tokens(source, {1, 1});
  if (internal::isPatternFailure(message)) return internal::patternHint(message, tokens);
  if (message == "value cannot be bridged out of TarvelLua") {
    return "print and return take no files, no iterators and no tables that contain themselves";
  }
  return internal::argumentCountHint(tokens, ScriptNames(tokens), message);
}

// ---- Messages that one hint fits ----------------------------------------------------------------

struct KnownMessage {
  std::string_view begin;
  const char* hint;
};

constexpr const char* kKeys =
    "keys are strings, booleans and whole numbers: not nil, fractions, tables or functions";
constexpr KnownMessage kKnownMessages[] = {
    {"table index must be ", kKeys},
    {"table keys must be ", kKeys},
    {"division by zero", "dividing by zero is an error for floats, too"},
    {"modulo by zero", "dividing by zero is an error for floats, too"},
    {"unsupported format token ",
     "there are only %d %i %f %s %%, without widths: docs/library.md shows how to pad and round"},
    {"unsupported string.unpack format", "there are only I4, < and >"},
    {"TarvelLua only supports string.unpack ", "there are only I4, < and >"},
};

std::string knownHint(std::string_view message) {
  for (const KnownMessage& known : kKnownMessages) {
    if (message.starts_with(known.begin)) return known.hint;
  }
  return {};
}

// ---- Messages with the place of an operator, a loop or a chain ----------------------------------

std::string iteratorHint(const ScriptCode& code) {
  std::size_t in = code.failed;
  while (in < code.tokens.size() && !code.tokens.is(in, TokenKind::In)) ++in;
  const internal::Chain chain = internal::readChain(code.tokens, in + 1);
  std::string absence = internal::absenceHint(code, chain, chain.steps.size());
  if (!absence.empty()) return absence;
  return "for needs pairs(t), ipairs(t) or string.gmatch(s, pattern), not a table or a function";
}

std::string stackHint(const ScriptCode& code) {
  const bool isReturned = code.tokens.is(code.failed - 1, TokenKind::Return);
  return isReturned ? "return f(x) nests like any other call: write a loop" : "";
}

struct OperandMessage {
  std::string_view begin;
  std::string (*hint)(const ScriptCode&);
};

constexpr OperandMessage kOperandMessages[] = {
    {"operator '", internal::arithmeticHint},
    {"unary '-' expects a number", internal::negationHint},
    {"length operator expects ", internal::lengthHint},
    {"ordered comparisons require ", internal::comparisonHint},
    {"numeric for loop expects numeric bounds", internal::loopBoundsHint},
    {"generic for loop expects an iterator", iteratorHint},
    {"string indexing only supports library methods", internal::stringFieldHint},
    {"stack overflow", stackHint},
};

struct TypeMessage {
  std::string_view begin;
  std::string (*hint)(const ScriptCode&, std::string_view type);
};

constexpr TypeMessage kTypeMessages[] = {
    {"attempt to call a ", internal::callHint},
    {"attempt to index a ", internal::indexHint},
    {"attempt to assign into a ", internal::assignmentHint},
};

// The script's own messages may look like any of these.
bool isOwnMessage(const ScriptCode& code) {
  return code.tokens.isWord(code.failed, "error") || code.tokens.isWord(code.failed, "assert");
}

std::string runTimeHint(const ScriptCode& code, std::string_view message) {
  if (isOwnMessage(code)) {
    const bool isTable = message.starts_with("table: 0x");
    return isTable ? "an error is a text: put what is to be told into it" : "";
  }
  for (const OperandMessage& known : kOperandMessages) {
    if (message.starts_with(known.begin)) return known.hint(code);
  }
  for (const TypeMessage& known : kTypeMessages) {
    if (!message.starts_with(known.begin)) continue;
    const std::string_view type = message.substr(known.begin.size());
    return known.hint(code, type.substr(0, type.find(' ')));
  }
  const std::string hint = knownHint(message);
  return hint.empty() ? internal::argumentTypeHint(code, message) : hint;
}

std::string findHint(const LuaError& error, std::string_view source) {
  using Kind = LuaError::Kind;
  const bool isOfScript = error.kind == Kind::Script || error.kind == Kind::Stack;
  if (!isOfScript && error.kind != Kind::Syntax) return {};
  if (error.line == 0) return hintWithoutPlace(error.message, source);
  const ScriptTokens tokens(source, {error.line, error.column});
  if (tokens.failed() == ScriptTokens::kNone) return {};
  if (error.kind == Kind::Syntax) return internal::syntaxHint(error.message, tokens);
  const ScriptNames names(tokens);
  return runTimeHint({tokens, names, tokens.failed()}, error.message);
}

}  // namespace

std::string hintFor(const LuaError& error, std::string_view source) {
  try {
    return findHint(error, source);
  } catch (const std::exception&) {
    return {};  // a text that is no script, or no memory: the message has to do
  }
}

}  // namespace tarvel::lua
