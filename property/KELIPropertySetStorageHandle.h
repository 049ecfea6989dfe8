#pragma once

#include "base/KELXExport.h"
#include "base/KELXTypedHandle.h"
#include "property/KELIPropertySetStorage.h"

/// Keeps a collection of property sets alive.
class KELXSTSTORAGE_API KELIPropertySetStorageHandle
    : public KELXTypedHandle<KELIPropertySetStorage> {
 public:
  using KELXTypedHandle::KELXTypedHandle;

  /// Holds the collection of `other` too.
  /// @{
  KELIPropertySetStorageHandle(const KELIPropertySetStorageHandle& other) = default;
  KELIPropertySetStorageHandle& operator=(const KELIPropertySetStorageHandle& other) = default;
  /// @}
  ~KELIPropertySetStorageHandle() override;
};
