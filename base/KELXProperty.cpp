#include "base/KELXProperty.h"

KELXProperty::KELXProperty(KELXString& name, ValueType type, KELXString& value)
    : KELXReferenceCount(0), name_(name), value_(value), type_(type) {}

KELXProperty::~KELXProperty() = default;

void KELXProperty::GetData(KELXString& name, KELXString& value, int& type) const {
  name = name_;
  value = value_;
  type = type_;
}

const char* KELXProperty::GetName() {
  if (!utf8Name_) utf8Name_ = std::make_unique<const std::string>(name_.toUtf8());
  return utf8Name_->c_str();
}
