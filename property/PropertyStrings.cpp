#include "property/PropertyStreamParser.h"

using kelx::internal::PropertyBytes;

namespace {

/// A dictionary in this code page, or in none, has names in UTF-16.
constexpr unsigned short kUnicodeCodePage = 1200;

constexpr std::uint64_t kUnitBytes = 2;
constexpr std::uint64_t kCountBytes = 4;
constexpr std::uint64_t kAlignment = 4;

}  // namespace

std::span<const unsigned char> KELIPropertyStorage::Parser::TakeUnits(unsigned char*& cursor,
                                                                      bool pad, bool countBefore) {
  std::uint64_t units = 0;
  if (countBefore) {
    unsigned char* before = cursor == nullptr ? nullptr : PropertyBytes::Move(cursor, -kCountBytes);
    units = bytes_.Read<std::uint32_t>(before) / kUnitBytes + 1;
  } else {
    units = bytes_.Read<std::uint32_t>(cursor);
  }
  if (units == 0 || !bytes_.Fits(cursor, units * kUnitBytes)) return {};
  const auto held = bytes_.Take(cursor, units * kUnitBytes);
  if (pad && units % 2 != 0) bytes_.Read<std::uint16_t>(cursor);
  return held;
}

std::span<const unsigned char> KELIPropertyStorage::Parser::TakeCounted(unsigned char*& cursor,
                                                                        bool pad) {
  std::uint64_t count = bytes_.Read<std::uint32_t>(cursor);
  if (count == 0 || !bytes_.Fits(cursor, count)) return {};
  const auto held = bytes_.Take(cursor, count);
  for (; pad && count % kAlignment != 0; ++count) bytes_.Read<std::uint8_t>(cursor);
  return held;
}

KELXString KELIPropertyStorage::Parser::ReadUTF16String(unsigned char*& cursor, bool pad,
                                                        bool countBefore) {
  return texts_.DecodeUtf16(TakeUnits(cursor, pad, countBefore));
}

KELXString KELIPropertyStorage::Parser::ReadMBCSString(unsigned char*& cursor, bool pad) {
  return texts_.DecodeCodePage(TakeCounted(cursor, pad), set_.codePage_);
}

KELXString KELIPropertyStorage::Parser::ReadBstr(unsigned char* cursor) {
  bytes_.Read<std::uint32_t>(cursor);
  return ReadUTF16String(cursor, true, true);
}

/// Reads one entry of a dictionary. One that was read before has its identifier named already, so
/// its name does not count.
void KELIPropertyStorage::Parser::ReadEntry(unsigned char*& cursor) {
  const bool isNew = IsFirstVisit(cursor, names_);
  const auto id = bytes_.Read<std::uint32_t>(cursor);
  const bool isWide = set_.codePage_ == 0 || set_.codePage_ == kUnicodeCodePage;
  const auto name = isWide ? TakeUnits(cursor, true, false) : TakeCounted(cursor, false);
  if (!isNew) return;
  set_.AddName(id, isWide ? texts_.DecodeUtf16(name) : texts_.DecodeCodePage(name, set_.codePage_));
}
