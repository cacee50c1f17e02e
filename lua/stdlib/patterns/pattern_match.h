#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace tarvel::lua::internal {

// The views are into the subject.
struct PatternMatch {
  std::size_t start = 0;  // offset of the first byte
  std::size_t end = 0;    // offset past the last byte
  // One per group of the expression; empty for a group that took no part. They stand where the next
  // search for the same pattern puts its own.
  std::span<const std::string_view> captures;
  std::string_view text;

  void set(std::string_view subject, std::size_t offset, std::size_t length) noexcept {
    start = offset;
    end = offset + length;
    text = {subject.data() + offset, length};
  }
};

}  // namespace tarvel::lua::internal
