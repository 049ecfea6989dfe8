#include <gtest/gtest.h>

#include <bit>
#include <cstddef>

#include "property/KELIPropertyStorageHandle.h"
#include "tests/support/PropertySetBuilder.h"

namespace kelx::test {
namespace {

/// The readers of a set over `bytes`, from the byte `start` on.
class Readers {
 public:
  explicit Readers(Bytes bytes, std::size_t start = 0)
      : bytes_(std::move(bytes)), cursor(bytes_.data() + start) {
    set->InitializeFromBuffer(bytes_.data(), static_cast<int>(bytes_.size()));
  }
  std::ptrdiff_t Place() const { return cursor - bytes_.data(); }

 private:
  Bytes bytes_;

 public:
  unsigned char* cursor;
  KELIPropertyStorageHandle set{new KELIPropertyStorage};
};

TEST(Reader, ReadsLittleEndianValues) {
  Readers in(Join({Little(0xFE, 1), Little(0x1234, 2), Little(0x89ABCDEF, 4),
                   Little(0x0123456789ABCDEF, 8), Little(std::bit_cast<std::uint32_t>(-2.5F), 4),
                   Little(std::bit_cast<std::uint64_t>(1e300), 8)}));
  EXPECT_EQ(in.set->ReadByte(in.cursor), 0xFE);
  EXPECT_EQ(in.set->ReadUnsignedShort(in.cursor), 0x1234);
  EXPECT_EQ(in.set->ReadUnsignedInt(in.cursor), 0x89ABCDEF);
  EXPECT_EQ(in.set->ReadUnsignedInt64(in.cursor), 0x0123456789ABCDEFULL);
  EXPECT_EQ(in.set->ReadFloat(in.cursor), -2.5F);
  EXPECT_EQ(in.set->ReadDouble(in.cursor), 1e300);
  EXPECT_EQ(in.Place(), 27);
}

TEST(Reader, WhatDoesNotFitIsZeroAndTheCursorStays) {
  Readers in(Bytes(15, 0xFF), 15 - 7);
  EXPECT_EQ(in.set->ReadUnsignedInt64(in.cursor), 0U);
  EXPECT_EQ(in.set->ReadDouble(in.cursor), 0.0);
  EXPECT_EQ(in.Place(), 8);
  EXPECT_EQ(in.set->ReadUnsignedInt(in.cursor), 0xFFFFFFFF);
  EXPECT_EQ(in.set->ReadFloat(in.cursor), 0.0F);
  EXPECT_EQ(in.set->ReadUnsignedInt(in.cursor), 0U);
  EXPECT_EQ(in.set->ReadUnsignedShort(in.cursor), 0xFFFF);
  EXPECT_EQ(in.set->ReadUnsignedShort(in.cursor), 0U);
  EXPECT_EQ(in.set->ReadByte(in.cursor), 0xFF);
  EXPECT_EQ(in.set->ReadByte(in.cursor), 0U);
  EXPECT_EQ(in.Place(), 15);
  Bytes guid(16, 0xEE);
  in.set->ReadCLSID(in.cursor, guid.data());
  EXPECT_EQ(guid, Bytes(16));
}

TEST(Reader, NothingIsReadOutsideTheBytesOrAtNull) {
  Bytes around(64, 0x11);
  const KELIPropertyStorageHandle set(new KELIPropertyStorage);
  set->InitializeFromBuffer(around.data() + 16, 32);
  for (const std::size_t start : {std::size_t{0}, std::size_t{15}, std::size_t{48}}) {
    unsigned char* cursor = around.data() + start;
    EXPECT_EQ(set->ReadByte(cursor), 0U) << start;
    EXPECT_EQ(set->ReadUTF16String(cursor, true, true).toUtf8(), "") << start;
    EXPECT_EQ(cursor, around.data() + start);
  }
  unsigned char* null = nullptr;
  EXPECT_EQ(set->ReadUnsignedInt64(null), 0U);
  EXPECT_EQ(set->ReadUTF16String(null, true, true).toUtf8(), "");
  EXPECT_EQ(set->ReadMBCSString(null, true).toUtf8(), "");
  EXPECT_EQ(null, nullptr);
}

TEST(Reader, WithoutBytesNothingBoundsIt) {
  const KELIPropertyStorageHandle set(new KELIPropertyStorage);
  EXPECT_FALSE(set->InitializeFromBuffer(nullptr, 4));
  Bytes bytes = Join({Little(7, 4), Little(2, 4), Units(u"ab"), Little(2, 4), {'c', 'd'}});
  unsigned char* cursor = bytes.data();
  EXPECT_EQ(set->ReadUnsignedInt(cursor), 7U);
  EXPECT_EQ(set->ReadUTF16String(cursor, true, false).toUtf8(), "ab");
  EXPECT_EQ(set->ReadMBCSString(cursor, false).toUtf8(), "cd");
  EXPECT_EQ(cursor, bytes.data() + bytes.size());
  set->ReadExtendedSection();
  unsigned char* null = nullptr;
  EXPECT_EQ(set->ReadUTF16String(null, true, true).toUtf8(), "");
}

TEST(Reader, GuidsComeInDisplayOrder) {
  Readers in({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15});
  Bytes guid(16);
  in.set->ReadCLSID(in.cursor, guid.data());
  EXPECT_EQ(guid, (Bytes{3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15}));
  EXPECT_EQ(in.Place(), 16);
}

TEST(Reader, Utf16Strings) {
  struct Case {
    const char* what;
    Bytes bytes;
    std::ptrdiff_t start;
    bool pad;
    bool countBefore;
    const char* text;
    std::ptrdiff_t place;
  };
  const Bytes even = Join({Little(2, 4), Units(u"abcd")});
  const Bytes odd = Join({Little(3, 4), Units(u"abcd")});
  const std::vector<Case> cases = {
      {"even", even, 0, true, false, "ab", 8},
      {"odd", odd, 0, true, false, "abc", 12},
      {"odd, not padded", odd, 0, false, false, "abc", 10},
      {"odd, the padding cut", Join({Little(3, 4), Units(u"abc"), {9}}), 0, true, false, "abc", 10},
      {"none", Join({Little(0, 4), Units(u"ab")}), 0, true, false, "", 4},
      {"cut", Join({Little(3, 4), Units(u"ab")}), 0, true, false, "", 4},
      {"count cut", {1, 0, 0}, 0, true, false, "", 0},
      {"count before", even, 4, true, true, "ab", 8},
      {"count before, 4 bytes", Join({Little(4, 4), Units(u"abcd")}), 4, true, true, "abc", 12},
      {"no count before", even, 0, true, true, "\x02", 4},
      {"count before, cut", Join({Little(5, 4), Units(u"ab")}), 4, true, true, "", 4},
  };
  for (const Case& row : cases) {
    Readers in(row.bytes, static_cast<std::size_t>(row.start));
    EXPECT_EQ(in.set->ReadUTF16String(in.cursor, row.pad, row.countBefore).toUtf8(), row.text)
        << row.what;
    EXPECT_EQ(in.Place(), row.place) << row.what;
  }
}

TEST(Reader, CodePageStrings) {
  struct Case {
    const char* what;
    Bytes bytes;
    bool pad;
    const char* text;
    std::ptrdiff_t place;
  };
  const std::vector<Case> cases = {
      {"four", Join({Little(4, 4), {'a', 'b', 'c', 'd', 'e'}}), true, "abcd", 8},
      {"five", Join({Little(5, 4), {'a', 'b', 'c', 'd', 0, 1, 2, 3, 4}}), true, "abcd", 12},
      {"five, not padded", Join({Little(5, 4), {'a', 'b', 'c', 'd', 0, 1}}), false, "abcd", 9},
      {"the padding cut", Join({Little(5, 4), {'a', 'b', 'c', 'd', 0, 1}}), true, "abcd", 10},
      {"none", Join({Little(0, 4), {'a'}}), true, "", 4},
      {"cut", Join({Little(2, 4), {'a'}}), true, "", 4},
  };
  for (const Case& row : cases) {
    Readers in(row.bytes);
    EXPECT_EQ(in.set->ReadMBCSString(in.cursor, row.pad).toUtf8(), row.text) << row.what;
    EXPECT_EQ(in.Place(), row.place) << row.what;
  }
}

}  // namespace
}  // namespace kelx::test
