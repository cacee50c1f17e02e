#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cli/hints/script_tokens.h"

namespace tarvel::lua::internal {

// A value with the fields, keys and calls that follow it, as `shop.items[1]:price()`. Its first
// token is the place of whatever fails in it.
struct Chain {
  enum class StepKind { Start, Field, Key, Method, Call };
  // The tokens [first, end). A method includes its call.
  struct Step {
    StepKind kind;
    std::size_t first;
    std::size_t end;
  };

  std::vector<Step> steps;  // the start is the first; none where there is no chain

  std::size_t begin() const { return steps.front().first; }
  std::size_t end() const { return steps.back().end; }
  bool isEmpty() const { return steps.empty(); }
};

// The chain that starts with the token; without steps where none does, or where it has no end.
Chain readChain(const ScriptTokens& tokens, std::size_t first);

// The first token of the chain whose last one this is; kNone where that is not sure.
std::size_t startOfChain(const ScriptTokens& tokens, std::size_t last);

// The arguments of a call, each from its first token to behind its last one.
struct Argument {
  std::size_t first;
  std::size_t end;
};
std::vector<Argument> readArguments(const ScriptTokens& tokens, std::size_t openParenthesis);

// The first `count` steps for readers: arguments and longer keys are shortened to "...".
std::string textOf(const ScriptTokens& tokens, const Chain& chain, std::size_t count);

// The same in single quotes, unless it begins with a quote of its own.
std::string quotedText(const ScriptTokens& tokens, const Chain& chain, std::size_t count);

// The same for a name and fields only, "table.insert"; empty for all else.
std::string pathOf(const ScriptTokens& tokens, const Chain& chain, std::size_t count);

// The name of a field, a method or a start that is a name; empty for all else.
std::string nameOf(const ScriptTokens& tokens, const Chain::Step& step);

}  // namespace tarvel::lua::internal
