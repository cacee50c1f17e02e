#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "lua/stdlib/patterns/byte_set.h"

namespace tarvel::lua::internal {

// A part of an expression.
struct Term {
  enum class Kind : std::uint8_t {
    OneByte,  // any of `bytes`, as often as the quantifier says
    GroupOpen,
    GroupClose,
    Start,  // of what is searched
    End,
  };

  Kind kind = Kind::OneByte;
  bool optional = false;   // may be left out
  bool unlimited = false;  // may be repeated
  bool lazy = false;       // as seldom as possible
  std::uint16_t group = 0;
  ByteSet bytes;

  bool isOneByte() const noexcept { return kind == Kind::OneByte; }
  bool isGroupMark() const noexcept { return kind == Kind::GroupOpen || kind == Kind::GroupClose; }
  bool isOnce() const noexcept { return isOneByte() && !optional && !unlimited; }
  bool isLiteral() const noexcept { return isOnce() && bytes.isSingle(); }
};

struct Terms {
  std::vector<Term> list;
  std::size_t groups = 0;
};

constexpr std::size_t kLongestReadExpression = 4096;  // bytes

// Reads a translated pattern as std::regex does. Nothing for what std::regex would reject, and for
// all that is not one sequence of such terms: quantified groups, alternatives, lookaheads,
// references, counted repetitions.
std::optional<Terms> readTerms(std::string_view expression);

}  // namespace tarvel::lua::internal
