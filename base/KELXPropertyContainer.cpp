#include "base/KELXPropertyContainer.h"

// The signature is a given one. NOLINTNEXTLINE(performance-unnecessary-value-param)
KELXPropertyContainer::KELXPropertyContainer(KELXDynamicArray<KELXPropertyHandle> properties)
    : KELXReferenceCount(0), properties_(properties) {}

KELXPropertyContainer::~KELXPropertyContainer() = default;

void KELXPropertyContainer::SetPropertyName(KELXString& name) {
  name_ = name;
  utf8Name_ = name.toUtf8();
}

const char* KELXPropertyContainer::GetName() { return utf8Name_.c_str(); }
