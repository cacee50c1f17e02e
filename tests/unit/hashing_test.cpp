#include "lua/value/hashing.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "lua/value/string_object.h"
#include "lua/value/table.h"

namespace tarvel::lua::internal {
namespace {

// How many of these keys would have a place of their own in an index of 65,536 places. Of 4,096
// keys that nobody chose, about 3,970 have.
constexpr std::uint64_t kKeys = 4096;
constexpr std::size_t kFew = 3800;

template <class HashOfKey>
std::size_t countPlaces(HashOfKey hashOfKey) {
  std::set<std::uint32_t> places;
  for (std::uint64_t i = 1; i <= kKeys; ++i) places.insert(hashOfKey(i) & 0xFFFF);
  return places.size();
}

constexpr std::uint64_t kGolden = 0x9E3779B97F4A7C15;  // the usual multiplier of hashes
constexpr std::uint64_t kInverse = 0xF1DE83E19937733D;
static_assert(kGolden * kInverse == 1);

TEST(Hashing, SpreadsChosenIntegers) {
  for (const std::uint64_t step : {std::uint64_t{1}, std::uint64_t{1} << 32, std::uint64_t{1} << 48,
                                   std::uint64_t{1} << 52, kInverse << 48}) {
    const auto hash = [step](std::uint64_t i) {
      return TableKey::ofInteger(static_cast<std::int64_t>(i * step)).hash();
    };
    EXPECT_GT(countPlaces(hash), kFew) << step;
  }
}

// Where a hash has nothing but public constants, the second word of a text can undo what the first
// one did to its state.
TEST(Hashing, SpreadsChosenTexts) {
  const auto hash = [](std::uint64_t i) {
    std::uint64_t state = (sizeof(std::uint64_t[2]) * kGolden ^ i) * kGolden;
    state ^= state >> 32;
    std::array<char, sizeof(std::uint64_t[2])> text;
    std::memcpy(text.data(), &i, sizeof i);
    std::memcpy(text.data() + sizeof i, &state, sizeof state);
    return StringObject::hashOf({text.data(), text.size()});
  };
  EXPECT_GT(countPlaces(hash), kFew);
}

// Keys that collide in one process do not in another. `text` gives the text of a number.
template <class TextOf>
void expectOtherCollisions(TextOf textOf) {
  const HashSecrets secrets = drawHashSecrets();
  std::vector<std::string> colliding;
  for (std::uint64_t i = 0; colliding.size() < kKeys; ++i) {
    const std::string text = textOf(i);
    if ((hashOfBytes(text, secrets) & 0x3F) == 0) colliding.push_back(text);
  }
  const HashSecrets others = drawHashSecrets();
  const auto hash = [&](std::uint64_t i) { return hashOfBytes(colliding[i - 1], others); };
  EXPECT_GT(countPlaces(hash), kFew) << colliding[0].size();
}

TEST(Hashing, IsAnotherInEachProcess) {
  for (const std::size_t padding : {0u, 3u, 12u, 40u}) {
    expectOtherCollisions([padding](std::uint64_t i) {
      std::string digits = std::to_string(i);
      digits.insert(0, 8 - digits.size(), '0');
      return digits + std::string(padding, ' ');
    });
  }
  const HashSecrets secrets = drawHashSecrets();
  const HashSecrets others = drawHashSecrets();
  EXPECT_NE(secrets.left, others.left);
  EXPECT_NE(secrets.right, others.right);
  EXPECT_NE(secrets.low, others.low);
  EXPECT_NE(secrets.high, others.high);
}

// No byte and no length is left out.
TEST(Hashing, DependsOnEveryByte) {
  constexpr HashSecrets secrets{kGolden, kInverse, ~kGolden, ~kInverse};
  for (std::size_t length = 0; length <= 70; ++length) {
    std::string text(length, '\0');
    std::set<std::uint32_t> hashes = {hashOfBytes(text, secrets),
                                      hashOfBytes(std::string(length + 1, '\0'), secrets)};
    for (char& byte : text) {
      byte = '\1';
      hashes.insert(hashOfBytes(text, secrets));
      byte = '\0';
    }
    EXPECT_EQ(length + 2, hashes.size());
  }
}

}  // namespace
}  // namespace tarvel::lua::internal
