#include "base/KELXReferenceCount.h"

KELXReferenceCount::~KELXReferenceCount() = default;

void KELXReferenceCount::RaiseReference() { ++count_; }

void KELXReferenceCount::LowerReference() {
  if (--count_ == 0) delete this;
}

const char* KELXReferenceCount::GetName() { return ""; }
