#pragma once

#include "storage/KELIStorage.h"
#include "storage/NameIndex.h"

/// Finds the children of a storage by name: streams ignoring case, storages exactly.
struct KELIStorage::NameIndexes {
  explicit NameIndexes(const KELXDynamicArray<KELStStorageDirEntry>& children)
      : streams(children, &KELStStorageDirEntry::isStream, kelx::internal::NameIndex::kIgnoreCase),
        storages(children, &KELStStorageDirEntry::isStorage, kelx::internal::NameIndex::kExact),
        count(children.Count()) {}

  kelx::internal::NameIndex streams;
  kelx::internal::NameIndex storages;
  int count;
};
