#include "property/KELIPropertySetStorage.h"

#include <algorithm>
#include <array>

KELIPropertySetStorage::KELIPropertySetStorage() : KELXReferenceCount(0) {}

KELIPropertySetStorage::~KELIPropertySetStorage() = default;

bool KELIPropertySetStorage::AddPropertyStorage(KELIPropertyStorage* propertyStorage) {
  if (propertyStorage == nullptr) return false;
  propertyStorages_.Add(KELIPropertyStorageHandle(propertyStorage));
  return true;
}

void KELIPropertySetStorage::GetPropertyStorages(
    KELXDynamicArray<KELIPropertyStorage*>& propertyStorages) {
  for (KELIPropertyStorage* const propertyStorage : propertyStorages_) {
    propertyStorage->RaiseReference();
    propertyStorages.Add(propertyStorage);
  }
}

int KELIPropertySetStorage::GetPropertyStorageCount() { return propertyStorages_.Count(); }

/// Hands out the first set for which `isWanted` holds.
template <typename Predicate>
KELXResult KELIPropertySetStorage::Find(Predicate isWanted, KELIPropertyStorage*& propertyStorage) {
  propertyStorage = nullptr;
  for (KELIPropertyStorage* const candidate : propertyStorages_) {
    if (!isWanted(*candidate)) continue;
    candidate->RaiseReference();
    propertyStorage = candidate;
    return KELXResult::kSuccess;
  }
  return KELXResult::kNotFound;
}

KELXResult KELIPropertySetStorage::GetPropertyStorageWithName(
    const KELXString& name, KELIPropertyStorage*& propertyStorage) {
  return Find(
      [&](KELIPropertyStorage& candidate) {
        return candidate.GetPropertyStorageName().equals(name);
      },
      propertyStorage);
}

KELXResult KELIPropertySetStorage::GetPropertyStorageWithID(const unsigned char* id,
                                                            KELIPropertyStorage*& propertyStorage) {
  return Find(
      [&](KELIPropertyStorage& candidate) {
        std::array<unsigned char, 16> own{};
        candidate.GetPropertyStorageID(own.data());
        return id != nullptr && std::equal(own.begin(), own.end(), id);
      },
      propertyStorage);
}
