#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace tarvel::lua::internal {

// A set of bytes.
class ByteSet {
 public:
  void add(char byte) noexcept {
    const auto index = static_cast<unsigned char>(byte);
    words_[index / 64] |= std::uint64_t{1} << (index % 64);
  }
  // From `first` to `last` in the order of the type char, which may be signed.
  void addRange(char first, char last) noexcept {
    if (first > last) return;
    for (char byte = first; byte != last; ++byte) add(byte);
    add(last);
  }
  void add(const ByteSet& other) noexcept {
    for (std::size_t i = 0; i < words_.size(); ++i) words_[i] |= other.words_[i];
  }
  void invert() noexcept {
    for (std::uint64_t& word : words_) word = ~word;
  }

  std::size_t size() const noexcept {
    std::size_t count = 0;
    for (const std::uint64_t word : words_) count += static_cast<std::size_t>(std::popcount(word));
    return count;
  }
  bool isSingle() const noexcept { return size() == 1; }
  // The lowest one; there is one.
  char anyByte() const noexcept {
    std::size_t word = 0;
    while (words_[word] == 0) ++word;
    return static_cast<char>(64 * word + static_cast<std::size_t>(std::countr_zero(words_[word])));
  }
  bool intersects(const ByteSet& other) const noexcept {
    std::uint64_t common = 0;
    for (std::size_t i = 0; i < words_.size(); ++i) common |= words_[i] & other.words_[i];
    return common != 0;
  }
  // The 8 bytes from 8 * index on, the lowest bit first.
  unsigned eightFrom(std::size_t index) const noexcept {
    return static_cast<unsigned>(words_[index / 8] >> (8 * (index % 8))) & 0xFF;
  }
  friend bool operator==(const ByteSet&, const ByteSet&) = default;

 private:
  std::array<std::uint64_t, 4> words_{};
};

}  // namespace tarvel::lua::internal
