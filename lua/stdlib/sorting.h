#pragma once

#include <bit>
#include <cstddef>
#include <type_traits>
#include <utility>

// An introspective sort that stays within its bounds whatever the order says. Orders given by
// scripts need not be consistent, nor is the default order with NaN; then the result is some
// permutation of the elements, after a bounded number of comparisons all the same.
//
// An order that throws leaves the range with elements doubled and missing, so what is sorted must
// not own anything.

namespace tarvel::lua::internal {

namespace sorting {

// Shorter runs are left to insertion sort.
constexpr std::ptrdiff_t kShortRun = 16;
// From here on three medians of three choose the pivot.
constexpr std::ptrdiff_t kLongRun = 256;

template <class T, class Less>
void insertionSort(T* first, T* last, Less& less) {
  for (T* next = first + 1; next < last; ++next) {
    const T element = *next;
    T* hole = next;
    while (hole > first && less(element, hole[-1])) {
      *hole = hole[-1];
      --hole;
    }
    *hole = element;
  }
}

template <class T, class Less>
void siftDown(T* heap, std::ptrdiff_t root, std::ptrdiff_t size, Less& less) {
  const T element = heap[root];
  for (;;) {
    std::ptrdiff_t child = 2 * root + 1;
    if (child >= size) break;
    if (child + 1 < size && less(heap[child], heap[child + 1])) ++child;
    if (!less(element, heap[child])) break;
    heap[root] = heap[child];
    root = child;
  }
  heap[root] = element;
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

// Puts the pivot where it belongs and returns its place; everything before it is not after it in
// the order, everything behind it not before. Stops at equal elements, so that many of them still
// divide the range evenly.
template <class T, class Less>
T* partition(T* first, T* last, Less& less) {
  std::swap(*first, *choosePivot(first, last, less));
  const T pivot = *first;
  T* low = first;
  T* high = last;
  for (;;) {
    do ++low;
    while (low < last && less(*low, pivot));
    do --high;
    while (high > first && less(pivot, *high));
    if (low >= high) break;
    std::swap(*low, *high);
  }
  std::swap(*first, *high);
  return high;
}

template <class T, class Less>
void sortWithin(T* first, T* last, int levelsLeft, Less& less) {
  while (last - first > kShortRun) {
    if (levelsLeft-- == 0) return heapSort(first, last, less);
    T* const pivot = partition(first, last, less);
    sortWithin(pivot + 1, last, levelsLeft, less);
    last = pivot;
  }
  insertionSort(first, last, less);
}

}  // namespace sorting

// Sorts [first, last); `less(a, b)` says whether a goes before b.
template <class T, class Less>
void introspectiveSort(T* first, T* last, Less less) {
  static_assert(std::is_trivially_copyable_v<T>);
  const auto levels = static_cast<int>(std::bit_width(static_cast<std::size_t>(last - first)));
  sorting::sortWithin(first, last, 2 * levels, less);
}

}  // namespace tarvel::lua::internal
