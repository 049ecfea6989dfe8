#include "tests/support/DiskRecords.h"

#include <algorithm>

namespace kelx::test {
namespace {

constexpr std::array<unsigned char, 8> kSignature = {0xD0, 0xCF, 0x11, 0xE0,
                                                     0xA1, 0xB1, 0x1A, 0xE1};
constexpr std::uint64_t kMinorVersion = 0x3E;
constexpr std::uint64_t kByteOrderMark = 0xFFFE;
constexpr std::uint64_t kMiniSectorShift = 6;
constexpr std::uint8_t kRed = 0;
constexpr std::uint8_t kBlack = 1;

class Record {
 public:
  Record(std::span<unsigned char> bytes, ByteOrder order) : bytes_(bytes), order_(order) {}

  void Set(Field field, std::uint64_t value) {
    Store(&bytes_[field.offset], value, field.width, order_);
  }
  void Set(std::size_t offset, std::span<const unsigned char> run) {
    std::ranges::copy(run, bytes_.subspan(offset).begin());
  }

 private:
  std::span<unsigned char> bytes_;
  ByteOrder order_;
};

std::uint32_t StartOf(const std::vector<std::uint32_t>& chain) {
  return chain.empty() ? kEndOfChain : chain.front();
}

void SetVersion(const Format& format, const Layout& layout, Record& header) {
  const bool bigSectors = format.sectorSize == 4096;
  header.Set(HeaderField::kMinorVersion, kMinorVersion);
  header.Set(HeaderField::kMajorVersion, bigSectors ? 4 : 3);
  header.Set(HeaderField::kByteOrder, kByteOrderMark);
  header.Set(HeaderField::kSectorShift, bigSectors ? 12 : 9);
  header.Set(HeaderField::kMiniSectorShift, kMiniSectorShift);
  header.Set(HeaderField::kDirectorySectorCount,
             format.statedDirectorySectors.value_or(bigSectors ? layout.directory.size() : 0));
}

void SetTablePlaces(const Layout& layout, Record& header) {
  header.Set(HeaderField::kFatSectorCount, layout.fat.size());
  header.Set(HeaderField::kDirectoryStart, StartOf(layout.directory));
  header.Set(HeaderField::kMiniFatStart, StartOf(layout.miniFat));
  header.Set(HeaderField::kMiniFatSectorCount, layout.miniFat.size());
  header.Set(HeaderField::kDifatStart, StartOf(layout.difat));
  header.Set(HeaderField::kDifatSectorCount, layout.difat.size());
}

void SetName(std::u16string_view name, Record& record) {
  Bytes units(name.size() * 2);
  for (std::size_t i = 0; i < name.size(); ++i) {
    Store(&units[2 * i], name[i], 2, ByteOrder::kLittle);
  }
  record.Set(EntryField::kNameOffset, units);
  record.Set(EntryField::kNameLength, std::min(name.size() + 1, kNameUnits) * 2);
}

void SetLinks(const Links& links, Record& record) {
  record.Set(EntryField::kLeftSibling, links.left);
  record.Set(EntryField::kRightSibling, links.right);
  record.Set(EntryField::kChild, links.child);
}

void SetOptions(const EntryOptions& options, Record& record) {
  record.Set(EntryField::kClassIdOffset, options.classId);
  record.Set(EntryField::kStateBits, options.stateBits);
  record.Set(EntryField::kCreatedLow, options.created);
  record.Set(EntryField::kCreatedHigh, options.created >> 32);
  record.Set(EntryField::kModifiedLow, options.modified);
  record.Set(EntryField::kModifiedHigh, options.modified >> 32);
}

}  // namespace

Bytes EncodeHeader(const Format& format, const Layout& layout) {
  Bytes bytes(kHeaderSize);
  Record header(bytes, format.byteOrder);
  header.Set(HeaderField::kSignatureOffset, kSignature);
  SetVersion(format, layout, header);
  header.Set(HeaderField::kMiniStreamCutoff, format.miniStreamCutoff);
  SetTablePlaces(layout, header);
  for (std::size_t i = 0; i < kHeaderDifatCount; ++i) {
    const bool listed = i < format.fatSectorsInHeader && i < layout.fat.size();
    header.Set(HeaderField::Difat(i), listed ? layout.fat[i] : kFreeSector);
  }
  return bytes;
}

Bytes EncodeDirectory(std::span<const CompoundFileEntry> entries, std::span<const Links> links,
                      const Layout& layout) {
  Bytes bytes(layout.directory.size() * layout.sectorSize);
  for (std::size_t i = 0; i < bytes.size() / kEntrySize; ++i) {
    Record record({&bytes[i * kEntrySize], kEntrySize}, layout.byteOrder);
    SetLinks(i < links.size() ? links[i] : Links{}, record);
    if (i >= entries.size()) continue;
    const EntryOptions& options = entries[i].options;
    SetName(entries[i].name, record);
    record.Set(EntryField::kType, options.type.value_or(entries[i].type));
    record.Set(EntryField::kColour, options.colour.value_or(links[i].red ? kRed : kBlack));
    SetOptions(options, record);
    record.Set(EntryField::kStartSector, layout.entries[i].startSector);
    record.Set(EntryField::kSize, layout.entries[i].size);
    record.Set(EntryField::kSizeHigh, layout.entries[i].size >> 32);
  }
  return bytes;
}

}  // namespace kelx::test
