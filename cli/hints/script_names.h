#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "cli/hints/script_tokens.h"

namespace tarvel::lua::internal {

// The names to which a script gives values anywhere in its text, whether it gets there or not.
class ScriptNames {
 public:
  explicit ScriptNames(const ScriptTokens& tokens);

  // A variable, global or local, or a parameter.
  bool setsVariable(std::string_view name) const { return variables_.contains(name); }
  // A field, by the names that lead to it: "string.trim".
  bool setsField(std::string_view path) const { return fields_.contains(path); }

  // Whether a field of this name is set in any table.
  bool setsSomeField(std::string_view name) const { return fieldNames_.contains(name); }

  // The first token of the value that the only assignment to this name gives it; kNone where there
  // are more, or none.
  std::size_t onlyValue(std::string_view name) const;

  // The library's path of which the only assignment to this name makes it another name, as
  // `local insert = table.insert` does; else the name.
  std::string meaningOf(const std::string& name) const;

  // Whether there are locals of this name, but all of them stand behind the token, where it
  // therefore means a global.
  bool isLocalOnlyBehind(std::string_view name, std::size_t token) const;

  // The one variable, or the one field of whatever table, that differs from the name by a slip of
  // the hand; empty where there is none, or more than one.
  std::string variableLike(std::string_view name) const;
  std::string fieldLike(std::string_view name) const;

 private:
  struct Setting {
    std::size_t token;  // that names the variable
    bool isLocal;
  };

  void noteNames(std::size_t first, bool isLocal);
  void noteFunction(std::size_t keyword);
  void noteTargets(std::size_t assign);
  void noteTarget(std::size_t first, std::size_t last);
  void noteVariable(std::size_t token, bool isLocal);

  const ScriptTokens& tokens_;
  std::map<std::string, std::vector<Setting>, std::less<>> variables_;
  std::set<std::string, std::less<>> fields_;
  std::set<std::string, std::less<>> fieldNames_;
};

// Whether one letter too many, missing, wrong, or exchanged with the next makes one of the other.
// Names of three letters are not like each other.
bool isLike(std::string_view a, std::string_view b);

}  // namespace tarvel::lua::internal
