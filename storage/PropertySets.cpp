#include "storage/KELIStorage.h"

KELIPropertySetStorage* KELIStorage::getPropertySetStorage() {
  if (!propertySets_.IsValid()) {
    propertySets_ = KELIPropertySetStorageHandle(new KELIPropertySetStorage);
  }
  return propertySets_;
}
