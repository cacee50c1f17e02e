#pragma once

#include <bitset>
#include <optional>
#include <string>
#include <string_view>

namespace tarvel::lua::internal {

using ByteSet = std::bitset<256>;  // by the byte's unsigned value

// What every match of an expression is known to have in common. std::regex tries an expression at
// each position in turn, at some 15 ns a position, and hints are what lets a search skip positions
// where it cannot match. They never change a result: what is not certain is left out.
struct SearchHints {
  // The expression starts with `^`.
  bool anchored = false;
  // The text that every match starts with.
  std::string prefix;
  // The prefix is all there is: no groups, nothing that could match in another way.
  bool isLiteral = false;
  // The bytes that a match can start with; a match is never empty then.
  std::optional<ByteSet> first;
  // One or more of the bytes in `first`, as many as there are, is all there is: no groups.
  bool isRun = false;
  // The expression starts with a repetition of these bytes, and none of them can follow on it. So
  // where it does not match at one position of a run of them, it does not at the later ones. Known
  // only together with `first`.
  std::optional<ByteSet> run;
  // A byte that every match contains, behind the prefix.
  std::optional<char> required;
};

// In a set, `%]` ends it early, and the rest of it stands outside as it is: an alternation, a
// counted repetition or the escape of a control byte, which are found nowhere else. True also where
// std::regex sees them in a set.
bool mayHaveRestOfSet(std::string_view expression) noexcept;

// `expression` is a translated pattern that std::regex has accepted.
SearchHints findSearchHints(std::string_view expression);

}  // namespace tarvel::lua::internal
