#pragma once

#include <atomic>

#include "base/KELXExport.h"

/// @file
/// The untyped growable array under KELXDynamicArray, which is what programs use.

/// An untyped growable array.
///
/// Arrays of equal content may share one header: kelxArrayCopy adds a sharer, kelxArrayFree takes
/// one away, and the last one releases the storage. The count of sharers is atomic, so arrays that
/// share may live on different threads.
///
/// Elements move as raw bytes when the storage grows, so they must survive that: no element may
/// hold a pointer into itself.
///
/// A function that changes an array which others share first gives it a header of its own with
/// bytewise copies of the elements. That is right for plain data only; KELXDynamicArray makes real
/// copies before it comes here.
///
/// When memory for a further element cannot be had, the process ends as by std::terminate. Headers
/// are never null where nothing is said of null.
struct KELXArrayHeader {
  unsigned int capacity;              ///< elements that fit before the storage must grow
  unsigned int count;                 ///< elements held
  void* elements;                     ///< the storage; null until the first element needs it
  unsigned int elementSize;           ///< bytes an element
  std::atomic<unsigned int> sharers;  ///< arrays that hold this header
};

/// Whoever owns an array's elements and knows how to destroy them.
class KELXBASE_API KELXArrayFreeCallback {
 public:
  /// Destroys every element and sets the count of the array to 0.
  virtual void Callback() = 0;
  virtual ~KELXArrayFreeCallback();
};

/// A new empty array for elements of `elementSize` bytes with a capacity of `capacity`; negative
/// arguments count as 0. Its one sharer is the caller, who gives it back with kelxArrayFree.
KELXBASE_API KELXArrayHeader* kelxArrayAllocate(int capacity, int elementSize);

/// The number of elements; 0 for a null header.
KELXBASE_API int kelxArrayCount(const KELXArrayHeader* header);

/// Whether another array holds the same header.
KELXBASE_API bool kelxArrayIsShared(const KELXArrayHeader* header);

/// Appends one slot and copies `elementSize` bytes from `element` into it, unless that is null.
/// The storage and the header may be replaced. `element` may lie in the array's own storage. The
/// process ends when the array has 2^31 - 1 elements already.
KELXBASE_API void kelxArrayAdd(KELXArrayHeader*& header, void* element);

/// Appends `count` slots of no particular content and returns the first; null, with nothing
/// appended, when `count` is 0 or less or the array would pass 2^31 - 1 elements.
KELXBASE_API void* kelxArrayExtend(KELXArrayHeader*& header, int count);

/// Sets the capacity to `capacity`, or to the count where that is larger, and keeps the elements.
/// When memory for it cannot be had, the array stays as it is.
KELXBASE_API void kelxArrayReallocSize(KELXArrayHeader*& header, unsigned int capacity);

/// Sets the count to 0; the capacity stays. No element is destroyed: who owns elements that need
/// it does that before.
KELXBASE_API void kelxArrayClear(KELXArrayHeader*& header);

/// A second array of the same elements: `header` itself, with one sharer more. Null for null.
KELXBASE_API KELXArrayHeader* kelxArrayCopy(KELXArrayHeader* header);

/// Takes one sharer away and sets `header` to null. The last sharer first has `owner` (which may
/// be null) destroy the elements, if there are any, through its Callback, with `header` still set,
/// and then releases the storage. Null headers are ignored.
KELXBASE_API void kelxArrayFree(KELXArrayHeader*& header, KELXArrayFreeCallback* owner);
