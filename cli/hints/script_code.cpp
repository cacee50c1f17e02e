#include "cli/hints/script_code.h"

#include <string_view>

#include "cli/hints/library_names.h"

namespace tarvel::lua::internal {

namespace {

std::string rootOf(const std::string& path) { return path.substr(0, path.find('.')); }

std::string meansAnother(const std::string& name) { return "; did you mean '" + name + "'?"; }

std::string absentGlobal(const ScriptCode& code, const std::string& name) {
  const std::string like = code.names.variableLike(name);
  return "'" + name + "' is nil: no global of this name was set" +
         (like.empty() ? like : meansAnother(like));
}

std::string absentMember(const std::string& path) {
  const std::string library = rootOf(path);
  const std::string_view name = std::string_view(path).substr(library.size() + 1);
  std::string all;
  for (const std::string_view member : libraryMembers(library)) {
    if (isLike(member, name)) {
      return path + " does not exist" + meansAnother(library + "." + std::string(member));
    }
    all.append(all.empty() ? "" : ", ").append(member);
  }
  return path + " does not exist here: " + library + " has only " + all;
}

}  // namespace

Presence presenceOf(const ScriptCode& code, const std::string& path) {
  const std::string root = rootOf(path);
  if (path.empty() || code.names.setsVariable(root)) return Presence::Unknown;
  if (isLibraryName(path)) {
    return code.names.setsField(path) ? Presence::Unknown : Presence::Present;
  }
  if (path == root) return Presence::Absent;
  const bool isMember = path.find('.', root.size() + 1) == std::string::npos;
  const bool isAbsent = isMember && !libraryMembers(root).empty() && !code.names.setsField(path);
  return isAbsent ? Presence::Absent : Presence::Unknown;
}

std::string absenceHint(const ScriptCode& code, const std::string& path) {
  const std::string meaning = code.names.meaningOf(path);
  if (presenceOf(code, meaning) != Presence::Absent) {
    if (!code.names.isLocalOnlyBehind(path, code.failed)) return {};
    return "'" + path + "' is nil here: the local of this name begins only further down";
  }
  const std::string_view remedy = remedyFor(meaning);
  if (!remedy.empty()) return meaning + " does not exist here: " + std::string(remedy);
  return meaning == rootOf(meaning) ? absentGlobal(code, meaning) : absentMember(meaning);
}

std::string absenceHint(const ScriptCode& code, const Chain& chain, std::size_t count) {
  for (std::size_t i = 1; i <= count; ++i) {
    std::string hint = absenceHint(code, pathOf(code.tokens, chain, i));
    if (!hint.empty()) return hint;
  }
  return {};
}

}  // namespace tarvel::lua::internal
