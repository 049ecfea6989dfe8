#pragma once

#include "base/KELXExport.h"
#include "base/KELXTypedHandle.h"
#include "property/KELIPropertyStorage.h"

/// Keeps a property set alive.
class KELXSTSTORAGE_API KELIPropertyStorageHandle : public KELXTypedHandle<KELIPropertyStorage> {
 public:
  using KELXTypedHandle::KELXTypedHandle;

  /// Holds the set of `other` too.
  /// @{
  KELIPropertyStorageHandle(const KELIPropertyStorageHandle& other) = default;
  KELIPropertyStorageHandle& operator=(const KELIPropertyStorageHandle& other) = default;
  /// @}
  ~KELIPropertyStorageHandle() override;
};
