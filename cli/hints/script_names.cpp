#include "cli/hints/script_names.h"

#include <algorithm>

#include "cli/hints/chain.h"
#include "cli/hints/library_names.h"

namespace tarvel::lua::internal {

namespace {

template <class Candidates>
void collectLike(const Candidates& candidates, std::string_view name,
                 std::set<std::string, std::less<>>& found) {
  for (const auto& candidate : candidates) {
    if (isLike(candidate, name)) found.emplace(candidate);
  }
}

std::string onlyOne(const std::set<std::string, std::less<>>& found) {
  return found.size() == 1 ? *found.begin() : std::string();
}

}  // namespace

ScriptNames::ScriptNames(const ScriptTokens& tokens) : tokens_(tokens) {
  for (std::size_t i = 0; i < tokens_.size(); ++i) {
    switch (tokens_.kind(i)) {
      case TokenKind::Local:
        if (!tokens_.is(i + 1, TokenKind::Function)) noteNames(i + 1, true);
        break;
      case TokenKind::For:
        noteNames(i + 1, true);
        break;
      case TokenKind::Function:
        noteFunction(i);
        break;
      case TokenKind::Assign:
        noteTargets(i);
        break;
      default:
        break;
    }
  }
}

void ScriptNames::noteVariable(std::size_t token, bool isLocal) {
  std::vector<Setting>& settings = variables_[tokens_[token].text];
  const auto isNoted = [token](const Setting& setting) { return setting.token == token; };
  if (std::ranges::none_of(settings, isNoted)) settings.push_back({token, isLocal});
}

void ScriptNames::noteNames(std::size_t first, bool isLocal) {
  for (std::size_t i = first; tokens_.is(i, TokenKind::Identifier); i += 2) {
    noteVariable(i, isLocal);
    if (!tokens_.is(i + 1, TokenKind::Comma)) return;
  }
}

void ScriptNames::noteFunction(std::size_t keyword) {
  std::size_t i = keyword + 1;
  if (tokens_.is(i, TokenKind::Identifier)) {
    const std::size_t first = i;
    while (tokens_.is(i + 1, TokenKind::Dot) || tokens_.is(i + 1, TokenKind::Colon)) i += 2;
    if (i == first) {
      noteVariable(i, tokens_.is(keyword - 1, TokenKind::Local));
    } else {
      noteTarget(first, i);
    }
    if (tokens_.is(i - 1, TokenKind::Colon)) variables_["self"].push_back({i, true});
    ++i;
  }
  if (tokens_.is(i, TokenKind::LeftParen)) noteNames(i + 1, true);
}

// What stands in front of an `=`. The name of a field in a constructor looks like a variable, and
// is taken for one as well, which at worst leaves something unsaid.
void ScriptNames::noteTargets(std::size_t assign) {
  for (std::size_t last = assign - 1;;) {
    const std::size_t first = startOfChain(tokens_, last);
    if (first == ScriptTokens::kNone) return;
    noteTarget(first, last);
    if (!tokens_.is(first - 1, TokenKind::Comma)) return;
    last = first - 2;
  }
}

void ScriptNames::noteTarget(std::size_t first, std::size_t last) {
  if (!tokens_.is(last, TokenKind::Identifier)) return;
  fieldNames_.insert(tokens_[last].text);
  if (first == last) return noteVariable(first, false);
  std::string path;
  for (std::size_t i = first; i <= last; ++i) {
    path += tokens_.is(i, TokenKind::Colon) ? "." : tokens_[i].text;
  }
  fields_.insert(std::move(path));
}

std::size_t ScriptNames::onlyValue(std::string_view name) const {
  const auto found = variables_.find(name);
  if (found == variables_.end() || found->second.size() != 1) return ScriptTokens::kNone;
  const std::size_t token = found->second.front().token;
  if (tokens_.is(token - 1, TokenKind::Comma)) return ScriptTokens::kNone;
  std::size_t i = token + 1;
  while (tokens_.is(i, TokenKind::Comma)) i += 2;  // more names
  return tokens_.is(i, TokenKind::Assign) ? i + 1 : ScriptTokens::kNone;
}

std::string ScriptNames::meaningOf(const std::string& name) const {
  const std::size_t value = onlyValue(name);
  const Chain chain = value == ScriptTokens::kNone ? Chain() : readChain(tokens_, value);
  const std::string path = chain.isEmpty() ? "" : pathOf(tokens_, chain, chain.steps.size());
  const std::string library = path.substr(0, path.find('.'));
  const bool isWhole = !chain.isEmpty() && !isOperator(tokens_.kind(chain.end()));
  const bool isOfLibrary = library.size() < path.size() && !libraryMembers(library).empty();
  return isWhole && isOfLibrary && !setsVariable(library) ? path : name;
}

bool ScriptNames::isLocalOnlyBehind(std::string_view name, std::size_t token) const {
  const auto found = variables_.find(name);
  const auto isBehind = [token](const Setting& s) { return s.isLocal && s.token > token; };
  return found != variables_.end() && std::ranges::all_of(found->second, isBehind);
}

std::string ScriptNames::variableLike(std::string_view name) const {
  std::set<std::string, std::less<>> found;
  collectLike(libraryMembers(""), name, found);
  for (const auto& [variable, settings] : variables_) {
    if (isLike(variable, name)) found.insert(variable);
  }
  return onlyOne(found);
}

std::string ScriptNames::fieldLike(std::string_view name) const {
  std::set<std::string, std::less<>> found;
  collectLike(fieldNames_, name, found);
  return onlyOne(found);
}

bool isLike(std::string_view a, std::string_view b) {
  if (a == b) return false;
  if (a.size() > b.size()) std::swap(a, b);
  if (b.size() < 4 || b.size() > a.size() + 1) return false;
  const auto difference = std::ranges::mismatch(a, b);
  const std::string_view restOfA(difference.in1, a.end());
  const std::string_view restOfB(difference.in2, b.end());
  if (restOfB.size() > restOfA.size()) return restOfA == restOfB.substr(1);
  if (restOfA.substr(1) == restOfB.substr(1)) return true;
  return restOfA.size() >= 2 && restOfA[0] == restOfB[1] && restOfA[1] == restOfB[0] &&
         restOfA.substr(2) == restOfB.substr(2);
}

}  // namespace tarvel::lua::internal
