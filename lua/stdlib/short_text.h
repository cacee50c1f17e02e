#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

#include "lua/value/metered_work.h"
#include "lua/value/multi_value.h"
#include "lua/value/string_object.h"
#include "lua/value/value.h"

namespace tarvel::lua::internal {

// The printable forms of a few strings and numbers in one text on the stack, so that writing it is
// one call. It is shorter than what counts as work, as are its parts.
class ShortText {
 public:
  // Both return false when there is no room; then the text is of no further use. So it is when a
  // value is no string and no number, or when there are so many that they count as work.
  bool addAll(ValueSpan values, char separator) noexcept {
    if (values.size() >= kElementsPerStep) return false;
    for (const Value& value : values) {
      if ((&value != values.begin() && !add(separator)) || !add(value)) return false;
    }
    return true;
  }
  bool addAll(ValueSpan values) noexcept {
    return values.size() < kElementsPerStep &&
           std::all_of(values.begin(), values.end(),
                       [this](const Value& value) { return add(value); });
  }
  bool add(char byte) noexcept {
    if (end_ == bytes_.end()) return false;
    *end_++ = byte;
    return true;
  }

  std::string_view view() const noexcept {
    return {bytes_.data(), static_cast<std::size_t>(end_ - bytes_.data())};
  }

 private:
  bool add(const Value& value) noexcept {
    const auto room = static_cast<std::size_t>(bytes_.end() - end_);
    if (value.isNumber()) {
      if (room < Value::kLongestNumber) return false;
      end_ = value.writeNumber(end_);
      return true;
    }
    if (!value.isString() || value.string->length > room) return false;
    end_ = std::copy_n(value.string->data(), value.string->length, end_);
    return true;
  }

  std::array<char, kBytesPerStep - 1> bytes_;  // used up to `end_`
  char* end_ = bytes_.data();
};

}  // namespace tarvel::lua::internal
