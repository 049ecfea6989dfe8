#include "storage/KELIStorage.h"

#include <utility>

#include "storage/KELIStream.h"
#include "storage/NameIndexes.h"

KELIStorage::KELIStorage() = default;

KELIStorage::KELIStorage(const KELXFilePath& path)
    : image_(std::make_unique<KELStStorageFileInfo>(path)) {
  if (image_->checkValidity()) entry_ = image_->getRootDirEntry();
}

KELIStorage::~KELIStorage() = default;

int KELIStorage::openStream(const KELXString& name, KELIStream** stream) {
  if (!image_) return -1;
  KELStStorageDirEntry entry;
  if (!searchStream(name, entry, true) || !entry.isValid()) {
    *stream = nullptr;
    return -1;
  }
  if (entry.getSize() == 0) return -1;
  return entry.getSize() >= image_->getHeader().miniStreamCutoff
             ? getStreamFromFat(entry, stream)
             : getStreamFromMiniFat(entry, stream);
}

int KELIStorage::openStorage(const KELXString& name, KELIStorage** storage) {
  *storage = nullptr;
  KELStStorageDirEntry entry;
  if (!searchStorage(name, entry, true) || !entry.isValid()) return -1;
  *storage = new KELIStorage;
  (*storage)->setDirectoryEntry(entry);
  (*storage)->setStStorageFileInfo(image_.get());
  (*storage)->getPropertySetStorage();
  return 0;
}

bool KELIStorage::searchStream(const KELXString& name, KELStStorageDirEntry& entry,
                               bool directOnly) {
  const int match = Names().streams.Find(name);
  const auto searchInside = [&](KELIStorage& child) {
    return child.searchStream(name, entry, true);
  };
  if (!directOnly && SearchChildStorages(match, searchInside)) return true;
  if (match < 0) return false;
  entry = *std::as_const(elements_).At(match);
  return true;
}

bool KELIStorage::searchStorage(const KELXString& name, KELStStorageDirEntry& entry,
                                bool directOnly) {
  const int match = Names().storages.Find(name);
  const auto searchInside = [&](KELIStorage& child) {
    return child.searchStorage(name, entry, true);
  };
  if (!directOnly && SearchChildStorages(match, searchInside)) return true;
  if (match < 0) return false;
  entry = *std::as_const(elements_).At(match);
  return true;
}

/// Opens the child storages before position `end` (all of them when it is negative) in turn, until
/// `search` answers true for one.
template <typename Search>
bool KELIStorage::SearchChildStorages(int end, Search search) {
  const KELXDynamicArray<KELStStorageDirEntry> children = elements_;
  for (int i = 0; i < (end < 0 ? children.Count() : end); ++i) {
    if (!children.At(i)->isStorage()) continue;
    KELIStorage* opened = nullptr;
    if (openStorage(children.At(i)->getName(), &opened) != 0) continue;
    const std::unique_ptr<KELIStorage> child(opened);
    if (search(*child)) return true;
  }
  return false;
}

void KELIStorage::setPropertySetStorage(KELIPropertySetStorage* set) {
  propertySets_ = KELIPropertySetStorageHandle(set);
}

void KELIStorage::setStStorageFileInfo(KELStStorageFileInfo* image) {
  if (image != nullptr) image_ = std::make_unique<KELStStorageFileInfo>(*image);
}

KELStStorageFileInfo* KELIStorage::getStStorageFileInfo() { return image_.get(); }

void KELIStorage::setDirectoryEntry(const KELStStorageDirEntry& entry) { entry_ = entry; }

KELStStorageDirEntry KELIStorage::getDirectoryEntry() { return entry_; }
