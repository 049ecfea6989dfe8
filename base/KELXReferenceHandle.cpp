#include "base/KELXReferenceHandle.h"

#include <functional>
#include <utility>

namespace {

KELXReferenceCount* Raise(KELXReferenceCount* object) {
  if (object != nullptr) object->RaiseReference();
  return object;
}

void Lower(KELXReferenceCount* object) {
  if (object != nullptr) object->LowerReference();
}

}  // namespace

KELXReferenceHandle::KELXReferenceHandle(KELXReferenceCount* p) : held_(Raise(p)) {}

KELXReferenceHandle::KELXReferenceHandle(const KELXReferenceHandle& other)
    : held_(Raise(other.held_)) {}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): the new object is raised first
KELXReferenceHandle& KELXReferenceHandle::operator=(const KELXReferenceHandle& other) {
  Lower(std::exchange(held_, Raise(other.held_)));
  return *this;
}

KELXReferenceHandle::~KELXReferenceHandle() { Lower(held_); }

bool KELXReferenceHandle::IsValid() const { return held_ != nullptr; }

bool KELXReferenceHandle::operator==(const KELXReferenceHandle& other) const {
  return held_ == other.held_;
}

bool KELXReferenceHandle::operator<(const KELXReferenceHandle& other) const {
  return std::less<>()(held_, other.held_);
}
