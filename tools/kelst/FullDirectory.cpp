#include "tools/kelst/FullDirectory.h"

#include <algorithm>
#include <span>

#include "tools/kelst/Sectors.h"

namespace kelst {

namespace {

// A directory entry on disk.
constexpr std::size_t kEntryBytes = 128;
constexpr std::size_t kNameUnits = 32;
constexpr std::size_t kNameLengthOffset = 64;
constexpr std::size_t kColourOffset = 67;
constexpr std::size_t kClassIdOffset = 80;
constexpr std::size_t kStateBitsOffset = 96;
constexpr std::size_t kCreatedOffset = 100;
constexpr std::size_t kModifiedOffset = 108;
constexpr std::size_t kSizeOffset = 120;

using EntryBytes = std::span<const unsigned char>;

template <typename T>
T ValueAt(EntryBytes bytes, std::size_t offset, bool sameByteOrder) {
  T value{};
  KELMakeValue(bytes.subspan(offset).data(), &value, sizeof(value), sameByteOrder);
  return value;
}

/// Times and sizes are two 32-bit values, the low one first in either byte order.
std::uint64_t LongAt(EntryBytes bytes, std::size_t offset, bool sameByteOrder) {
  const auto low = ValueAt<std::uint32_t>(bytes, offset, sameByteOrder);
  const auto high = ValueAt<std::uint32_t>(bytes, offset + sizeof(low), sameByteOrder);
  return std::uint64_t{high} << 32 | low;
}

/// Without the zero that ends it. A length that cannot be makes the name end at its first zero.
std::u16string DecodeName(EntryBytes bytes, unsigned int length, bool lowByteFirst) {
  const std::size_t stated = length / sizeof(char16_t);
  const bool isStated = stated > 0 && stated <= kNameUnits;
  std::u16string name(isStated ? stated : kNameUnits, u'\0');
  for (std::size_t i = 0; i < name.size(); ++i) {
    name[i] = ValueAt<char16_t>(bytes, i * sizeof(char16_t), lowByteFirst);
  }
  if (!isStated) return name.substr(0, name.find(u'\0'));
  if (name.back() == u'\0') name.pop_back();
  return name;
}

/// In files of the opposite byte order some writers store names low byte first and some not. The
/// name of the root begins with an ASCII letter, whose place tells.
bool NamesAreLowByteFirst(EntryBytes root, bool sameByteOrder) {
  return sameByteOrder || (root[0] != 0 && root[1] == 0);
}

FullEntry Decode(EntryBytes bytes, bool sameByteOrder, bool lowByteFirst) {
  const auto nameLength = ValueAt<std::uint16_t>(bytes, kNameLengthOffset, sameByteOrder);
  FullEntry entry{DecodeName(bytes, nameLength, lowByteFirst),
                  nameLength,
                  bytes[kColourOffset],
                  {},
                  ValueAt<std::uint32_t>(bytes, kStateBitsOffset, sameByteOrder),
                  LongAt(bytes, kCreatedOffset, sameByteOrder),
                  LongAt(bytes, kModifiedOffset, sameByteOrder),
                  LongAt(bytes, kSizeOffset, sameByteOrder)};
  std::ranges::copy(bytes.subspan(kClassIdOffset, entry.classId.size()), entry.classId.begin());
  return entry;
}

}  // namespace

FullDirectory::FullDirectory(const KELStStorageFileInfo& image, std::FILE* file,
                             const KELXDynamicArray<unsigned int>& fat)
    : entries_(image.getDirArray()) {
  const KELStStorageHeader header = image.getHeader();
  const auto count = static_cast<std::size_t>(entries_.Count());
  full_.reserve(count);
  const bool sameByteOrder = IsHostByteOrder(header);
  bool lowByteFirst = true;
  std::vector<unsigned char> sector(std::size_t{1} << header.sectorShift);
  // The library has seen where the chain ends: it is followed for as many sectors as it gave.
  for (unsigned int at = header.dirStartSect; full_.size() < count; at = NextSector(fat, at)) {
    if (at == kUnknownLink && !full_.empty()) break;
    if (file != nullptr) {
      KELReadBytes(file, static_cast<std::int64_t>(image.getEquivalentFatBytePos(at)),
                   static_cast<std::int64_t>(sector.size()), sector.data());
    }
    if (full_.empty()) lowByteFirst = NamesAreLowByteFirst(sector, sameByteOrder);
    for (std::size_t offset = 0; offset < sector.size(); offset += kEntryBytes) {
      const EntryBytes bytes = EntryBytes(sector).subspan(offset, kEntryBytes);
      full_.push_back(Decode(bytes, sameByteOrder, lowByteFirst));
    }
  }
}

}  // namespace kelst
