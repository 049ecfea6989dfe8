#include "compound/ChainReader.h"

#include <algorithm>
#include <climits>

#include "compound/KELReadValue.h"

namespace kelx::internal {

int BytesInChain(std::uint64_t sectors, unsigned int shift, int wanted) {
  const std::uint64_t bytes = std::min<std::uint64_t>(sectors << shift, INT_MAX);
  return std::min(wanted, static_cast<int>(bytes));
}

void ReadChain(std::FILE* file, const KELStStorageFileInfo& image,
               const SectorChain<TableLinks>& chain, int wanted,
               KELXDynamicArray<unsigned char>& bytes) {
  const unsigned int shift = image.getHeader().sectorShift;
  int left = BytesInChain(chain.Length(), shift, wanted);
  bytes.Reserve(bytes.Count() + left);
  SectorRuns runs(
      shift, std::uint64_t{INT_MAX} >> shift, [&](unsigned int first, unsigned int count) {
        const int length = BytesInChain(count, shift, left);
        unsigned char* const target = bytes.Extend(length);
        if (target == nullptr) return;
        KELReadBytes(file, static_cast<std::int64_t>(image.getEquivalentFatBytePos(first)), length,
                     target);
        left -= length;
      });
  chain.ForEach([&](unsigned int sector) { runs.Add(sector); });
}

}  // namespace kelx::internal
