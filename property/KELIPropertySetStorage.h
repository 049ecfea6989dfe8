#pragma once

#include "base/KELXExport.h"
#include "base/KELXReferenceCount.h"

/// The property sets of one storage.
class KELXSTSTORAGE_API KELIPropertySetStorage : public KELXReferenceCount {
 public:
  /// An empty collection.
  KELIPropertySetStorage();
  ~KELIPropertySetStorage() override;
};
