#include "compound/ChainReader.h"

#include <algorithm>
#include <climits>

#include "compound/KELReadValue.h"

namespace kelx::internal {

int BytesInChain(std::uint64_t sectors, unsigned int sectorSize, int wanted) {
  const std::uint64_t bytes = std::min<std::uint64_t>(sectors * sectorSize, INT_MAX);
  return std::min(wanted, static_cast<int>(bytes));
}

void ReadChain(std::FILE* file, const KELStStorageFileInfo& image,
               const SectorChain<TableLinks>& chain, int wanted,
               KELXDynamicArray<unsigned char>& bytes) {
  const auto sectorSize = static_cast<unsigned int>(image.getEquivalentFatBytePos(1) -
                                                    image.getEquivalentFatBytePos(0));
  int left = BytesInChain(chain.Length(), sectorSize, wanted);
  bytes.Reserve(bytes.Count() + left);
  const auto read = [&](unsigned int first, unsigned int count) {
    const int length = BytesInChain(count, sectorSize, left);
    unsigned char* const target = bytes.Extend(length);
    if (target == nullptr) return;
    KELReadBytes(file, static_cast<std::int64_t>(image.getEquivalentFatBytePos(first)), length,
                 target);
    left -= length;
  };
  SectorRuns runs(sectorSize, INT_MAX / sectorSize, read);
  chain.ForEach([&](unsigned int sector) { runs.Add(sector); });
}

}  // namespace kelx::internal
