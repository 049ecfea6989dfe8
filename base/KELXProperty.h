#pragma once

#include <memory>
#include <string>

#include "base/KELXExport.h"
#include "base/KELXReferenceCount.h"
#include "base/KELXString.h"

/// @file
/// Properties and the kinds of their values.

/// The kind of a property's value. Whatever the kind, the value itself is kept as text.
enum ValueType {
  ValueTypeText = 1,     ///< as it stands; also currency, `$12.345600`, and unsigned bytes
  ValueTypeInteger = 2,  ///< decimal; error codes as `0x80070002`, class identifiers in braces
  ValueTypeFloat = 3,    ///< six decimals behind a point; also `inf` and `nan`
  ValueTypeBoolean = 4,  ///< `True` or `False`
  ValueTypeDate = 5,     ///< as KELXDate writes it; a span of time is the date so long after 1601
};

/// One property: an identifier, a name, a kind and a value as text. Reference counted.
class KELXBASE_API KELXProperty : public KELXReferenceCount {
 public:
  /// The kinds, under the name of the class as well.
  using ValueType = ::ValueType;

  /// A property with the identifier 0. The strings are copied.
  KELXProperty(KELXString& name, ValueType type, KELXString& value);
  ~KELXProperty() override;

  /// The identifier; unique in one section of a property set only.
  /// @{
  void SetID(unsigned long id) { id_ = id; }
  [[nodiscard]] unsigned long GetID() const { return id_; }
  /// @}

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
