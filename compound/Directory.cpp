#include <array>
#include <span>
#include <vector>

#include "compound/ByteCursor.h"
#include "compound/KELReadValue.h"
#include "compound/KELStStorageFileInfo.h"
#include "compound/SectorChain.h"

using kelx::internal::ByteCursor;

namespace {

// A directory entry on disk.
constexpr std::size_t kEntryBytes = 128;
constexpr std::size_t kUsedEntryBytes = 126;
constexpr std::size_t kNameBytes = 64;
constexpr std::size_t kClassIdBytes = 16;

constexpr std::uint64_t kBytesARead = std::uint64_t{64} << 10;

template <std::size_t size>
std::array<unsigned char, size> TakeBytes(ByteCursor& bytes) {
  std::array<unsigned char, size> taken;
  bytes.CopyTo(taken);
  return taken;
}

tagFILETIME ReadTime(ByteCursor& bytes) {
  const auto low = bytes.Read<unsigned int>();
  return {low, bytes.Read<unsigned int>()};
}

void DecodeEntry(ByteCursor bytes, KELStStorageDirEntry& entry) {
  entry.setName(TakeBytes<kNameBytes>(bytes).data());      //   0
  entry.setNameLength(bytes.Read<unsigned short>());       //  64
  entry.setType(bytes.Read<unsigned char>());              //  66
  entry.setBFlag(bytes.Read<unsigned char>());             //  67
  entry.setLeftSib(bytes.Read<unsigned int>());            //  68
  entry.setRightSib(bytes.Read<unsigned int>());           //  72
  entry.setChild(bytes.Read<unsigned int>());              //  76
  entry.setClsID(TakeBytes<kClassIdBytes>(bytes).data());  //  80
  entry.setUserFlag(bytes.Read<unsigned int>());           //  96
  std::array times{ReadTime(bytes), ReadTime(bytes)};      // 100
  entry.setTime(times.data());
  entry.setStartSect(bytes.Read<unsigned int>());       // 116
  entry.setSize(bytes.Read<unsigned int>());            // 120
  entry.setPropertyType(bytes.Read<unsigned short>());  // 124
}

}  // namespace

void KELStStorageFileInfo::readDirEntry(std::FILE* file, KELStStorageDirEntry& entry) {
  if (file == nullptr) return;
  std::array<unsigned char, kUsedEntryBytes> bytes;
  KELReadBytes(file, kUsedEntryBytes, bytes.data());
  fseeko(file, kEntryBytes - kUsedEntryBytes, SEEK_CUR);
  DecodeEntry(ByteCursor(bytes, sameByteOrder_), entry);
}

void KELStStorageFileInfo::readDirectorySector(std::FILE* file) {
  if (file == nullptr) return;
  const auto chain =
      kelx::internal::TableChain(header_.dirStartSect, getLongestChain(), fatSector_);
  const std::uint64_t entries = chain.Length() * SectorSize() / kEntryBytes;
  dirArray_.Reserve(dirArray_.Count() + static_cast<int>(entries));
  std::vector<unsigned char> bytes;
  kelx::internal::SectorRuns runs(
      SectorSize(), kBytesARead / SectorSize(), [&](unsigned int first, unsigned int count) {
        bytes.resize(std::size_t{count} * SectorSize());
        KELReadBytes(file, static_cast<std::int64_t>(getEquivalentFatBytePos(first)),
                     static_cast<std::int64_t>(bytes.size()), bytes.data());
        for (std::size_t at = 0; at < bytes.size(); at += kEntryBytes) {
          KELStStorageDirEntry entry;
          DecodeEntry(ByteCursor(std::span(bytes).subspan(at, kEntryBytes), sameByteOrder_), entry);
          dirArray_.Add(entry);
        }
      });
  chain.ForEach([&](unsigned int sector) { runs.Add(sector); });
}
