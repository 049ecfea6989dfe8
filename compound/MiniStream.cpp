#include "compound/ChainReader.h"
#include "compound/KELStStorageFileInfo.h"
#include "compound/SectorChain.h"

/// The entry that describes the mini stream, null when the directory does not begin with a root.
const KELStStorageDirEntry* KELStStorageFileInfo::RootEntry() const {
  const KELStStorageDirEntry* const first = dirArray_.At(0);
  return first != nullptr && first->isRoot() ? first : nullptr;
}

unsigned int KELStStorageFileInfo::getMiniStreamStartSect() const {
  const KELStStorageDirEntry* const root = RootEntry();
  return root == nullptr ? 0 : root->getStartSect();
}

unsigned long KELStStorageFileInfo::getMiniStreamLength() const {
  const KELStStorageDirEntry* const root = RootEntry();
  return root == nullptr ? 0 : root->getSize();
}

void KELStStorageFileInfo::setMiniStreamData(std::FILE* file) {
  // Lengths are signed 32-bit values: 2^31 bytes and more have no length that could be read.
  const auto length = static_cast<int>(getMiniStreamLength());
  const unsigned int start = getMiniStreamStartSect();
  if (file == nullptr || !checkHeader()) return;
  if (start == kelx::internal::kEndOfChain || length <= 0) return;
  const auto chain = kelx::internal::TableChain(start, getLongestChain(), fatSector_);
  kelx::internal::ReadChain(file, *this, chain, length - miniStream_.Count(), miniStream_);
}

void KELStStorageFileInfo::addBytesToMiniBuffer(unsigned char* bytes, int count) {
  miniStream_.Append(bytes, count);
}
