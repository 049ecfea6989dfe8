#include <algorithm>
#include <array>
#include <vector>

#include "tools/analysis/Analysis.h"
#include "tools/kelst/ValueText.h"

namespace kelst {

namespace {

constexpr char16_t kPropertyStreamMark = 5;

/// Real property sets have kilobytes; a larger stream is not read into memory.
constexpr std::uint64_t kMostBytes = std::uint64_t{16} << 20;

// A property-set stream: what lies where.
constexpr std::uint16_t kByteOrderMark = 0xFFFE;
constexpr std::uint64_t kSectionCountOffset = 24;
constexpr std::uint64_t kSectionListOffset = 28;
constexpr std::uint64_t kFormatIdBytes = 16;
constexpr std::uint64_t kListedSectionBytes = 20;
constexpr std::uint64_t kSectionHeaderBytes = 8;
constexpr std::uint64_t kTableEntryBytes = 8;
constexpr std::uint32_t kDictionaryId = 0;
constexpr std::uint32_t kCodePageId = 1;
constexpr std::uint16_t kUtf16CodePage = 1200;

// How long the values of a type are.
constexpr std::uint32_t kTwoByteInteger = 2;
struct TypeLength {
  std::uint32_t type;
  std::uint32_t bytes;  ///< behind the type word
  std::uint32_t aUnit;  ///< what each unit takes that the first four bytes count; 0 for none
};
constexpr std::array<TypeLength, 17> kTypes{{{kTwoByteInteger, 2, 0},
                                             {3, 4, 0},
                                             {4, 4, 0},
                                             {5, 8, 0},
                                             {6, 8, 0},
                                             {8, 4, 1},
                                             {10, 4, 0},
                                             {11, 2, 0},
                                             {17, 1, 0},
                                             {18, 2, 0},
                                             {19, 4, 0},
                                             {20, 8, 0},
                                             {21, 8, 0},
                                             {30, 4, 1},
                                             {31, 4, 2},
                                             {64, 8, 0},
                                             {72, 16, 0}}};

/// The bytes of a stream, and where each lies in the file.
class StreamBytes {
 public:
  StreamBytes(std::FILE* file, const std::vector<Extent>& extents) : extents_(extents) {
    for (const Extent& extent : extents_) {
      starts_.push_back(bytes_.size());
      bytes_.resize(bytes_.size() + extent.length);
      KELReadBytes(file, static_cast<std::int64_t>(extent.offset),
                   static_cast<std::int64_t>(extent.length), &bytes_[starts_.back()]);
    }
  }

  [[nodiscard]] std::uint64_t Size() const { return bytes_.size(); }

  /// Whether `count` bytes are there from `offset` on.
  [[nodiscard]] bool Has(std::uint64_t offset, std::uint64_t count) const {
    return offset <= Size() && count <= Size() - offset;
  }

  /// The little-endian number at `offset`; zero where it does not fit.
  template <typename T>
  [[nodiscard]] T At(std::uint64_t offset) const {
    T value{};
    if (Has(offset, sizeof(value))) KELMakeValue(&bytes_[offset], &value, sizeof(value), true);
    return value;
  }

  [[nodiscard]] std::uint64_t OffsetInFile(std::uint64_t offset) const {
    if (starts_.empty()) return 0;
    const auto next = std::upper_bound(starts_.begin() + 1, starts_.end(), offset);
    const auto index = static_cast<std::size_t>(next - starts_.begin()) - 1;
    return extents_[index].offset + (offset - starts_[index]);
  }

 private:
  const std::vector<Extent>& extents_;
  std::vector<std::uint64_t> starts_;
  std::vector<unsigned char> bytes_;
};

class PropertySetChecks {
 public:
  PropertySetChecks(const StreamBytes& bytes, std::uint32_t index, FindingList& findings)
      : bytes_(bytes), index_(index), findings_(findings) {}

  void Run() {
    if (bytes_.At<std::uint16_t>(0) != kByteOrderMark || bytes_.At<std::uint16_t>(2) != 0) {
      return Add(FindingCode::kPropertySetRejected, 0, [] {
        return "named as a property set, but does not begin with byte-order mark and version 0";
      });
    }
    const auto stated = bytes_.At<std::uint32_t>(kSectionCountOffset);
    const std::uint64_t count = stated == 2 ? 2 : 1;
    const std::uint64_t end = kSectionListOffset + count * kListedSectionBytes;
    if (!bytes_.Has(0, end)) return AddCut(bytes_.Size(), "its header");
    if (stated != count) {
      Add(FindingCode::kPropertySectionCount, kSectionCountOffset,
          [&] { return "it states " + WithUnit(stated, "section") + "; one is read"; });
    }
    const std::uint64_t first = SectionOffset(0);
    if (first != end) {
      Add(FindingCode::kPropertySectionMoved, kSectionListOffset + kFormatIdBytes, [&] {
        return "its first section is at byte " + Grouped(first) + ", and is read at byte " +
               Grouped(end);
      });
    }
    for (std::uint64_t section = 0; section < count; ++section)
      CheckSection(SectionOffset(section));
  }

 private:
  template <typename Text>
  void Add(FindingCode code, std::uint64_t offset, Text text) {
    findings_.Add(code, [&] {
      return Finding{{.first = bytes_.OffsetInFile(offset), .entry = index_}, text()};
    });
  }

  void AddCut(std::uint64_t offset, const std::string& what) {
    Add(FindingCode::kPropertySetCut, offset, [&] {
      return "the stream of " + WithUnit(bytes_.Size(), "byte") + " ends before " + what + " does";
    });
  }

