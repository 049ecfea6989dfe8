#include "property/KELIPropertyStorage.h"

#include <algorithm>
#include <bit>
#include <limits>

#include "property/PropertyStreamParser.h"

namespace {

/// Texts of a stream whose strings do not overlap have at most 4 bytes for each of its bytes.
constexpr std::uint64_t kTextBytesAByte = 16;

/// For the readers that are called by themselves: their caller sees to what they cost.
constexpr std::uint64_t kNoLimit = std::numeric_limits<std::uint64_t>::max();

constexpr int kNames = 12;
constexpr std::size_t kGuidBytes = 16;

}  // namespace

KELIPropertyStorage::KELIPropertyStorage() : KELXReferenceCount(0), dictionary_(kNames, true) {}

KELIPropertyStorage::~KELIPropertyStorage() = default;

bool KELIPropertyStorage::InitializeFromBuffer(const unsigned char* bytes, int length) {
  std::uint64_t textAllowance = kTextAllowance;
  const auto size = static_cast<unsigned int>(length);
  return Initialize(bytes, size, size, textAllowance);
}

/// Parses a stream of `length` bytes of which `held` are at `bytes`. What its texts take beyond
/// their share by the length comes from `textAllowance`. `decoders` may be shared with other
/// streams.
bool KELIPropertyStorage::Initialize(const unsigned char* bytes, unsigned int held,
                                     unsigned int length, std::uint64_t& textAllowance,
                                     kelx::internal::CodePageDecoders* decoders) {
  streamBuffer_ = bytes;
  streamLength_ = length;
  heldLength_ = held;
  byteOrder_ = 0;
  if (bytes == nullptr) return false;
  Parser parser(*this, textAllowance + kTextBytesAByte * held, decoders);
  auto* cursor = const_cast<unsigned char*>(bytes);
  if (!parser.ReadHeader(cursor)) return false;
  parser.ReadSection(cursor, first_, properties_);
  if (sectionCount_ == 2) parser.ReadSecondSection();
  MergeDisplayNames();
  textAllowance = std::min(textAllowance, parser.TextBudget());
  return true;
}

void KELIPropertyStorage::ReadExtendedSection() {
  second_.size = 0;
  second_.propertyCount = 0;
  second_.start = nullptr;
  if (streamBuffer_ == nullptr) return;
  Parser(*this, kTextAllowance + kTextBytesAByte * heldLength_).ReadSecondSection();
}

KELXProperty* KELIPropertyStorage::ReadPropertyFromSection(unsigned char*& cursor,
                                                           const unsigned char* sectionStart) {
  return Parser(*this, kNoLimit).ReadPropertyFromSection(cursor, sectionStart);
}

void KELIPropertyStorage::AddOrUpdateProperty(KELXProperty* property,
                                              KELXDynamicArray<KELXPropertyHandle>& array) {
  if (property == nullptr) return;
  const KELXPropertyHandle added(property);
  for (int i = 0; i < array.Count(); ++i) {
    const KELXPropertyHandle& present = array.begin()[i];
    if (!present.IsValid() || present->GetID() != property->GetID()) continue;
    *array.At(i) = added;
    return;
  }
  array.Add(added);
}

unsigned char KELIPropertyStorage::ReadByte(unsigned char*& cursor) {
  return Parser(*this, kNoLimit).Bytes().Read<std::uint8_t>(cursor);
}

unsigned short KELIPropertyStorage::ReadUnsignedShort(unsigned char*& cursor) {
  return Parser(*this, kNoLimit).Bytes().Read<std::uint16_t>(cursor);
}

unsigned int KELIPropertyStorage::ReadUnsignedInt(unsigned char*& cursor) {
  return Parser(*this, kNoLimit).Bytes().Read<std::uint32_t>(cursor);
}

unsigned long long KELIPropertyStorage::ReadUnsignedInt64(unsigned char*& cursor) {
  return Parser(*this, kNoLimit).Bytes().Read<std::uint64_t>(cursor);
}

float KELIPropertyStorage::ReadFloat(unsigned char*& cursor) {
  return std::bit_cast<float>(ReadUnsignedInt(cursor));
}

double KELIPropertyStorage::ReadDouble(unsigned char*& cursor) {
  return std::bit_cast<double>(std::uint64_t{ReadUnsignedInt64(cursor)});
}

void KELIPropertyStorage::ReadCLSID(unsigned char*& cursor, unsigned char* out) {
  Parser(*this, kNoLimit).Bytes().ReadGuid(cursor, out);
}

KELXString KELIPropertyStorage::ReadUTF16String(unsigned char*& cursor, bool pad,
                                                bool countBefore) {
  return Parser(*this, kNoLimit).ReadUTF16String(cursor, pad, countBefore);
}

KELXString KELIPropertyStorage::ReadMBCSString(unsigned char*& cursor, bool pad) {
  return Parser(*this, kNoLimit).ReadMBCSString(cursor, pad);
}

void KELIPropertyStorage::GetClassID(unsigned char* out) const {
  std::copy_n(classId_, kGuidBytes, out);
}

void KELIPropertyStorage::GetSectionID(int section, unsigned char* out) const {
  std::copy_n(section == 1 ? second_.id : first_.id, kGuidBytes, out);
}
