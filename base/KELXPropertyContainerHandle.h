#pragma once

#include "base/KELXExport.h"
#include "base/KELXPropertyContainer.h"
#include "base/KELXTypedHandle.h"

/// Keeps a named list of properties alive.
class KELXBASE_API KELXPropertyContainerHandle : public KELXTypedHandle<KELXPropertyContainer> {
 public:
  using KELXTypedHandle::KELXTypedHandle;

  /// Holds the list of `other` too.
  /// @{
  KELXPropertyContainerHandle(const KELXPropertyContainerHandle& other) = default;
  KELXPropertyContainerHandle& operator=(const KELXPropertyContainerHandle& other) = default;
  /// @}
  ~KELXPropertyContainerHandle() override;
};
