#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace tarvel::lua::fuzz {

// What each target defines and the driver calls: what is wrong with what the bytes stand for; empty
// if nothing is.
std::string findProblem(std::span<const std::uint8_t> bytes);

// Decisions taken from bytes, one byte each. Behind the last byte every decision is 0, which
// generators make the plainest one, so that any bytes stand for something finite.
class Choices {
 public:
  explicit Choices(std::span<const std::uint8_t> bytes) noexcept : bytes_(bytes) {}

  bool isEmpty() const noexcept { return next_ == bytes_.size(); }
  // From 0 to count - 1.
  unsigned below(unsigned count) noexcept {
    return isEmpty() ? 0 : static_cast<unsigned>(bytes_[next_++]) % count;
  }
  // True with odds of one to `others`.
  bool oneIn(unsigned others) noexcept { return below(others) == 1; }
  template <class T, std::size_t N>
  const T& of(const T (&items)[N]) noexcept {
    return items[below(static_cast<unsigned>(N))];
  }

 private:
  std::span<const std::uint8_t> bytes_;
  std::size_t next_ = 0;
};

}  // namespace tarvel::lua::fuzz
