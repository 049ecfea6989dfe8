#pragma once

#include <array>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/DiskFormat.h"

/// Property-set streams as the tests write them, apart from the library on purpose.
namespace kelx::test {

Bytes Little(std::uint64_t value, std::size_t width);
Bytes Join(std::initializer_list<Bytes> parts);
/// The units of a text, without a NUL of its own.
Bytes Units(std::u16string_view text);

/// Values of properties: a type word and what follows it.
Bytes Value(std::uint32_t type, const Bytes& data);
Bytes Value(std::uint32_t type, std::uint64_t number, std::size_t width);
/// VT_LPSTR and VT_LPWSTR with the NUL counted and the padding written.
Bytes Lpstr(std::string_view text);
Bytes Lpwstr(std::u16string_view text);
Bytes CodePage(std::uint16_t codePage);

/// Dictionaries, of 8-bit names without and of UTF-16 names with padding.
Bytes Dictionary(const std::vector<std::pair<std::uint32_t, std::string>>& names);
Bytes Dictionary(const std::vector<std::pair<std::uint32_t, std::u16string>>& names);

using Guid = std::array<unsigned char, 16>;

/// GUIDs as they are stored, and the texts that they stand for.
inline constexpr Guid kSummaryId = {0xE0, 0x85, 0x9F, 0xF2, 0xF9, 0x4F, 0x68, 0x10,
                                    0xAB, 0x91, 0x08, 0x00, 0x2B, 0x27, 0xB3, 0xD9};
inline constexpr char kSummaryText[] = "{F29F85E0-4FF9-1068-AB91-08002B27B3D9}";
inline constexpr Guid kUserDefinedId = {0x05, 0xD5, 0xCD, 0xD5, 0x9C, 0x2E, 0x1B, 0x10,
                                        0x93, 0x97, 0x08, 0x00, 0x2B, 0x2C, 0xF9, 0xAE};
inline constexpr char kUserDefinedText[] = "{D5CDD505-2E9C-101B-9397-08002B2CF9AE}";

struct PropertySetHeader {
  std::uint16_t byteOrder = 0xFFFE;
  std::uint16_t formatVersion = 0;
  std::uint16_t osVersion = 5;
  std::uint16_t osKind = 2;
  Guid classId{};
  std::optional<std::uint32_t> sectionCount{};  ///< instead of the true one
};

/// Makes property-set streams, well-formed unless told otherwise.
///
///     const Bytes stream = PropertySetBuilder().Add(1, CodePage(1252)).Add(2, Lpstr("x")).Build();
class PropertySetBuilder {
 public:
  /// Begins with one section.
  explicit PropertySetBuilder(PropertySetHeader header = {}, const Guid& id = kSummaryId);

  /// Begins a further section, `gap` bytes after the one before.
  PropertySetBuilder& Section(const Guid& id, std::size_t gap = 0);

  /// Adds a property to the last section, its value after those before.
  PropertySetBuilder& Add(std::uint32_t id, Bytes value);
  /// Adds a table entry that points where the section's `index`th entry does, `shift` bytes on.
  PropertySetBuilder& AddShared(std::uint32_t id, std::size_t index, std::uint32_t shift = 0);
  /// Adds a table entry that points to a place that is counted from the section.
  PropertySetBuilder& AddAt(std::uint32_t id, std::uint32_t offset);

  Bytes Build() const;

 private:
  struct Entry {
    std::uint32_t id;
    Bytes value;
    std::optional<std::size_t> shared;
    std::uint32_t shift;
  };
  struct SectionContent {
    Guid id;
    std::size_t gap;
    std::vector<Entry> entries;
  };

  static Bytes Encode(const SectionContent& section);

  PropertySetHeader header_;
  std::vector<SectionContent> sections_;
};

}  // namespace kelx::test
