#include "cli/hints/argument_hints.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <vector>

#include "cli/hints/library_names.h"

namespace tarvel::lua::internal {

namespace {

// "string.rep expects 2 arguments", taken apart.
struct Refusal {
  std::string_view function;  // of the library; empty where the message is another one
  std::size_t most = 0;       // arguments that it takes; 0 where the message is not about that
};

Refusal readRefusal(std::string_view message) {
  constexpr std::string_view kExpects = " expects ";
  const std::size_t end = message.find(kExpects);
  if (end == std::string_view::npos || !isLibraryName(message.substr(0, end))) return {};
  Refusal refusal{message.substr(0, end)};
  const std::string_view what = message.substr(end + kExpects.size());
  if (what.find(" argument") == std::string_view::npos || what.starts_with("at least")) {
    return refusal;
  }
  const std::size_t number = what.substr(0, what.find(" argument")).rfind(' ');
  const std::string_view digits = what.substr(number == std::string_view::npos ? 0 : number + 1);
  std::from_chars(digits.data(), digits.data() + digits.size(), refusal.most);
  return refusal;
}

std::string surplusHint(std::string_view function) {
  if (function == "string.rep") return "there is no separator";
  if (function == "string.gsub") return "there is no limit to the replacements";
  if (function == "table.concat") return "it takes no positions";
  return "surplus ones are errors";
}

// Whether the token is the name at the end of the function's path, followed by a call. A method of
// a string gets the string as its first argument.
bool callsByPath(const ScriptTokens& tokens, std::size_t name, std::string_view function) {
  const std::size_t point = function.find('.');
  const bool isMember = point != std::string_view::npos;
  return tokens.isWord(name, function.substr(isMember ? point + 1 : 0)) &&
         tokens.is(name - 1, TokenKind::Dot) == isMember &&
         (!isMember || tokens.isWord(name - 2, function.substr(0, point))) &&
         !tokens.is(name - 1, TokenKind::Colon) && !tokens.is(name - 1, TokenKind::Function);
}

bool callsAsMethod(const ScriptTokens& tokens, const ScriptNames& names, std::size_t name,
                   std::string_view function) {
  constexpr std::string_view kString = "string.";
  return function.starts_with(kString) && tokens.is(name - 1, TokenKind::Colon) &&
         tokens.isWord(name, function.substr(kString.size())) &&
         !names.setsSomeField(tokens[name].text);
}

bool isCall(const ScriptTokens& tokens, Argument argument) {
  const Chain chain = readChain(tokens, argument.first);
  if (chain.isEmpty() || chain.end() != argument.end) return false;
  const Chain::StepKind last = chain.steps.back().kind;
  return last == Chain::StepKind::Call || last == Chain::StepKind::Method;
}

}  // namespace

std::string argumentCountHint(const ScriptTokens& tokens, const ScriptNames& names,
                              std::string_view message) {
  const Refusal refusal = readRefusal(message);
  if (refusal.most == 0) return {};
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    const bool isMethod = callsAsMethod(tokens, names, i, refusal.function);
    if (!isMethod && !callsByPath(tokens, i, refusal.function)) continue;
    if (!tokens.is(i + 1, TokenKind::LeftParen)) continue;
    const std::vector<Argument> arguments = readArguments(tokens, i + 1);
    const std::size_t count = arguments.size() + (isMethod ? 1 : 0);
    const std::string place =
        "in line " + std::to_string(tokens[i].place.line) + " " + std::string(refusal.function);
    if (count > refusal.most) {
      return place + " gets too many arguments: " + surplusHint(refusal.function);
    }
    if (count == refusal.most && !arguments.empty() && isCall(tokens, arguments.back())) {
      return place + " gets all values of the call that stands last; surplus ones are errors";
    }
  }
  return {};
}

std::string argumentTypeHint(const ScriptCode& code, std::string_view message) {
  if (readRefusal(message).function.empty()) return {};
  const Chain chain = readChain(code.tokens, code.failed);
  for (const Chain::Step& step : chain.steps) {
    const std::size_t open = step.first + (step.kind == Chain::StepKind::Method ? 2 : 0);
    if (!code.tokens.is(open, TokenKind::LeftParen)) continue;
    for (const Argument argument : readArguments(code.tokens, open)) {
      const Chain value = readChain(code.tokens, argument.first);
      if (value.isEmpty() || value.end() != argument.end) continue;
      std::string hint = absenceHint(code, value, value.steps.size());
      if (!hint.empty()) return hint;
    }
  }
  if (message.ends_with(" a string argument")) {
    return "nothing is converted: a number needs tostring(n)";
  }
  if (message.ends_with(" a numeric argument")) {
    return "nothing is converted: a string needs tonumber(s)";
  }
  return {};
}

}  // namespace tarvel::lua::internal
