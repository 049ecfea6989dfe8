#pragma once

#include <algorithm>

#include "base/KELXDynamicArray.h"

/// @file
/// Sorting of arrays.

/// Sorts the elements at the positions `left` to `right`, both included, in ascending order.
///
/// `T` offers `<=` and `>` of one total order. Equal elements may change places. Positions outside
/// the array are ignored, so an empty array is sorted with 0 and -1. Takes n log n comparisons,
/// whatever the elements are.
template <typename T>
void qsort(KELXDynamicArray<T>& array, int left, int right) {
  left = std::max(left, 0);
  right = std::min(right, array.Count() - 1);
  if (left >= right) return;
  T* const first = array.At(left);
  std::sort(first, first + (right - left) + 1, [](const T& a, const T& b) { return b > a; });
}
