#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

// An introspective sort that stays within its bounds whatever the order says. Orders given by
// scripts need not be consistent, nor is the default order with NaN; then the result is some
// permutation of the elements, after a bounded number of comparisons all the same.
//
// An order that throws leaves some permutation, too, so elements may own what they stand for.

namespace tarvel::lua::internal {

namespace sorting {

// Shorter runs are left to insertion sort.
constexpr std::ptrdiff_t kShortRun = 16;
// From here on three medians of three choose the pivot.
constexpr std::ptrdiff_t kLongRun = 256;

// An order that counts its comparisons may have another one for ranges that it counts as a whole.
template <class Less>
concept CountsRanges = requires(Less& less) {
  less.countAtOnce(std::ptrdiff_t(), std::uint64_t());
};
constexpr std::ptrdiff_t kSortedAtOnce = 1024;  // elements; takes some ten microseconds

// An element taken out of its place, which goes where the hole is in the end, also when the order
// throws.
template <class T>
class Displaced {
 public:
  explicit Displaced(T* place) : element_(*place), hole_(place) {}
  ~Displaced() { *hole_ = element_; }
  Displaced(const Displaced&) = delete;
  Displaced& operator=(const Displaced&) = delete;

  const T& element() const { return element_; }
  // Fills the hole with the element at `place`, where the hole is then.
  void moveHole(T* place) {
    *hole_ = *place;
    hole_ = place;
  }

 private:
  const T element_;
  T* hole_;
};

template <class T, class Less>
void insertionSort(T* first, T* last, Less& less) {
  for (T* next = first + 1; next < last; ++next) {
    Displaced<T> displaced(next);
    for (T* hole = next; hole > first && less(displaced.element(), hole[-1]); --hole) {
      displaced.moveHole(hole - 1);
    }
  }
}

template <class T, class Less>
void siftDown(T* heap, std::ptrdiff_t root, std::ptrdiff_t size, Less& less) {
  Displaced<T> displaced(heap + root);
  for (;;) {
    std::ptrdiff_t child = 2 * root + 1;
    if (child >= size) break;
    if (child + 1 < size && less(heap[child], heap[child + 1])) ++child;
    if (!less(displaced.element(), heap[child])) break;
    displaced.moveHole(heap + child);
    root = child;
  }
}

template <class T, class Less>
void heapSort(T* first, T* last, Less& less) {
  const std::ptrdiff_t size = last - first;
  for (std::ptrdiff_t root = size / 2; root-- > 0;) siftDown(first, root, size, less);
  for (std::ptrdiff_t end = size - 1; end > 0; --end) {
    std::swap(first[0], first[end]);
    siftDown(first, 0, end, less);
  }
}

template <class T, class Less>
T* medianOfThree(T* a, T* b, T* c, Less& less) {
  if (less(*a, *b)) {
    if (less(*b, *c)) return b;
    return less(*a, *c) ? c : a;
  }
  if (less(*a, *c)) return a;
  return less(*b, *c) ? c : b;
}

template <class T, class Less>
T* choosePivot(T* first, T* last, Less& less) {
  const std::ptrdiff_t size = last - first;
  T* const middle = first + size / 2;
  if (size < kLongRun) return medianOfThree(first, middle, last - 1, less);
  const std::ptrdiff_t step = size / 8;
  return medianOfThree(medianOfThree(first, first + step, first + 2 * step, less),
                       medianOfThree(middle - step, middle, middle + step, less),
                       medianOfThree(last - 1 - 2 * step, last - 1 - step, last - 1, less), less);
}

// Moves the elements of [next, last) that belong to the front to `end` on, keeping their order, and
// returns the end of them. What `belongs` says is computed with instead of branched on, because no
// processor could foresee it.
template <class T, class Belongs>
T* gather(T* end, T* next, T* last, Belongs belongs) {
  for (; next < last; ++next) {
    const T element = *next;
    const std::ptrdiff_t advance = belongs(element) ? 1 : 0;
    T* const place = next - ((next - end) & -advance);
    *next = *place;
    *place = element;
    end += advance;
  }
  return end;
}

// Gathers the elements that go before the pivot.
template <class T, class Less>
T* gatherBefore(T* first, T* last, const T& pivot, Less& less) {
  const auto gatherBy = [&pivot](T* end, T* next, T* stop, auto& order) {
    return gather(end, next, stop, [&](const T& element) { return order(element, pivot); });
  };
  T* end = first;
  T* next = first;
  if constexpr (CountsRanges<Less>) {
    while (next < last) {
      T* const stop = next + std::min(kSortedAtOnce, last - next);
      auto* const plain = less.countAtOnce(stop - next, static_cast<std::uint64_t>(stop - next));
      if (plain == nullptr) break;
      end = gatherBy(end, next, stop, *plain);
      next = stop;
    }
  }
  return gatherBy(end, next, last, less);
}

// Each turn sorts what is behind a pivot and goes on with what is before it.
template <class T, class Less>
void sortWithin(T* first, T* last, int levelsLeft, Less& less) {
  while (last - first > kShortRun) {
    if constexpr (CountsRanges<Less>) {
      const auto size = static_cast<std::uint64_t>(last - first);
      if (auto* const plain = less.countAtOnce(last - first, size * std::bit_width(size) / 2))
        return sortWithin(first, last, levelsLeft, *plain);
    }
    if (levelsLeft-- == 0) return heapSort(first, last, less);
    std::swap(*first, *choosePivot(first, last, less));
    const T pivot = *first;
    T* behind = gatherBefore(first + 1, last, pivot, less);
    T* const place = behind - 1;
    std::swap(*first, *place);
    // Few elements before it: there may be many equal ones, which are in their place then.
    if (place - first < (last - first) / 8) {
      behind =
          gather(behind, behind, last, [&](const T& element) { return !less(pivot, element); });
    }
    sortWithin(behind, last, levelsLeft, less);
    last = place;
  }
  insertionSort(first, last, less);
}

// Whether each element from `next` on goes before the one in front of it, or with `descends` false,
// none does.
template <class T, class Less>
bool goesOn(T* next, T* last, bool descends, Less& less) {
  if constexpr (CountsRanges<Less>) {
    for (T* end = next; next < last; next = end) {
      end += std::min(kSortedAtOnce, last - next);
      auto* const plain = less.countAtOnce(end - next, static_cast<std::uint64_t>(end - next));
      if (plain == nullptr) break;
      if (!goesOn(next, end, descends, *plain)) return false;
    }
  }
  for (; next < last; ++next) {
    if (less(next[0], next[-1]) != descends) return false;
  }
  return true;
}

// Whether the range was in order, or is so now because it was in the reverse of it. Looks no
// further than where neither can be.
template <class T, class Less>
bool wasOrdered(T* first, T* last, Less& less) {
  if (last - first < 2) return true;
  const bool descends = less(first[1], first[0]);
  if (!goesOn(first + 2, last, descends, less)) return false;
  if (descends) std::reverse(first, last);
  return true;
}

}  // namespace sorting

// Sorts [first, last); `less(a, b)` says whether a goes before b. The first does not look whether
// they are in order.
template <class T, class Less>
void sortUnordered(T* first, T* last, Less& less) {
  static_assert(std::is_trivially_copyable_v<T>);
  const auto levels = static_cast<int>(std::bit_width(static_cast<std::size_t>(last - first)));
  sorting::sortWithin(first, last, 2 * levels, less);
}
template <class T, class Less>
void introspectiveSort(T* first, T* last, Less less) {
  if (!sorting::wasOrdered(first, last, less)) sortUnordered(first, last, less);
}

}  // namespace tarvel::lua::internal
