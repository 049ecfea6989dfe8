#pragma once

#include <cstddef>
#include <cstring>
#include <exception>
#include <functional>
#include <new>
#include <string>
#include <type_traits>
#include <utility>

#include "base/KELXArray.h"

/// A growable array with value semantics.
///
/// Copies share their elements until one of them is changed: Add, Append, Extend, Reserve, Clear
/// and the non-const At first give the array elements of its own. Copying therefore costs one
/// counter increment, and no element is copied, whatever the size. Arrays that share elements may
/// live on different threads; one array is for one thread at a time.
///
/// `T` must survive being moved as raw bytes (memcpy to another place, without its constructor or
/// destructor being run): it must not hold a pointer into itself, as std::string does. Pointers to
/// elements are good until the array is changed next.
template <typename T>
class KELXDynamicArray : public KELXArrayFreeCallback {
  static_assert(std::is_object_v<T> && !std::is_const_v<T>, "elements are plain values");
  static_assert(alignof(T) <= alignof(std::max_align_t), "the storage is aligned as by malloc");
  static_assert(!std::is_same_v<T, std::string> && !std::is_same_v<T, std::wstring>,
                "standard strings point into themselves and cannot be moved bytewise");

 public:
  /// An empty array with a capacity of 4.
  KELXDynamicArray() : header_(Allocate(kInitialCapacity)) {}

  /// `n` copies of `value`; an empty array with a capacity of 4 when `n` is 0 or less.
  KELXDynamicArray(int n, const T& value) : header_(Allocate(n > 0 ? n : kInitialCapacity)) {
    for (int i = 0; i < n; ++i) Add(value);
  }

  /// Shares the elements of `other`; those held before are given up.
  /// @{
  KELXDynamicArray(const KELXDynamicArray& other) : header_(kelxArrayCopy(other.header_)) {}

  KELXDynamicArray& operator=(const KELXDynamicArray& other) {
    if (this == &other) return *this;
    kelxArrayFree(header_, this);
    header_ = kelxArrayCopy(other.header_);
    return *this;
  }
  /// @}

  ~KELXDynamicArray() override { kelxArrayFree(header_, this); }

  /// The number of elements.
  [[nodiscard]] int Count() const { return kelxArrayCount(header_); }

  /// The number of elements that fit before the storage grows.
  [[nodiscard]] int Capacity() const { return static_cast<int>(header_->capacity); }

  /// The element at `index`, for reading; null when `index` is negative or not below Count().
  [[nodiscard]] const T* At(int index) const { return IsInside(index) ? Data() + index : nullptr; }

  /// The element at `index`, for changing; null when there is none.
  [[nodiscard]] T* At(int index) {
    if (!IsInside(index)) return nullptr;
    Detach();
    return Data() + index;
  }

  /// The elements in order, for reading. `for (const T& element : array)` copies nothing.
  /// @{
  [[nodiscard]] const T* begin() const { return Data(); }
  [[nodiscard]] const T* end() const { return Data() + Count(); }
  /// @}

  /// Appends a copy of `x`, which may be an element of this array. The process ends when there is
  /// no room for it.
  void Add(const T& x) {
    const std::less<const T*> before;
    const bool isOwn = !before(&x, begin()) && before(&x, end());
    const std::ptrdiff_t index = isOwn ? &x - begin() : 0;
    Detach();
    void* const slot = kelxArrayExtend(header_, 1);
    if (slot == nullptr) std::terminate();
    new (slot) T(isOwn ? Data()[index] : x);
  }

  /// Appends `count` elements from `elements`, which must not lie in this array. Does nothing when
  /// `count` is 0 or less. Returns false, with nothing appended, when the array would pass
  /// 2^31 - 1 elements.
  bool Append(const T* elements, int count) requires std::is_trivially_copyable_v<T> {
    if (count <= 0) return true;
    T* const slots = Extend(count);
    if (slots == nullptr) return false;
    std::memcpy(slots, elements, static_cast<std::size_t>(count) * sizeof(T));
    return true;
  }

  /// Appends `count` elements of no particular value and returns the first of them, for the caller
  /// to fill; null, with nothing appended, when `count` is 0 or less or the array would pass
  /// 2^31 - 1 elements.
  [[nodiscard]] T* Extend(int count) requires std::is_trivially_copyable_v<T> {
    return static_cast<T*>(kelxArrayExtend(header_, count));
  }

  /// Sets the capacity to `n` unless it is larger or `n` is negative. When there is no memory for
  /// it, the capacity stays as it is.
  void Reserve(int n) {
    if (n < 0 || header_ == nullptr || Capacity() > n) return;
    Detach();
    kelxArrayReallocSize(header_, static_cast<unsigned int>(n));
  }

  /// Removes every element; the capacity stays.
  void Clear() { Callback(); }

  /// What Clear does: destroys every element in index order, unless other arrays still share them,
  /// and sets the count to 0.
  void Callback() override {
    if (kelxArrayIsShared(header_)) {
      // The others may go at any moment, on threads of their own: who is last destroys the
      // elements.
      KELXDynamicArray shared(*this);
      kelxArrayFree(header_, this);
      header_ = Allocate(shared.Capacity());
      return;
    }
    for (int i = 0, count = Count(); i < count; ++i) Data()[i].~T();
    kelxArrayClear(header_);
  }

 private:
  static constexpr int kInitialCapacity = 4;

  static KELXArrayHeader* Allocate(int capacity) {
    return kelxArrayAllocate(capacity, static_cast<int>(sizeof(T)));
  }

  [[nodiscard]] T* Data() const { return static_cast<T*>(header_->elements); }
  [[nodiscard]] bool IsInside(int index) const { return index >= 0 && index < Count(); }

  /// Exchanges shared elements for copies of its own.
  void Detach() {
    if (!kelxArrayIsShared(header_)) return;
    if constexpr (std::is_trivially_copyable_v<T>) {
      kelxArrayReallocSize(header_, header_->capacity);
    } else {
      KELXDynamicArray own;
      own.Reserve(Capacity());
      for (const T& element : *this) own.Add(element);
      std::swap(header_, own.header_);
    }
  }

  KELXArrayHeader* header_;
};
