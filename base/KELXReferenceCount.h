#pragma once

#include "base/KELXExport.h"

/// Base of objects that live as long as somebody holds a reference to them.
///
/// Such objects are made with new and put into a handle (KELXReferenceHandle) before anybody else
/// holds them. An operation that hands out a raw pointer says whether it raised the count for its
/// caller, who then owes a LowerReference. The count is not atomic: an object and everything that
/// refers to it stay on one thread.
class KELXBASE_API KELXReferenceCount {
 public:
  /// An object held by `count` references; 0 for one that is about to be put into a handle.
  explicit KELXReferenceCount(unsigned long count) noexcept : count_(count) {}
  KELXReferenceCount(const KELXReferenceCount&) = delete;
  KELXReferenceCount& operator=(const KELXReferenceCount&) = delete;
  virtual ~KELXReferenceCount();

  /// Adds a reference.
  virtual void RaiseReference();

  /// Takes a reference away and deletes the object when that was the last one.
  virtual void LowerReference();

  /// The object's name as NUL-terminated UTF-8, lent for as long as the object lives unchanged;
  /// the empty text for objects that have none.
  virtual const char* GetName();

 private:
  unsigned long count_;
};
