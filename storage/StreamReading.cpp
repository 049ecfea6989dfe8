#include <algorithm>

#include "compound/ChainReader.h"
#include "compound/OpenFile.h"
#include "storage/KELIStorage.h"
#include "storage/KELIStream.h"

using kelx::internal::BytesInChain;
using kelx::internal::ChainEnd;

namespace {

using FileChain = kelx::internal::SectorChain<kelx::internal::TableLinks>;

/// Whether a chain ends with a mark, every sector of it having an entry in the table.
bool IsWhole(const FileChain& chain, const KELXDynamicArray<unsigned int>& table) {
  return chain.End() == ChainEnd::kMark && chain.Last() < static_cast<unsigned int>(table.Count());
}

/// Sizes are taken as signed 32-bit values: 2^31 bytes and more give nothing to read.
int BytesWanted(const KELStStorageDirEntry& entry) { return static_cast<int>(entry.getSize()); }

/// Appends the mini sectors of `chain` to `bytes`, `wanted` bytes in all. False when the chain does
/// not end where `wanted` is used up at the latest, loops or leaves the mini stream: `bytes` then
/// has what came before.
bool AppendMiniSectors(const KELStStorageFileInfo& image, const FileChain& chain, int wanted,
                       KELXDynamicArray<unsigned char>& bytes) {
  const KELXDynamicArray<unsigned char> miniStream = image.getMiniStream();
  const unsigned int sectorSize = image.getEquivalentMiniFatBytePos(1);
  bytes.Reserve(BytesInChain(chain.Length(), sectorSize, wanted));
  bool isWhole = true;
  chain.ForEach([&](unsigned int sector) {
    const std::uint64_t start = image.getEquivalentMiniFatBytePos(sector);
    const int chunk = BytesInChain(1, sectorSize, wanted - bytes.Count());
    const std::uint64_t end = start + static_cast<std::uint64_t>(std::max(chunk, 0));
    isWhole = isWhole && chunk != 0 && end <= static_cast<std::uint64_t>(miniStream.Count());
    if (isWhole) bytes.Append(miniStream.begin() + start, chunk);
  });
  return isWhole && chain.End() == ChainEnd::kMark;
}

}  // namespace

int KELIStorage::getStreamFromFat(const KELStStorageDirEntry& entry, KELIStream** stream) {
  if (stream == nullptr || !image_) return -1;
  const auto file = kelx::internal::OpenForReading(image_->GetFilePath());
  if (!file) return -1;
  const KELXDynamicArray<unsigned int> fat = image_->getFatSector();
  const FileChain chain =
      kelx::internal::TableChain(entry.getStartSect(), image_->getLongestChain(), fat);
  *stream = nullptr;
  if (!IsWhole(chain, fat)) return -1;
  *stream = new KELIStream(0);
  kelx::internal::ReadChain(file.get(), *image_, chain, BytesWanted(entry), (*stream)->bytes_);
  (*stream)->setDirEntry(entry);
  return 0;
}

int KELIStorage::getStreamFromMiniFat(const KELStStorageDirEntry& entry, KELIStream** stream) {
  if (stream == nullptr || !image_) return -1;
  const KELXDynamicArray<unsigned int> miniFat = image_->getMiniFatSector();
  const auto sectorSize = static_cast<int>(image_->getEquivalentMiniFatBytePos(1));
  const int wanted = BytesWanted(entry);
  // One mini sector more than the size needs is enough to tell that a chain is too long.
  const int mostSectors = wanted < 0 ? miniFat.Count() + 1 : wanted / sectorSize + 2;
  const FileChain chain = kelx::internal::TableChain(
      entry.getStartSect(), static_cast<std::uint64_t>(mostSectors), miniFat);
  *stream = new KELIStream(0);
  if (!AppendMiniSectors(*image_, chain, wanted, (*stream)->bytes_)) return -1;
  (*stream)->setDirEntry(entry);
  return 0;
}
