#include "property/PropertyStreamParser.h"

#include <algorithm>

using kelx::internal::PropertyBytes;

namespace {

constexpr unsigned short kByteOrderMark = 0xFFFE;
constexpr unsigned short kFormatVersion = 0;
constexpr unsigned int kTwoSections = 2;

constexpr unsigned int kDictionaryId = 0;
constexpr unsigned int kNameId = 255;

constexpr unsigned int kIdentifierBytes = 4;

/// A property takes some 15 times the 8 bytes that it has in the table when many share one value.
/// With values of their own so many properties need a section of 16 MiB.
constexpr unsigned int kMostProperties = 1U << 20;

/// The same dictionaries can be read from thousands of places, each a little further on. With names
/// of their own so many entries need 3 MiB.
constexpr unsigned int kMostDictionaryEntries = 1U << 18;

/// Places beyond are not marked: what stands there is read each time that it is named, within the
/// limits of the texts. The marks of more would take longer than what they save.
constexpr unsigned int kMostMarkedBytes = 64U << 20;

using Properties = KELXDynamicArray<KELXPropertyHandle>;

/// Lets the properties from the position `firstNew` on replace those with the same identifier, as
/// if AddOrUpdateProperty had added one after the other: the last one stands in the place of the
/// first.
void ReplaceEqualIdentifiers(Properties& properties, int firstNew) {
  std::vector<std::pair<unsigned int, int>> order;  // identifier and position
  order.reserve(static_cast<std::size_t>(properties.Count()));
  for (int i = 0; i < properties.Count(); ++i) {
    const KELXPropertyHandle& property = properties.begin()[i];
    if (property.IsValid()) order.emplace_back(static_cast<unsigned int>(property->GetID()), i);
  }
  std::ranges::sort(order);
  std::vector<bool> isReplaced(static_cast<std::size_t>(properties.Count()));
  bool isAnyReplaced = false;
  std::size_t first = 0;
  for (std::size_t i = 1; i < order.size(); ++i) {
    const auto [id, position] = order[i];
    if (id != order[first].first) first = i;
    if (first == i || position < firstNew) continue;
    *properties.At(order[first].second) = properties.begin()[position];
    isReplaced[static_cast<std::size_t>(position)] = isAnyReplaced = true;
  }
  if (!isAnyReplaced) return;
  Properties kept;
  for (int i = 0; i < properties.Count(); ++i) {
    if (!isReplaced[static_cast<std::size_t>(i)]) kept.Add(properties.begin()[i]);
  }
  properties = kept;
}

}  // namespace

KELIPropertyStorage::Parser::Parser(KELIPropertyStorage& set, std::uint64_t textBudget,
                                    kelx::internal::CodePageDecoders* decoders)
    : set_(set),
      bytes_(set.streamBuffer_, set.heldLength_, set.streamLength_),
      texts_(textBudget, decoders),
      dictionaryEntriesLeft_(kMostDictionaryEntries) {}

bool KELIPropertyStorage::Parser::ReadHeader(unsigned char*& cursor) {
  set_.byteOrder_ = bytes_.Read<std::uint16_t>(cursor);  // 0
  if (set_.byteOrder_ != kByteOrderMark) return false;
  set_.formatVersion_ = bytes_.Read<std::uint16_t>(cursor);  // 2
  if (set_.formatVersion_ != kFormatVersion) return false;
  set_.osVersion_ = bytes_.Read<std::uint16_t>(cursor);     // 4
  set_.osKind_ = bytes_.Read<std::uint16_t>(cursor);        // 6
  bytes_.ReadGuid(cursor, set_.classId_);                   // 8
  set_.sectionCount_ = bytes_.Read<std::uint32_t>(cursor);  // 24
  bytes_.ReadGuid(cursor, set_.first_.id);                  // 28
  set_.first_.offset = bytes_.Read<std::uint32_t>(cursor);  // 44
  if (set_.sectionCount_ != kTwoSections) return true;
  bytes_.ReadGuid(cursor, set_.second_.id);                  // 48
  set_.second_.offset = bytes_.Read<std::uint32_t>(cursor);  // 64
  return true;
}

