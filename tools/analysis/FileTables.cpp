#include "tools/analysis/FileTables.h"

#include <algorithm>
#include <utility>

#include "tools/kelst/Sectors.h"

namespace kelst {

namespace {

/// Not the mini stream: that is what small streams hold.
KELStStorageFileInfo LoadTables(std::FILE* file) {
  KELStStorageFileInfo image;
  image.setHeader(file);
  if (!image.checkHeader()) return image;
  image.readDifSector(file);
  image.readFatSector(file);
  image.readMiniFatSector(file);
  image.readDirectorySector(file);
  return image;
}

std::uint64_t LengthOf(std::FILE* file) {
  if (fseeko(file, 0, SEEK_END) != 0) return 0;
  return static_cast<std::uint64_t>(std::max<std::int64_t>(KELGetPosition(file), 0));
}

std::vector<unsigned int> ReadNumbers(std::FILE* file, std::uint64_t offset, std::size_t count,
                                      bool sameByteOrder) {
  std::vector<unsigned char> bytes(count * sizeof(unsigned int));
  KELReadBytes(file, static_cast<std::int64_t>(offset), static_cast<std::int64_t>(bytes.size()),
               bytes.data());
  std::vector<unsigned int> numbers(count);
  for (std::size_t i = 0; i < count; ++i) {
    KELMakeValue(&bytes[i * sizeof(unsigned int)], &numbers[i], sizeof(unsigned int),
                 sameByteOrder);
  }
  return numbers;
}

/// The table as the file has it, but that no entry looks lost: kUnknownLink is as far beyond every
/// file as the number before it.
Table WithoutUnknown(Table table) {
  for (int i = 0; i < table.Count(); ++i) {
    if (*std::as_const(table).At(i) == kUnknownLink) *table.At(i) = kUnknownLink - 1;
  }
  return table;
}

}  // namespace

FileTables::FileTables(std::FILE* file)
    : image_(LoadTables(file)), header_(image_.getHeader()), fileLength_(LengthOf(file)) {
  if (!IsAccepted()) return;
  const std::uint64_t sectors = (fileLength_ + SectorSize() - 1) / SectorSize();
  sectorCount_ =
      static_cast<std::uint32_t>(std::clamp<std::uint64_t>(sectors, 1, kUnknownLink)) - 1;
  fat_ = WithoutUnknown(image_.getFatSector());
  miniFat_ = WithoutUnknown(image_.getMiniFatSector());
  FindFat(file);
  std::size_t place = 0;
  ForEachSector(fat_, header_.miniFatStartSect, header_.sectorShift,
                std::uint64_t{sizeof(unsigned int)} * static_cast<unsigned int>(miniFat_.Count()),
                [&](unsigned int sector, std::uint64_t) {
                  if (!IsInFile(sector)) MarkLost(miniFat_, place);
                  ++place;
                });
  directory_.emplace(image_, file, fat_);
}

/// Lists what the header and the DIFAT sectors say, as far as the library has read it.
void FileTables::FindFat(std::FILE* file) {
  std::vector<unsigned int> listed =
      ReadNumbers(file, KELStStorageHeader::kDifatOffset, KELStStorageHeader::kDifatEntries,
                  IsHostByteOrder(header_));
  ReadDifatSectors(file, listed);
  const std::size_t entries = SectorSize() / sizeof(unsigned int);
  const std::size_t places = static_cast<std::size_t>(fat_.Count()) / entries;
  bool isBehindMark = false;
  std::vector<bool> met(SectorCount());
  for (const unsigned int sector : listed) {
    const bool isFree = sector == kFreeMark || sector == kEndMark;
    difat_.hasGap = difat_.hasGap || (isBehindMark && !isFree);
    isBehindMark = isBehindMark || isFree;
    if (isFree || difat_.fatSectors.size() == places) continue;
    // A sector that is listed again tells nothing of the sectors that it would stand for.
    if (!IsInFile(sector) || met[sector]) MarkLost(fat_, difat_.fatSectors.size());
    if (IsInFile(sector)) met[sector] = true;
    difat_.fatSectors.push_back(sector);
  }
  for (std::size_t i = difat_.fatSectors.size(); i < places; ++i) MarkLost(fat_, i);
}

void FileTables::ReadDifatSectors(std::FILE* file, std::vector<unsigned int>& listed) {
  std::vector<bool> met(SectorCount());
  difat_.next = header_.difStartSect;
  for (std::uint32_t i = 0; i < header_.numDifSects && IsInFile(difat_.next); ++i) {
    const unsigned int sector = difat_.next;
    if (met[sector]) return;
    met[sector] = true;
    difat_.difatSectors.push_back(sector);
    const auto numbers = ReadNumbers(file, OffsetOf(sector), SectorSize() / sizeof(unsigned int),
                                     IsHostByteOrder(header_));
    listed.insert(listed.end(), numbers.begin(), numbers.end() - 1);
    difat_.next = numbers.back();
  }
}

/// The entries of a table that its sector number `place` would hold.
void FileTables::MarkLost(Table& table, std::size_t place) const {
  const std::size_t entries = SectorSize() / sizeof(unsigned int);
  for (std::size_t i = place * entries; i < (place + 1) * entries; ++i) {
    unsigned int* const entry = table.At(static_cast<int>(i));
    if (entry != nullptr) *entry = kUnknownLink;
  }
}

}  // namespace kelst
