#pragma once

#include "base/KELXExport.h"
#include "base/KELXReferenceCount.h"

/// Holds one reference to a counted object, or nothing: a value type of one pointer, which arrays
/// may move bytewise. The handles of each class derive from it.
class KELXBASE_API KELXReferenceHandle {
 public:
  /// Holds `p` and raises its count; null gives a handle that holds nothing.
  KELXReferenceHandle(KELXReferenceCount* p);

  /// Holds the object of `other` too.
  KELXReferenceHandle(const KELXReferenceHandle& other);

  /// Holds the object of `other` too; the object held before loses a reference.
  KELXReferenceHandle& operator=(const KELXReferenceHandle& other);

  /// Lowers the count of the object held.
  virtual ~KELXReferenceHandle();

  /// Whether an object is held.
  [[nodiscard]] virtual bool IsValid() const;

  /// Whether both hold the same object, or both nothing.
  bool operator==(const KELXReferenceHandle& other) const;

  /// A total order of handles, by the address of the object held; the same for one process only.
  bool operator<(const KELXReferenceHandle& other) const;

 protected:
  /// The object held, or null.
  [[nodiscard]] KELXReferenceCount* Held() const noexcept { return held_; }

 private:
  KELXReferenceCount* held_;
};
