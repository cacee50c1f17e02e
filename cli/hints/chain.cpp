#include "cli/hints/chain.h"

namespace tarvel::lua::internal {

namespace {

// Behind the `end` of the function expression that begins with the token; kNone where it is
// missing.
std::size_t endOfFunction(const ScriptTokens& tokens, std::size_t first) {
  std::size_t depth = 0;
  for (std::size_t i = first; i < tokens.size(); ++i) {
    switch (tokens.kind(i)) {
      case TokenKind::Function:
      case TokenKind::If:
      case TokenKind::Do:
        ++depth;
        break;
      case TokenKind::End:
        if (--depth == 0) return i + 1;
        break;
      default:
        break;
    }
  }
  return ScriptTokens::kNone;
}

std::size_t behindBracket(const ScriptTokens& tokens, std::size_t open) {
  const std::size_t close = tokens.closingBracket(open);
  return close == ScriptTokens::kNone ? close : close + 1;
}

std::size_t endOfStart(const ScriptTokens& tokens, std::size_t first) {
  switch (tokens.kind(first)) {
    case TokenKind::LeftParen:
    case TokenKind::LeftBrace:
      return behindBracket(tokens, first);
    case TokenKind::Function:
      return endOfFunction(tokens, first);
    default:
      return endsOperand(tokens.kind(first)) ? first + 1 : ScriptTokens::kNone;
  }
}

// What follows the chain at the index; an end of kNone where it is cut off, of `first` where
// nothing does.
Chain::Step readStep(const ScriptTokens& tokens, std::size_t first) {
  using Kind = Chain::StepKind;
  switch (tokens.kind(first)) {
    case TokenKind::Dot:
      return {Kind::Field, first, first + 2};
    case TokenKind::LeftBracket:
      return {Kind::Key, first, behindBracket(tokens, first)};
    case TokenKind::LeftParen:
      return {Kind::Call, first, behindBracket(tokens, first)};
    case TokenKind::Colon:
      return {Kind::Method, first, behindBracket(tokens, first + 2)};
    default:
      return {Kind::Start, first, first};
  }
}

std::string argumentsText(const ScriptTokens& tokens, std::size_t open) {
  return tokens.is(open + 1, TokenKind::RightParen) ? "()" : "(...)";
}

std::string stepText(const ScriptTokens& tokens, const Chain::Step& step) {
  switch (step.kind) {
    case Chain::StepKind::Start:
      if (step.end == step.first + 1) return tokens.text(step.first);
      return step.end == step.first + 3 ? "(" + tokens.text(step.first + 1) + ")" : "(...)";
    case Chain::StepKind::Field:
      return "." + tokens[step.first + 1].text;
    case Chain::StepKind::Key:
      return step.end == step.first + 3 ? "[" + tokens.text(step.first + 1) + "]" : "[...]";
    case Chain::StepKind::Method:
      return ":" + tokens[step.first + 1].text + argumentsText(tokens, step.first + 2);
    case Chain::StepKind::Call:
      return argumentsText(tokens, step.first);
  }
  return {};
}

}  // namespace

Chain readChain(const ScriptTokens& tokens, std::size_t first) {
  Chain chain;
  Chain::Step step{Chain::StepKind::Start, first, endOfStart(tokens, first)};
  while (step.end != step.first) {
    if (step.end == ScriptTokens::kNone) return {};
    chain.steps.push_back(step);
    step = readStep(tokens, step.end);
  }
  return chain;
}

std::size_t startOfChain(const ScriptTokens& tokens, std::size_t last) {
  for (std::size_t i = last; i < tokens.size();) {
    switch (tokens.kind(i)) {
      case TokenKind::Identifier:
        if (!tokens.is(i - 1, TokenKind::Dot) && !tokens.is(i - 1, TokenKind::Colon)) return i;
        i -= 2;
        break;
      case TokenKind::RightParen:
      case TokenKind::RightBracket: {
        const bool isStart = tokens.is(i, TokenKind::RightParen);
        const std::size_t open = tokens.openingBracket(i);
        if (isStart && !endsOperand(tokens.kind(open - 1))) return open;
        i = open - 1;
        break;
      }
      case TokenKind::RightBrace:
        return tokens.openingBracket(i);
      case TokenKind::End:
        return ScriptTokens::kNone;
      default:
        return endsOperand(tokens.kind(i)) ? i : ScriptTokens::kNone;
    }
  }
  return ScriptTokens::kNone;
}

std::vector<Argument> readArguments(const ScriptTokens& tokens, std::size_t openParenthesis) {
  std::vector<Argument> arguments;
  const std::size_t close = tokens.closingBracket(openParenthesis);
  if (close == ScriptTokens::kNone) return arguments;
  std::size_t first = openParenthesis + 1;
  for (std::size_t i = first; i <= close; ++i) {
    if (i == close || tokens.is(i, TokenKind::Comma)) {
      if (i > first) arguments.push_back({first, i});
      first = i + 1;
    } else if (const std::size_t end = tokens.closingBracket(i); end != ScriptTokens::kNone) {
      i = end;
    }
  }
  return arguments;
}

std::string textOf(const ScriptTokens& tokens, const Chain& chain, std::size_t count) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) text += stepText(tokens, chain.steps[i]);
  return text;
}

std::string quotedText(const ScriptTokens& tokens, const Chain& chain, std::size_t count) {
  const std::string text = textOf(tokens, chain, count);
  return text.starts_with('"') ? text : "'" + text + "'";
}

std::string pathOf(const ScriptTokens& tokens, const Chain& chain, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    const Chain::StepKind kind = chain.steps[i].kind;
    const bool isName =
        i == 0 ? tokens.is(chain.begin(), TokenKind::Identifier) : kind == Chain::StepKind::Field;
    if (!isName) return {};
  }
  return textOf(tokens, chain, count);
}

std::string nameOf(const ScriptTokens& tokens, const Chain::Step& step) {
  switch (step.kind) {
    case Chain::StepKind::Start:
      return tokens.is(step.first, TokenKind::Identifier) ? tokens[step.first].text : std::string();
    case Chain::StepKind::Field:
    case Chain::StepKind::Method:
      return tokens[step.first + 1].text;
    default:
      return {};
  }
}

}  // namespace tarvel::lua::internal
