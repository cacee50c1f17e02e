#include "lua/stdlib/sorting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace tarvel::lua::internal {
namespace {

using Less = std::function<bool(int, int)>;

constexpr int kSizes[] = {0, 1, 2, 3, 15, 16, 17, 31, 64, 255, 256, 257, 1000, 5000};
constexpr int kOutside = -1;  // stands before and behind the range; no order may ever see it
constexpr double kMostComparisons = 6;  // per element and halving

double bound(int size) {
  return 64 + kMostComparisons * size * std::log2(static_cast<double>(size) + 1);
}

std::vector<int> inOrder(std::vector<int> elements) {
  std::sort(elements.begin(), elements.end());
  return elements;
}

struct Outcome {
  std::vector<int> sorted;
  std::int64_t comparisons = 0;
};

// Sorts between two guards and checks everything that holds for any order: nothing outside is
// looked at or changed, the comparisons are bounded, the elements are all still there.
Outcome sortGuarded(const std::vector<int>& elements, const Less& less, const std::string& what) {
  std::vector<int> guarded(1, kOutside);
  guarded.insert(guarded.end(), elements.begin(), elements.end());
  guarded.push_back(kOutside);
  Outcome outcome;
  int* const first = guarded.data() + 1;
  introspectiveSort(first, first + elements.size(), [&](int a, int b) {
    if (a == kOutside || b == kOutside) ADD_FAILURE() << what << ": compares what is outside";
    ++outcome.comparisons;
    return less(a, b);
  });
  EXPECT_LE(static_cast<double>(outcome.comparisons), bound(static_cast<int>(elements.size())))
      << what;
  EXPECT_EQ(guarded.front(), kOutside) << what;
  EXPECT_EQ(guarded.back(), kOutside) << what;
  outcome.sorted.assign(first, first + elements.size());
  EXPECT_EQ(inOrder(outcome.sorted), inOrder(elements)) << what;
  return outcome;
}

struct Shape {
  const char* name;
  std::function<int(int index, int size)> element;
};

std::vector<Shape> shapes() {
  return {
      {"ascending", [](int i, int) { return i; }},
      {"descending", [](int i, int size) { return size - i; }},
      {"equal", [](int, int) { return 7; }},
      {"two values", [](int i, int) { return i % 2; }},
      {"organ pipe", [](int i, int size) { return std::min(i, size - i); }},
      {"saw", [](int i, int) { return i % 10; }},
      {"one out of place", [](int i, int size) { return i == size - 1 ? 0 : i + 1; }},
      {"random", [random = std::mt19937(5)](
                     int, int) mutable { return static_cast<int>(random() % 100000); }},
  };
}

TEST(SortingTest, SortsEveryShape) {
  for (const Shape& shape : shapes()) {
    for (const int size : kSizes) {
      std::vector<int> elements;
      for (int i = 0; i < size; ++i) elements.push_back(shape.element(i, size));
      const std::string what = std::string(shape.name) + ", " + std::to_string(size);
      EXPECT_EQ(sortGuarded(elements, std::less<>(), what).sorted, inOrder(elements)) << what;
    }
  }
}

// Elements that are equal to a pivot are done with it.
TEST(SortingTest, FewValuesTakeFewComparisons) {
  for (const int values : {1, 2, 3}) {
    std::vector<int> elements;
    for (int i = 0; i < 10000; ++i) elements.push_back(i * 7919 % values);
    const Outcome outcome = sortGuarded(elements, std::less<>(), "few values");
    EXPECT_EQ(outcome.sorted, inOrder(elements));
    EXPECT_LT(outcome.comparisons, 10000 * (values + 2)) << values;
  }
}

// Decides each comparison as late and as badly as the earlier answers allow, so that every pivot
// comes out smallest.
class Adversary {
 public:
  explicit Adversary(int size) : values_(static_cast<std::size_t>(size), kUndecided) {}

  bool operator()(int a, int b) {
    if (valueOf(a) == kUndecided && valueOf(b) == kUndecided) {
      valueOf(a == candidate_ ? a : b) = next_++;
    }
    if (valueOf(a) == kUndecided) candidate_ = a;
    if (valueOf(b) == kUndecided) candidate_ = b;
    return valueOf(a) < valueOf(b);
  }

 private:
  static constexpr int kUndecided = INT32_MAX;

  int& valueOf(int element) { return values_[static_cast<std::size_t>(element)]; }

  std::vector<int> values_;
  int next_ = 0;
  int candidate_ = 0;
};

TEST(SortingTest, StaysBoundedAgainstAnAdversary) {
  for (const int size : {100, 1000, 20000}) {
    std::vector<int> elements(static_cast<std::size_t>(size));
    std::iota(elements.begin(), elements.end(), 0);
    sortGuarded(elements, Adversary(size), "adversary, " + std::to_string(size));
  }
}

TEST(SortingTest, InconsistentOrdersGiveAPermutation) {
  struct Order {
    const char* name;
    Less less;
  };
  const Order orders[] = {
      {"always", [](int, int) { return true; }},
      {"never", [](int, int) { return false; }},
      {"less or equal", [](int a, int b) { return a <= b; }},
      {"not equal", [](int a, int b) { return a != b; }},
      {"circular", [](int a, int b) { return (b - a + 9) % 9 < 5; }},
      {"random", [random = std::mt19937(9)](int, int) mutable { return random() % 2 == 0; }},
      {"alternating", [answer = false](int, int) mutable { return answer = !answer; }},
  };
  for (const Order& order : orders) {
    for (const int size : kSizes) {
      std::vector<int> elements(static_cast<std::size_t>(size));
      std::iota(elements.begin(), elements.end(), 0);
      sortGuarded(elements, order.less, std::string(order.name) + ", " + std::to_string(size));
    }
  }
}

}  // namespace
}  // namespace tarvel::lua::internal
