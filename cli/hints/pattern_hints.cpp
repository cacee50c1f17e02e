#include "cli/hints/pattern_hints.h"

#include <cstddef>
#include <vector>

#include "cli/hints/chain.h"

namespace tarvel::lua::internal {

namespace {

bool isRepetition(char c) { return c == '*' || c == '+' || c == '?' || c == '-'; }

// What is wrong with the pattern; empty if nothing that is sure.
std::string faultIn(std::string_view pattern) {
  std::size_t open = 0;          // groups
  bool hasNothingBefore = true;  // that could be repeated
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    const char c = pattern[i];
    if (isRepetition(c) && hasNothingBefore) {
      return std::string("'") + c + "' repeats what precedes it: write %" + c +
             " for the character";
    }
    hasNothingBefore = c == '(' || c == '^';
    if (c == '%') ++i;
    if (c == '[') {
      const std::size_t end = pattern.find(']', i);
      if (end == std::string_view::npos) return {};
      i = end;
    }
    if (c == '(') {
      ++open;
      if (pattern.substr(i + 1, 1) == "?") i += 2;  // a group that captures nothing
    }
    if (c == ')' && open-- == 0) return "a ) has no (: write %) for the character";
  }
  return open > 0 ? "a ( has no ): write %( for the character" : "";
}

// The pattern in the call of the function whose name this is; kNone where there is none, where it
// is not a string on its own, and where a third argument behind it makes a plain text of it.
std::size_t patternOf(const ScriptTokens& tokens, std::size_t name) {
  const std::string& text = tokens[name].text;
  const bool isMethod = tokens.is(name - 1, TokenKind::Colon);
  const bool isFunction = tokens.is(name - 1, TokenKind::Dot) && tokens.isWord(name - 2, "string");
  const bool takesPattern = text == "find" || text == "match" || text == "gmatch" || text == "gsub";
  if (!takesPattern || !(isMethod || isFunction)) return ScriptTokens::kNone;
  const std::vector<Argument> arguments = readArguments(tokens, name + 1);
  const std::size_t index = isMethod ? 0 : 1;
  if (arguments.size() <= index || arguments.size() > index + 2) return ScriptTokens::kNone;
  const Argument pattern = arguments[index];
  const bool isString =
      tokens.is(pattern.first, TokenKind::String) && pattern.end == pattern.first + 1;
  return isString ? pattern.first : ScriptTokens::kNone;
}

}  // namespace

bool isPatternFailure(std::string_view message) {
  return message.find("regular expression") != std::string_view::npos ||
         message.find("bracket expression") != std::string_view::npos ||
         message == "Invalid character class.";
}

std::string patternHint(std::string_view message, const ScriptTokens& tokens) {
  if (message.find("range") != std::string_view::npos) {
    return "in a set - makes a range, also behind %: put it first or last for the character";
  }
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    if (!tokens.is(i, TokenKind::Identifier)) continue;
    const std::size_t pattern = patternOf(tokens, i);
    if (pattern == ScriptTokens::kNone) continue;
    const std::string fault = faultIn(tokens[pattern].text);
    if (fault.empty()) continue;
    return "in line " + std::to_string(tokens[pattern].place.line) + " " + fault;
  }
  return "in a pattern - * + ? repeat what precedes them, and ( ) [ ] group: write %- and so on "
         "for the characters";
}

}  // namespace tarvel::lua::internal
