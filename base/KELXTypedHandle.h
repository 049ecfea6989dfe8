#pragma once

#include "base/KELXReferenceHandle.h"

/// The operations that every handle class offers over the class that it holds. `T` derives from
/// KELXReferenceCount and need be complete only where a handle is used. A handle that holds nothing
/// yet is made of null: `KELXPropertyHandle handle(nullptr)`.
template <typename T>
class KELXTypedHandle : public KELXReferenceHandle {
 public:
  /// Holds `p` and raises its count; null gives a handle that holds nothing.
  KELXTypedHandle(T* p) : KELXReferenceHandle(p) {}

  /// Whether both hold the same object, or both nothing.
  bool operator==(const KELXTypedHandle& other) const {
    return KELXReferenceHandle::operator==(other);
  }

  /// Whether `p` is the object held.
  bool operator==(T* p) const { return Get() == p; }

  /// The order of KELXReferenceHandle.
  bool operator<(const KELXTypedHandle& other) const {
    return KELXReferenceHandle::operator<(other);
  }

  /// The object held, null when there is none; lent for as long as the handle holds it.
  T* operator->() const { return Get(); }

  /// The same, so that a handle can stand where a pointer is asked for.
  operator T*() const { return Get(); }

 private:
  [[nodiscard]] T* Get() const { return static_cast<T*>(Held()); }
};
