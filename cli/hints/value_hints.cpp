#include "cli/hints/value_hints.h"

#include <cstddef>
#include <vector>

#include "cli/hints/library_names.h"

namespace tarvel::lua::internal {

namespace {

using StepKind = Chain::StepKind;

constexpr std::size_t kMostNamed = 3;

// A value on the way along a chain that may be the one that failed: what its first steps give or,
// with a method, what the object of the next step has under that name.
struct Suspect {
  std::size_t count;
  std::string method;
};

bool isRead(StepKind kind) {
  return kind == StepKind::Field || kind == StepKind::Key || kind == StepKind::Method;
}

std::vector<Suspect> calledValues(const ScriptTokens& tokens, const Chain& chain) {
  std::vector<Suspect> suspects;
  for (std::size_t i = 1; i < chain.steps.size(); ++i) {
    const Chain::Step& step = chain.steps[i];
    if (step.kind == StepKind::Call) suspects.push_back({i, {}});
    if (step.kind == StepKind::Method) suspects.push_back({i, nameOf(tokens, step)});
  }
  return suspects;
}

std::vector<Suspect> indexedValues(const Chain& chain, std::size_t count) {
  std::vector<Suspect> suspects;
  for (std::size_t i = 1; i < count; ++i) {
    if (isRead(chain.steps[i].kind)) suspects.push_back({i, {}});
  }
  return suspects;
}

// What a suspect is called in a hint.
std::string quoted(const ScriptCode& code, const Chain& chain, const Suspect& suspect) {
  if (suspect.method.empty()) return quotedText(code.tokens, chain, suspect.count);
  return "'" + textOf(code.tokens, chain, suspect.count) + ":" + suspect.method + "'";
}

std::string typed(std::string_view type) {
  if (type == "nil") return "nil";
  return (type == "iterator" ? "an " : "a ") + std::string(type);
}

std::string missingMethod(const ScriptCode& code, const Chain& chain, const Suspect& suspect) {
  std::string text =
      quotedText(code.tokens, chain, suspect.count) + " has no method '" + suspect.method + "'";
  for (const char* const library : {"file.", "table."}) {
    const std::string_view remedy = remedyFor(library + suspect.method);
    if (!remedy.empty()) return text.append(": ").append(remedy);
  }
  const std::string like = code.names.fieldLike(suspect.method);
  return like.empty() ? text : text + "; did you mean '" + like + "'?";
}

bool isCallOfOpen(const ScriptTokens& tokens, std::size_t first) {
  return tokens.isWord(first, "io") && tokens.isWord(first + 2, "open") &&
         tokens.is(first + 3, TokenKind::LeftParen);
}

std::string singleHint(const ScriptCode& code, const Chain& chain, const Suspect& suspect,
                       std::string_view type) {
  const std::string name = quoted(code, chain, suspect);
  if (type == "number" && chain.steps[suspect.count].kind == StepKind::Method) {
    return name + " is a number, and numbers have no methods";
  }
  if (type != "nil") return name + " is " + typed(type) + " here";
  if (!suspect.method.empty()) return missingMethod(code, chain, suspect);
  const Chain::Step& last = chain.steps[suspect.count - 1];
  if (last.kind == StepKind::Call || last.kind == StepKind::Method) {
    const bool isOpen = isCallOfOpen(code.tokens, chain.begin());
    return name + " returned nil" + (isOpen ? ": its second result tells why" : "");
  }
  if (isCallOfOpen(code.tokens, code.names.onlyValue(pathOf(code.tokens, chain, suspect.count)))) {
    return name + " is nil here: the second result of io.open tells why";
  }
  if (name == "'self'") return "'self' is nil here: methods are called with a colon, object:name()";
  const std::string like =
      last.kind == StepKind::Field ? code.names.fieldLike(nameOf(code.tokens, last)) : "";
  return name + " is nil here" + (like.empty() ? "" : "; did you mean '" + like + "'?");
}

// The hint on whichever of the suspects was of this type.
std::string suspectsHint(const ScriptCode& code, const Chain& chain,
                         const std::vector<Suspect>& all, std::string_view type) {
  std::vector<Suspect> suspects;
  for (const Suspect& suspect : all) {
    const std::string path = pathOf(code.tokens, chain, suspect.count);
    const bool isMethod = !suspect.method.empty();
    if (!isMethod && presenceOf(code, path) == Presence::Present) continue;
    std::string absence = type == "nil" && !isMethod ? absenceHint(code, path) : std::string();
    if (!absence.empty() && suspects.empty()) return absence;
    suspects.push_back(suspect);
  }
  if (suspects.size() == 1) return singleHint(code, chain, suspects.front(), type);
  if (suspects.empty() || suspects.size() > kMostNamed) return {};
  std::string names;
  for (std::size_t i = 0; i < suspects.size(); ++i) {
    names.append(i == 0 ? "" : i + 1 == suspects.size() ? " or " : ", ");
    names += quoted(code, chain, suspects[i]);
  }
  return names + " is " + typed(type) + " here";
}

// The step of a target of an assignment, or of a declared name, under which the value is stored;
// the number of steps where the chain is no target, or one of several.
std::size_t stepThatIsSet(const ScriptTokens& tokens, const Chain& chain, bool isDeclaration) {
  const std::size_t count = chain.steps.size();
  if (count < 2) return count;
  if (isDeclaration) return count - (chain.steps.back().kind == StepKind::Call ? 2 : 1);
  return tokens.is(chain.end(), TokenKind::Assign) ? count - 1 : count;
}

// The line that begins with a parenthesis and so calls what the line before ends with; 0 if there
// is none.
std::uint32_t lineThatCalls(const ScriptTokens& tokens, const Chain& chain) {
  for (const Chain::Step& step : chain.steps) {
    const std::uint32_t line = tokens[step.first].place.line;
    if (step.kind == StepKind::Call && line > tokens[step.first - 1].place.line) return line;
  }
  return 0;
}

}  // namespace

std::string callHint(const ScriptCode& code, std::string_view type) {
  const Chain chain = readChain(code.tokens, code.failed);
  if (chain.isEmpty()) return {};
  if (const std::uint32_t line = lineThatCalls(code.tokens, chain)) {
    return "the ( that line " + std::to_string(line) +
           " begins with calls what stands before it: put a ; in between";
  }
  if (type == "table") return "there are no metatables, so no table can be called";
  if (type == "iterator") return "an iterator is not called: it works in a for loop";
  return suspectsHint(code, chain, calledValues(code.tokens, chain), type);
}

std::string indexHint(const ScriptCode& code, std::string_view type) {
  const Chain chain = readChain(code.tokens, code.failed);
  const bool isDeclaration = code.tokens.is(code.failed - 1, TokenKind::Function);
  const std::size_t set = stepThatIsSet(code.tokens, chain, isDeclaration);
  return suspectsHint(code, chain, indexedValues(chain, set), type);
}

std::string assignmentHint(const ScriptCode& code, std::string_view type) {
  const bool isDeclaration = code.tokens.is(code.failed, TokenKind::Function);
  const Chain chain = readChain(code.tokens, code.failed + (isDeclaration ? 1 : 0));
  const std::size_t set = stepThatIsSet(code.tokens, chain, isDeclaration);
  if (set == 0 || set == chain.steps.size()) return {};  // or one of several targets
  if (type == "string") return "a string cannot be changed: make a new one with sub and ..";
  return suspectsHint(code, chain, {{set, {}}}, type);
}

std::string stringFieldHint(const ScriptCode& code) {
  const Chain chain = readChain(code.tokens, code.failed);
  std::vector<std::size_t> steps;
  for (std::size_t i = 1; i < chain.steps.size(); ++i) {
    if (!isRead(chain.steps[i].kind)) continue;
    const std::string name = nameOf(code.tokens, chain.steps[i]);
    const std::string path = "string." + name;
    if (isLibraryName(path) || code.names.setsField(path)) continue;
    const std::string_view remedy = remedyFor(path);
    if (!remedy.empty()) return path + " does not exist here: " + std::string(remedy);
    steps.push_back(i);
  }
  if (steps.size() != 1) return {};
  const Chain::Step& step = chain.steps[steps.front()];
  const std::string object = quotedText(code.tokens, chain, steps.front());
  if (step.kind == StepKind::Key) {
    return object + " is a string, which has no elements: s:sub(i, i) is one letter";
  }
  const std::string name = nameOf(code.tokens, step);
  std::string text = object + " is a string, and string has only ";
  std::string separator;
  for (const std::string_view member : libraryMembers("string")) {
    if (isLike(member, name)) {
      return "string." + name + " does not exist; did you mean '" + std::string(member) + "'?";
    }
    text.append(separator).append(member);
    separator = ", ";
  }
  return text;
}

}  // namespace tarvel::lua::internal
