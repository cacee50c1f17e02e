#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "lua/value/string_object.h"
#include "lua/value/value.h"
#include "lua/value/work_meter.h"

// Numbers in texts, as `tonumber` reads them.

namespace tarvel::lua::internal {

// In bytes. The C library's conversions cannot be interrupted, so a supervised interpreter gives
// them no more than they read in some milliseconds.
constexpr std::size_t kLongestNumberText = std::size_t{256} << 10;

// A byte of a number takes as long as so many bytes that are copied.
constexpr std::size_t kConversionsOfNumber = 16;
constexpr std::uint64_t stepsForNumberText(std::size_t bytes) noexcept {
  return stepsForBytes(bytes * kConversionsOfNumber);
}

// The number, or nil where the text is none. Leading white space is accepted as the C library does,
// trailing is not. A text with an embedded zero byte is no number.
Value numberFromText(const StringObject& text, std::int64_t base);

// As numberFromText in base 10 for most texts of numbers, and faster. False for all others, whether
// they are numbers or not.
bool readPlainNumber(std::string_view text, Value& number) noexcept;

}  // namespace tarvel::lua::internal
