#pragma once

#include <memory>
#include <string>

#include "base/KELXExport.h"
#include "base/KELXReferenceCount.h"
#include "base/KELXString.h"

/// The kind of a property's value. Whatever the kind, the value itself is kept as text.
enum ValueType {
  ValueTypeText = 1,
  ValueTypeInteger = 2,
  ValueTypeFloat = 3,
  ValueTypeBoolean = 4,
  ValueTypeDate = 5,
};

/// One property: an identifier, a name, a kind and a value as text. Reference counted.
class KELXBASE_API KELXProperty : public KELXReferenceCount {
 public:
  using ValueType = ::ValueType;

  /// A property with the identifier 0. The strings are copied.
  KELXProperty(KELXString& name, ValueType type, KELXString& value);
  ~KELXProperty() override;

  /// The identifier; unique in one section of a property set only.
  void SetID(unsigned long id) { id_ = id; }
  [[nodiscard]] unsigned long GetID() const { return id_; }

  /// Copies out the name, the value and the kind, as a number of ValueType.
  void GetData(KELXString& name, KELXString& value, int& type) const;

  /// The name as NUL-terminated UTF-8, lent for as long as the property lives.
  const char* GetName() override;

 private:
  KELXString name_;
  KELXString value_;
  unsigned long id_ = 0;
  ValueType type_;
  std::unique_ptr<const std::string> utf8Name_;  // made when it is first asked for
};
