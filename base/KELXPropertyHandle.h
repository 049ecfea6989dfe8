#pragma once

#include "base/KELXExport.h"
#include "base/KELXProperty.h"
#include "base/KELXTypedHandle.h"

/// Keeps a property alive.
class KELXBASE_API KELXPropertyHandle : public KELXTypedHandle<KELXProperty> {
 public:
  using KELXTypedHandle::KELXTypedHandle;

  /// Holds the property of `other` too.
  /// @{
  KELXPropertyHandle(const KELXPropertyHandle& other) = default;
  KELXPropertyHandle& operator=(const KELXPropertyHandle& other) = default;
  /// @}
  ~KELXPropertyHandle() override;
};
