#include "tests/support/PropertySetBuilder.h"

namespace kelx::test {
namespace {

constexpr std::uint32_t kShort = 2;
constexpr std::uint32_t kString8 = 30;
constexpr std::uint32_t kString16 = 31;
constexpr std::size_t kTableEntry = 8;

void Append(Bytes& bytes, const Bytes& more) {
  bytes.insert(bytes.end(), more.begin(), more.end());
}

void PadTo4(Bytes& bytes) { bytes.resize((bytes.size() + 3) / 4 * 4); }

Bytes Counted8(std::string_view text) {
  return Join({Little(text.size() + 1, 4), Bytes(text.begin(), text.end()), Bytes(1)});
}

Bytes Counted16(std::u16string_view text) {
  Bytes bytes = Join({Little(text.size() + 1, 4), Units(text), Little(0, 2)});
  PadTo4(bytes);
  return bytes;
}

}  // namespace

Bytes Little(std::uint64_t value, std::size_t width) {
  Bytes bytes(width);
  Store(bytes.data(), value, width, ByteOrder::kLittle);
  return bytes;
}

Bytes Join(std::initializer_list<Bytes> parts) {
  Bytes joined;
  for (const Bytes& part : parts) Append(joined, part);
  return joined;
}

Bytes Units(std::u16string_view text) {
  Bytes bytes;
  for (const char16_t unit : text) Append(bytes, Little(unit, 2));
  return bytes;
}

Bytes Value(std::uint32_t type, const Bytes& data) { return Join({Little(type, 4), data}); }

Bytes Value(std::uint32_t type, std::uint64_t number, std::size_t width) {
  return Value(type, Little(number, width));
}

Bytes Lpstr(std::string_view text) {
  Bytes bytes = Value(kString8, Counted8(text));
  PadTo4(bytes);
  return bytes;
}

Bytes Lpwstr(std::u16string_view text) { return Value(kString16, Counted16(text)); }

Bytes CodePage(std::uint16_t codePage) { return Value(kShort, codePage, 4); }

Bytes Dictionary(const std::vector<std::pair<std::uint32_t, std::string>>& names) {
  Bytes bytes = Little(names.size(), 4);
  for (const auto& [id, name] : names) Append(bytes, Join({Little(id, 4), Counted8(name)}));
  return bytes;
}

Bytes Dictionary(const std::vector<std::pair<std::uint32_t, std::u16string>>& names) {
  Bytes bytes = Little(names.size(), 4);
  for (const auto& [id, name] : names) Append(bytes, Join({Little(id, 4), Counted16(name)}));
  return bytes;
}

PropertySetBuilder::PropertySetBuilder(PropertySetHeader header, const Guid& id)
    : header_(header), sections_{{id, 0, {}}} {}

PropertySetBuilder& PropertySetBuilder::Section(const Guid& id, std::size_t gap) {
  sections_.push_back({id, gap, {}});
  return *this;
}

PropertySetBuilder& PropertySetBuilder::Add(std::uint32_t id, Bytes value) {
  sections_.back().entries.push_back({id, std::move(value), {}, 0});
  return *this;
}

PropertySetBuilder& PropertySetBuilder::AddShared(std::uint32_t id, std::size_t index,
                                                  std::uint32_t shift) {
  sections_.back().entries.push_back({id, {}, index, shift});
  return *this;
}

PropertySetBuilder& PropertySetBuilder::AddAt(std::uint32_t id, std::uint32_t offset) {
  sections_.back().entries.push_back({id, {}, {}, offset});
  return *this;
}

Bytes PropertySetBuilder::Encode(const SectionContent& section) {
  Bytes table;
  Bytes values;
  std::vector<std::size_t> offsets;
  for (const Entry& entry : section.entries) {
    std::size_t offset = entry.shift;
    if (entry.shared) offset += offsets[*entry.shared];
    if (!entry.value.empty()) offset = kTableEntry * (1 + section.entries.size()) + values.size();
    offsets.push_back(offset);
    Append(table, Join({Little(entry.id, 4), Little(offset, 4)}));
    Append(values, entry.value);
  }
  const std::size_t size = kTableEntry + table.size() + values.size();
  return Join({Little(size, 4), Little(section.entries.size(), 4), table, values});
}

Bytes PropertySetBuilder::Build() const {
  Bytes stream = Join({Little(header_.byteOrder, 2), Little(header_.formatVersion, 2),
                       Little(header_.osVersion, 2), Little(header_.osKind, 2),
                       Bytes(header_.classId.begin(), header_.classId.end()),
                       Little(header_.sectionCount.value_or(sections_.size()), 4)});
  const std::size_t headerSize = stream.size() + 20 * sections_.size();
  Bytes content;
  for (const SectionContent& section : sections_) {
    content.resize(content.size() + section.gap, 0xEE);
    Append(stream, Join({Bytes(section.id.begin(), section.id.end()),
                         Little(headerSize + content.size(), 4)}));
    Append(content, Encode(section));
  }
  return Join({stream, content});
}

}  // namespace kelx::test