void KELIPropertyStorage::Parser::ReadSection(const unsigned char* start, Section& section,
                                              Properties& properties) {
  unsigned char* cursor = PropertyBytes::Move(start, 0);
  section.start = start;
  section.size = bytes_.Read<std::uint32_t>(cursor);           // 0
  section.propertyCount = bytes_.Read<std::uint32_t>(cursor);  // 4
  ReadTable(cursor, section, properties);
}

void KELIPropertyStorage::Parser::ReadSecondSection() {
  const unsigned char* start = PropertyBytes::Move(set_.streamBuffer_, set_.second_.offset);
  ReadSection(start, set_.second_, set_.extendedProperties_);
}

void KELIPropertyStorage::Parser::ReadTable(unsigned char* cursor, const Section& section,
                                            Properties& properties) {
  values_.resize(std::min(bytes_.HeldCount(), kMostMarkedBytes));
  names_.resize(values_.size());
  const int firstNew = properties.Count();
  const unsigned int count = std::min(section.propertyCount, kMostProperties);
  for (unsigned int i = 0; i < count && bytes_.Fits(cursor, kIdentifierBytes); ++i) {
    const bool isLastDistinct = !IsHeld(cursor);  // from here on all entries are zeros
    const KELXPropertyHandle property(ReadPropertyFromSection(cursor, section.start));
    if (property.IsValid()) properties.Add(property);
    if (isLastDistinct) break;
  }
  ReplaceEqualIdentifiers(properties, firstNew);
}

KELXProperty* KELIPropertyStorage::Parser::ReadPropertyFromSection(
    unsigned char*& cursor, const unsigned char* sectionStart) {
  const auto id = bytes_.Read<std::uint32_t>(cursor);
  const auto offset = bytes_.Read<std::uint32_t>(cursor);
  unsigned char* const at = PropertyBytes::Move(sectionStart, offset);
  if (id == kDictionaryId) {
    ReadDictionary(at);
    return nullptr;
  }
  std::optional<Value> value = ReadSharedValue(at);
  if (!value) return nullptr;
  ReadSettings(id, at);
  if (id == kNameId) set_.storageName_ = value->text;
  KELXString noName;
  auto* const property = new KELXProperty(noName, value->kind, value->text);
  property->SetID(id);
  return property;
}

void KELIPropertyStorage::Parser::ReadDictionary(unsigned char* cursor) {
  if (!dictionaries_.emplace(cursor, set_.codePage_).second) return;
  const auto count = bytes_.Read<std::uint32_t>(cursor);
  for (unsigned int i = 0; i < count && bytes_.Fits(cursor, kIdentifierBytes); ++i) {
    if (dictionaryEntriesLeft_ == 0) return;
    --dictionaryEntriesLeft_;
    const bool isLastDistinct = !IsHeld(cursor);
    ReadEntry(cursor);
    if (isLastDistinct) return;
  }
}

/// The value at `cursor`. One that was read before shares its text with the first repetition.
std::optional<KELIPropertyStorage::Parser::Value> KELIPropertyStorage::Parser::ReadSharedValue(
    unsigned char* cursor) {
  if (IsFirstVisit(cursor, values_)) return ReadValue(cursor);
  const auto [value, isNew] = sharedValues_.try_emplace({cursor, set_.codePage_});
  if (isNew) value->second = ReadValue(cursor);
  return value->second;
}

/// Marks the place as visited. Places that have no mark are always new.
bool KELIPropertyStorage::Parser::IsFirstVisit(const unsigned char* cursor, Places& visited) {
  const std::uint64_t place = bytes_.Place(cursor);
  if (place >= visited.size()) return true;
  const bool isFirst = !visited[place];
  visited[place] = true;
  return isFirst;
}

bool KELIPropertyStorage::Parser::IsHeld(const unsigned char* cursor) const {
  return !bytes_.Held(cursor, 1).empty();
}
