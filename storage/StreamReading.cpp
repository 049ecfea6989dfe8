#include <algorithm>
#include <optional>

#include "compound/ChainReader.h"
#include "compound/OpenFile.h"
#include "storage/KELIStorage.h"
#include "storage/KELIStream.h"

using kelx::internal::BytesInChain;
using kelx::internal::ChainEnd;

namespace {

constexpr unsigned int kMiniSectorSize = 64;  // in every file that is accepted

using FileChain = kelx::internal::SectorChain<kelx::internal::TableLinks>;

/// Whether a chain ends with a mark, every sector of it having an entry in the table.
bool IsWhole(const FileChain& chain, const KELXDynamicArray<unsigned int>& table) {
  return chain.End() == ChainEnd::kMark && chain.Last() < static_cast<unsigned int>(table.Count());
}

/// Sizes are taken as signed 32-bit values: 2^31 bytes and more give nothing to read.
int BytesWanted(const KELStStorageDirEntry& entry) { return static_cast<int>(entry.getSize()); }

/// The most bytes of a small stream that room is made for before they are read.
constexpr int kUsualCutoff = 4096;

/// Appends the mini sectors from `sector` on to `bytes`, `wanted` bytes in all, as often as the
/// chain names them. False when the chain does not end where `wanted` is used up at the latest,
/// leaves the mini stream or takes more than `mostSteps`: `bytes` then has what came before.
bool AppendMiniSectors(const KELStStorageFileInfo& image, unsigned int sector, int wanted,
                       std::uint64_t mostSteps, KELXDynamicArray<unsigned char>& bytes) {
  const KELXDynamicArray<unsigned int> miniFat = image.getMiniFatSector();
  const kelx::internal::TableLinks next(
      {miniFat.begin(), static_cast<std::size_t>(miniFat.Count())});
  const KELXDynamicArray<unsigned char> miniStream = image.getMiniStream();
  bytes.Reserve(std::min(wanted, kUsualCutoff));
  for (std::uint64_t step = 0; step < mostSteps; ++step) {
    const std::uint64_t start = image.getEquivalentMiniFatBytePos(sector);
    const int chunk = BytesInChain(1, kMiniSectorSize, wanted - bytes.Count());
    const std::uint64_t end = start + static_cast<std::uint64_t>(std::max(chunk, 0));
    if (chunk == 0 || end > static_cast<std::uint64_t>(miniStream.Count())) return false;
    bytes.Append(miniStream.begin() + start, chunk);
    const std::optional<unsigned int> following = next(sector);
    if (!following) return true;
    sector = *following;
  }
  return false;
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
  // A chain without loops has no more mini sectors than the mini FAT has entries, nor than the mini
  // stream has, and one more. One that loops gives the bytes of a usual small stream all the same.
  const int room = std::max(image_->getMiniStream().Count(), kUsualCutoff) / int{kMiniSectorSize};
  const int most = std::min(image_->getMiniFatSector().Count(), room);
  const auto mostSteps = static_cast<std::uint64_t>(most) + 1;
  *stream = new KELIStream(0);
  if (!AppendMiniSectors(*image_, entry.getStartSect(), BytesWanted(entry), mostSteps,
                         (*stream)->bytes_)) {
    return -1;
  }
  (*stream)->setDirEntry(entry);
  return 0;
}