  [[nodiscard]] std::uint64_t SectionOffset(std::uint64_t section) const {
    return bytes_.At<std::uint32_t>(kSectionListOffset + section * kListedSectionBytes +
                                    kFormatIdBytes);
  }

  void CheckSection(std::uint64_t section) {
    if (!bytes_.Has(section, kSectionHeaderBytes)) return AddCut(bytes_.Size(), "a section");
    const auto size = bytes_.At<std::uint32_t>(section);
    const auto count = bytes_.At<std::uint32_t>(section + sizeof(size));
    const std::uint64_t table = section + kSectionHeaderBytes;
    const std::uint64_t most = (bytes_.Size() - table) / kTableEntryBytes;
    if (count > most) {
      AddCut(table, "a table of " + Grouped(count) + " properties");
    } else if (!bytes_.Has(section, size)) {
      AddCut(section, "a section of " + WithUnit(size, "byte"));
    }
    const std::uint64_t end = table + std::min<std::uint64_t>(count, most) * kTableEntryBytes;
    codePage_ = CodePageOf(section, table, end);
    bool hasDictionary = false;  // one is checked: the same bytes may be many
    for (std::uint64_t entry = table; entry < end; entry += kTableEntryBytes) {
      const auto id = bytes_.At<std::uint32_t>(entry);
      const std::uint64_t value = section + bytes_.At<std::uint32_t>(entry + sizeof(id));
      if (id != kDictionaryId) {
        CheckValue(entry, id, value);
      } else if (!hasDictionary) {
        hasDictionary = true;
        if (!HoldsDictionary(value)) AddOutside(entry, "the dictionary");
      }
    }
  }

  /// A section that states none has that of the section before.
  [[nodiscard]] std::uint16_t CodePageOf(std::uint64_t section, std::uint64_t table,
                                         std::uint64_t end) const {
    for (std::uint64_t entry = table; entry < end; entry += kTableEntryBytes) {
      if (bytes_.At<std::uint32_t>(entry) != kCodePageId) continue;
      const std::uint64_t value = section + bytes_.At<std::uint32_t>(entry + sizeof(kCodePageId));
      return bytes_.At<std::uint16_t>(value + sizeof(kTwoByteInteger));
    }
    return codePage_;
  }

  void CheckValue(std::uint64_t entry, std::uint32_t id, std::uint64_t value) {
    const auto type = bytes_.At<std::uint32_t>(value);
    const std::uint64_t data = value + sizeof(type);
    const auto* const length = std::ranges::find(kTypes, type, &TypeLength::type);
    const bool isKnown = length != kTypes.end();
    std::uint64_t needed = isKnown ? length->bytes : 0;
    if (isKnown && length->aUnit > 0) {
      needed += std::uint64_t{bytes_.At<std::uint32_t>(data)} * length->aUnit;
    }
    if (!bytes_.Has(value, sizeof(type)) || !bytes_.Has(data, needed)) {
      AddOutside(entry, "property " + std::to_string(id));
    } else if (!isKnown) {
      Add(FindingCode::kPropertyTypeUnknown, value, [&] {
        return "property " + std::to_string(id) + " is of type " + std::to_string(type) +
               ", which is not decoded";
      });
    }
  }

  void AddOutside(std::uint64_t entry, const std::string& what) {
    Add(FindingCode::kPropertyValueOutside, entry,
        [&] { return what + " does not lie within the stream"; });
  }

  /// Whether all names that the dictionary counts lie within the stream.
  [[nodiscard]] bool HoldsDictionary(std::uint64_t offset) const {
    const bool isWide = codePage_ == kUtf16CodePage || codePage_ == 0;
    if (!bytes_.Has(offset, sizeof(std::uint32_t))) return false;
    auto left = bytes_.At<std::uint32_t>(offset);
    for (offset += sizeof(left); left > 0; --left) {
      constexpr std::uint64_t kCountOffset = sizeof(std::uint32_t);
      const std::uint64_t name = offset + kCountOffset + sizeof(std::uint32_t);
      const std::uint64_t units = bytes_.At<std::uint32_t>(offset + kCountOffset);
      const std::uint64_t length = isWide ? units * sizeof(char16_t) : units;
      if (!bytes_.Has(offset, name - offset) || !bytes_.Has(name, length)) return false;
      const bool isPadded = isWide && units % 2 != 0;
      offset = name + length + (isPadded ? sizeof(char16_t) : 0);
    }
    return true;
  }

  const StreamBytes& bytes_;
  std::uint32_t index_;
  FindingList& findings_;
  std::uint16_t codePage_ = 0;
};

bool IsPropertySet(const Subject& subject, std::uint32_t index) {
  const FullDirectory& directory = subject.tables.Directory();
  return directory.At(index).isStream() &&
         directory.FullAt(index).name.starts_with(kPropertyStreamMark);
}

}  // namespace

void CheckPropertySets(const Subject& subject, FindingList& findings) {
  for (std::uint32_t index = 0; index < subject.tables.Directory().Count(); ++index) {
    if (!IsPropertySet(subject, index)) continue;
    const std::vector<Extent> extents = subject.map.ExtentsOf(index);
    if (extents.empty() && subject.map.SizeOf(index) > 0) continue;  // its chain is to blame
    std::uint64_t size = 0;
    for (const Extent& extent : extents) size += extent.length;
    if (size > kMostBytes) {
      findings.Add(FindingCode::kPropertySetTooLarge, [&] {
        return Finding{{.first = extents.front().offset, .entry = index},
                       "a property set of " + SizeText(size) + " is not looked into"};
      });
      continue;
    }
    PropertySetChecks(StreamBytes(subject.file, extents), index, findings).Run();
  }
}

}  // namespace kelst
