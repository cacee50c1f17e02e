#include "lua/value/value.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "lua/value/hashing.h"
#include "lua/value/string_object.h"
#include "lua/value/string_pool.h"
#include "lua/value/table.h"
#include "tests/unit/value_support.h"

namespace tarvel::lua::internal {
namespace {

constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();

// As the C++ library's streams write it.
std::string streamed(double number) {
  std::ostringstream out;
  out << number;
  return out.str();
}

TEST(Value, PrintsFloatsAsStreamsDo) {
  for (const double number : {0.0, 100000.0, 999999.5, 1e6, 123456.5, 1e-5, 0.0001, 5e-324, 0x1p63,
                              static_cast<double>(INFINITY), std::fabs(std::nan(""))}) {
    EXPECT_EQ(streamed(number), Value(number).toString());
    EXPECT_EQ(streamed(-number), Value(-number).toString());
  }
  std::mt19937_64 random(7);
  for (int i = 0; i < 50000; ++i) {
    const auto number = std::bit_cast<double>(random());
    ASSERT_EQ(streamed(number), Value(number).toString());
    const double common = static_cast<double>(random() % 100000000) / 1000;
    ASSERT_EQ(streamed(common), Value(common).toString());
  }
}

TEST(Value, ConvertsToTheNearestNumber) {
  EXPECT_EQ(0x1p63, Value(kHighest - 511).asFloat()) << "ties to even";
  EXPECT_EQ(0x1p63 - 1024, Value(kHighest - 512).asFloat());
  EXPECT_EQ(kHighest - 1023, Value(0x1p63 - 1024).asInteger());
  EXPECT_EQ(kHighest, Value(0x1p63).asInteger());
  EXPECT_THROW(static_cast<void>(Value(true).asInteger()), std::runtime_error);
  try {
    static_cast<void>(Value(true).asFloat());
    ADD_FAILURE();
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ("value is not numeric", error.what());
  }
}

TEST(StringObject, ComparesAndHashesBytes) {
  const TestHeap heap;
  const std::string texts[] = {"",   {"\0", 1},  {"\0a", 2},  "a", {"a\0", 2}, {"a\0b", 3},
                               "ab", "abcdefgh", "abcdefghi", "b", "\x7f",     "\xff\xff"};
  std::set<std::uint32_t> hashes;
  for (const std::string& left : texts) {
    for (const std::string& right : texts) {
      const OwnedValue a = heap.text(left);
      const OwnedValue b = heap.text(right);
      if (left.size() % 2 == 0) a.get().string->hash();
      if (right.size() % 3 == 0) b.get().string->hash();
      EXPECT_EQ(left == right, stringsEqual(a.get().string, b.get().string));
      const int order = compareStrings(a.get().string, b.get().string);
      EXPECT_TRUE((left < right) == (order < 0) && (left == right) == (order == 0));
      EXPECT_EQ(a.get().string->hash(), StringObject::hashOf(left));
    }
    hashes.insert(StringObject::hashOf(left));
  }
  EXPECT_EQ(std::size(texts), hashes.size()) << "short texts should not collide";
  EXPECT_FALSE(hashes.contains(0));
}

TEST(StringPool, KeepsOneCopyOfEachAndForgetsTheUnused) {
  const TestHeap heap;
  OwnedValue kept;
  {
    StringPool strings(heap.get());
    kept = OwnedValue(Value(strings.intern("kept")));
    const OwnedValue withZero(Value(strings.intern({"kept\0", 5})));
    EXPECT_NE(kept.get().string, withZero.get().string);
    const std::size_t before = Heap::liveBlocks();
    for (int i = 0; i < 100000; ++i) {
      const OwnedValue first(Value(strings.intern("name" + std::to_string(i))));
      ASSERT_EQ(first.get().string, strings.intern("name" + std::to_string(i)));
      drop(first.get());
    }
    EXPECT_LE(Heap::liveBlocks() - before, 1000u);
    const OwnedValue again(Value(strings.intern("kept")));
    EXPECT_EQ(kept.get().string, again.get().string);
    EXPECT_EQ(3u, countOf(kept)) << "two of ours, one of the interner";
  }
  EXPECT_EQ(1u, countOf(kept)) << "a string may outlive its interner";
}

// Keys that come and go do not pile up, neither in the table nor as strings that it keeps alive.
TEST(Table, ForgetsDeadKeys) {
  const TestHeap heap;
  OwnedValue table = heap.table();
  std::vector<OwnedValue> names;
  for (int i = 0; i < 10000; ++i) {
    names.push_back(heap.text("visitor" + std::to_string(i)));
    const TableKey key = TableKey::ofString(names.back().get().string);
    table.get().table->set(key, Value(std::int64_t{1}));
    EXPECT_EQ(2u, countOf(names.back()));
    table.get().table->set(key, Value());
    ASSERT_LE(table.get().table->entryCount(), 32u);
  }
  const auto isHeld = [](const OwnedValue& name) { return countOf(name) > 1; };
  EXPECT_LE(std::count_if(names.begin(), names.end(), isHeld), 32);
  table = OwnedValue();
  EXPECT_EQ(0, std::count_if(names.begin(), names.end(), isHeld));
}

// ---- Hashing ------------------------------------------------------------------------------------

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
