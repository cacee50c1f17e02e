#include "lua/stdlib/number_text.h"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <system_error>

#include "lua/value/number_rules.h"

namespace tarvel::lua::internal {

namespace {

constexpr std::int64_t kLowestBase = 2;
constexpr std::int64_t kHighestBase = 36;

bool consumed(const StringObject& text, const char* end) noexcept {
  return end == text.data() + text.length;
}

// Whether a text that strtod takes wholly is hexadecimal. A NaN may have an x between parentheses.
bool isHexadecimal(std::string_view text) noexcept {
  return text.substr(0, text.find('(')).find_first_of("xX") != std::string_view::npos;
}

// Deliberate: whole decimal text becomes an integer, as whole results of operators do. Infinity and
// NaN are not whole.
Value numberOf(double number) noexcept {
  std::int64_t whole = 0;
  return wholeNumber(number, whole) ? Value(whole) : Value(number);
}

bool startsLikeANumber(std::string_view text) noexcept {
  if (text.starts_with('-')) text.remove_prefix(1);
  return !text.empty() && ((text[0] >= '0' && text[0] <= '9') || text[0] == '.');
}

}  // namespace

// What std::from_chars and the C library's functions agree on: not white space or a plus in front,
// nor what is so large or so small that strtod reports a range error.
bool readPlainNumber(std::string_view text, Value& number) noexcept {
  constexpr double kLargest = 1e300;
  constexpr double kSmallest = 1e-300;
  if (!startsLikeANumber(text)) return false;
  const char* const end = text.data() + text.size();
  std::int64_t integer = 0;
  const auto whole = std::from_chars(text.data(), end, integer);
  if (whole.ptr == end && whole.ec == std::errc()) {
    number = Value(integer);
    return true;
  }
  double value = 0;
  const auto result = std::from_chars(text.data(), end, value);
  if (result.ptr != end || result.ec != std::errc()) return false;
  if (std::abs(value) > kLargest || std::abs(value) < kSmallest) return false;
  number = numberOf(value);
  return true;
}

Value numberFromText(const StringObject& text, std::int64_t base) {
  if (base < kLowestBase || base > kHighestBase) return Value();
  Value number;
  if (base == 10 && readPlainNumber(text.view(), number)) return number;
  char* end = nullptr;
  errno = 0;
  const long long integer = std::strtoll(text.data(), &end, static_cast<int>(base));
  if (errno == 0 && consumed(text, end)) return Value(static_cast<std::int64_t>(integer));
  if (base != 10 || isHexadecimal(text.view())) return Value();
  errno = 0;
  const double real = std::strtod(text.data(), &end);
  if (errno != 0 || !consumed(text, end)) return Value();
  return numberOf(real);
}

}  // namespace tarvel::lua::internal
