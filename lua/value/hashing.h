#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

// The hashes of table keys and names. They depend on secrets that each process draws for itself:
// who chooses the keys that a script stores, such as the words of a text, cannot choose them so
// that they all collide and each access has to look at all of them. Nothing that a script can see
// depends on a hash.

namespace tarvel::lua::internal {

struct HashSecrets {
  std::uint64_t left;
  std::uint64_t right;
  std::uint64_t low;
  std::uint64_t high;
};

// Fresh ones, from the system's random source.
HashSecrets drawHashSecrets() noexcept;

inline const HashSecrets& processHashSecrets() noexcept {
  static const HashSecrets secrets = drawHashSecrets();
  return secrets;
}

// A product of two words that each contain a secret is as good as random to those who do not know
// the secrets. Both of its halves stay in use: the upper one depends most on the upper bits of the
// factors, the lower one on their lower bits.
struct HashProduct {
  std::uint64_t low;
  std::uint64_t high;

  static HashProduct of(std::uint64_t a, std::uint64_t b) noexcept {
    __extension__ using Wide = unsigned __int128;
    const Wide product = static_cast<Wide>(a) * b;
    return {static_cast<std::uint64_t>(product), static_cast<std::uint64_t>(product >> 64)};
  }
  std::uint64_t folded() const noexcept { return low ^ high; }
};

// The hash of two words, into which the secrets `left` and `right` were mixed, and of a length. The
// second round makes every bit depend on every other.
inline std::uint32_t finishHash(std::uint64_t left, std::uint64_t right, std::uint64_t length,
                                const HashSecrets& secrets) noexcept {
  const HashProduct product = HashProduct::of(left, right);
  return static_cast<std::uint32_t>(
      HashProduct::of(product.low ^ secrets.low ^ length, product.high ^ secrets.high).folded());
}

inline std::uint32_t hashOfInteger(std::int64_t key, const HashSecrets& secrets) noexcept {
  return finishHash(static_cast<std::uint64_t>(key) ^ secrets.left, secrets.right, 0, secrets);
}

// What the bytes in front of the last sixteen or fewer come to, sixteen a round.
std::uint64_t hashRounds(std::string_view bytes, const HashSecrets& secrets) noexcept;

template <class Word>
std::uint64_t wordAt(const char* bytes) noexcept {
  Word word = 0;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

// The last bytes, up to sixteen, are read as two words that may overlap each other or what was read
// before; together with the length they still tell all texts apart.
inline std::uint32_t hashOfBytes(std::string_view bytes, const HashSecrets& secrets) noexcept {
  const std::size_t length = bytes.size();
  const char* const start = bytes.data();
  const char* const end = start + length;
  std::uint64_t left = secrets.left;
  std::uint64_t right = secrets.right;
  if (length >= 8) {
    if (length > 16) right = hashRounds(bytes, secrets);
    left ^= wordAt<std::uint64_t>(length > 16 ? end - 16 : start);
    right ^= wordAt<std::uint64_t>(end - 8);
  } else if (length >= 4) {
    left ^= wordAt<std::uint32_t>(start);
    right ^= wordAt<std::uint32_t>(end - 4);
  } else if (length > 0) {
    left ^= wordAt<std::uint8_t>(start) << 16 | wordAt<std::uint8_t>(start + length / 2) << 8 |
            wordAt<std::uint8_t>(end - 1);
  }
  return finishHash(left, right, length, secrets);
}

}  // namespace tarvel::lua::internal
