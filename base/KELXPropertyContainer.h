#pragma once

#include <string>

#include "base/KELXDynamicArray.h"
#include "base/KELXExport.h"
#include "base/KELXPropertyHandle.h"
#include "base/KELXReferenceCount.h"
#include "base/KELXString.h"

/// A named list of properties. Reference counted.
class KELXBASE_API KELXPropertyContainer : public KELXReferenceCount {
 public:
  /// A container without a name that keeps `properties` alive. The array shares its elements with
  /// the one it was copied from; the properties themselves are not copied.
  explicit KELXPropertyContainer(KELXDynamicArray<KELXPropertyHandle> properties);
  ~KELXPropertyContainer() override;

  /// Names the container. `name` is copied.
  void SetPropertyName(KELXString& name);

  /// The name; empty until one is given.
  [[nodiscard]] KELXString GetPropertyName() const { return name_; }

  /// The properties in their order; a copy that shares them.
  [[nodiscard]] KELXDynamicArray<KELXPropertyHandle> GetProperties() const { return properties_; }

  /// The name as NUL-terminated UTF-8, lent until the container is named again.
  const char* GetName() override;

 private:
  KELXDynamicArray<KELXPropertyHandle> properties_;
  KELXString name_;
  std::string utf8Name_;
};
