#include <tarvel/lua/lua_vm.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/script_container.h"
#include "tests/fuzz/choices.h"

// Reads texts, well-formed or not: raw bytes, or tokens in any order. What is not well-formed is
// refused at a place inside the text, the same each time. Then reads the bytes as a container.

namespace tarvel::lua::fuzz {

namespace {

// Between blanks; the end of a line is one, too.
constexpr std::string_view kTokens =
    "and break do else elseif end false for function if in nil local not or return then true while "
    "a b f + - * / % .. # == ~= < <= > >= = ( ) { } [ ] , ; : . 1 2.5 0x1F '' \"s\" [[ ]] -- --[[ "
    "' \\ "
    "@ \xc3 9999999999999999999 ";

std::string textOf(Choices choices) {
  std::vector<std::string_view> tokens{"\n", "if a then", "end end"};
  for (std::string_view rest = kTokens; !rest.empty(); rest.remove_prefix(tokens.back().size() + 1))
    tokens.push_back(rest.substr(0, rest.find(' ')));
  std::string text;
  while (!choices.isEmpty())
    text.append(tokens[choices.below(static_cast<unsigned>(tokens.size()))])
        .push_back(choices.oneIn(9) ? '\n' : ' ');
  return text;
}

bool isInside(std::string_view text, std::uint32_t line, std::uint32_t column) {
  if (line < 1 || column < 1) return false;
  for (; line > 1; --line) {
    const std::size_t end = text.find('\n');
    if (end == std::string_view::npos) return false;
    text.remove_prefix(end + 1);
  }
  // The end of the line, or of the text, is a place too.
  return column <= std::min(text.find('\n'), text.size()) + 1;
}

std::string problemOf(const std::string& text) {
  LuaVM vm;
  const auto first = vm.load(text, "chunk");
  if (first) return {};
  const LuaError& error = first.error();
  if (error.kind != LuaError::Kind::Syntax && error.kind != LuaError::Kind::Stack)
    return "refused for another reason: " + error.message;
  if (error.message.empty()) return "refused without a word";
  if (!isInside(text, error.line, error.column))
    return "refused outside the text: " + std::to_string(error.line) + ":" +
           std::to_string(error.column) + ": " + error.message;
  const LuaResult second = vm.runScriptString(text, "chunk");
  const std::string expected = "chunk:" + std::to_string(error.line) + ":" +
                               std::to_string(error.column) + ": " + error.message;
  return second.error == expected ? "" : second.error + " instead of " + expected;
}

// What is a container is what its parts make, and anything behind it.
std::string problemOfContainer(std::string_view bytes) {
  try {
    const std::string again = buildContainer(parseContainer(bytes));
    return bytes.starts_with(again) ? "" : "another container";
  } catch (const std::runtime_error&) {
    return {};
  }
}

}  // namespace

std::string findProblem(std::span<const std::uint8_t> bytes) {
  const std::string raw(bytes.begin(), bytes.end());
  const std::string tokens = textOf(Choices(bytes));
  // Hardly any bytes would have the right beginning.
  const std::string container = std::string("TLBC\1\0\0\0", 8) + raw;
  const std::pair<std::string, std::string> problems[] = {
      {problemOf(raw), raw},
      {problemOf(tokens), tokens},
      {problemOfContainer(raw), raw},
      {problemOfContainer(container), container},
  };
  for (const auto& [problem, text] : problems)
    if (!problem.empty()) return problem + "\n---- text\n" + text + "\n";
  return {};
}

}  // namespace tarvel::lua::fuzz
