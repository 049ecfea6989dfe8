#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "tests/storage/OpenedFile.h"
#include "tests/support/Damage.h"

namespace {

using namespace kelx::test;  // NOLINT: the words of the builder

const EntryIndex kEmpty = 1;
const EntryIndex kOther = 3;
const EntryIndex kSmall = 4;
const EntryIndex kLarge = 5;
const Bytes kSmallBytes = Pattern(100, 1);    // two mini sectors, the last of the mini stream
const Bytes kLargeBytes = Pattern(10000, 2);  // 20 or 3 sectors, the last of the file

CompoundFile FileIn(Format format) {
  CompoundFileBuilder builder(format);
  builder.AddStream(kRoot, u"empty", {});
  builder.AddStorage(kRoot, u"storage");
  builder.AddStream(kRoot, u"other", Pattern(6000, 3));
  builder.AddStream(kRoot, u"small", kSmallBytes);
  builder.AddStream(kRoot, u"large", kLargeBytes);
  return builder.Build();
}

std::vector<Format> Formats() {
  std::vector<Format> formats;
  for (const std::uint32_t sectorSize : {512U, 4096U}) {
    for (const ByteOrder order : {ByteOrder::kLittle, ByteOrder::kBig}) {
      for (const Placement placement : {Placement::kContiguous, Placement::kScattered}) {
        formats.push_back({.sectorSize = sectorSize, .byteOrder = order, .placement = placement});
      }
    }
  }
  return formats;
}

Bytes Prefix(const Bytes& bytes, std::size_t size) {
  return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(std::min(size, bytes.size()))};
}

struct Case {
  const char* change;
  std::string name;
  std::function<void(CompoundFile&, const Layout&)> damage;
  int status;
  Out out;
  std::size_t held = 0;    ///< bytes of the stream, if there is one
  std::size_t stated = 0;  ///< the size in its entry
};

void Expect(const Case& one, const Format& format, const Bytes& whole) {
  SCOPED_TRACE(one.change);
  CompoundFile file = FileIn(format);
  const Layout layout = file.layout;
  one.damage(file, layout);
  const OpenedFile opened(file);
  const auto stream = TryStream(*opened.root, one.name);
  EXPECT_EQ(stream.status, one.status);
  ASSERT_EQ(stream.out, one.out);
  if (!stream.object) return;
  const Bytes held = Rest(*stream.object);
  EXPECT_EQ(held.size(), one.held);
  EXPECT_EQ(Prefix(held, whole.size()), Prefix(whole, one.held));
  EXPECT_EQ(stream.object->getDirEntry().getSize(), one.stated);
  EXPECT_EQ(stream.object->getDirEntry().isStream(), one.status == 0);
}

auto Set(EntryIndex entry, Field field, std::uint64_t value) {
  return [=](CompoundFile& file, const Layout&) { PatchEntry(file, entry, field, value); };
}

/// Changes what follows the sector that stands at `place` of the large stream's chain.
auto Follow(std::size_t place, std::function<std::uint32_t(const Layout&)> next) {
  return [=](CompoundFile& file, const Layout& layout) {
    const auto& chain = layout.entries[kLarge].sectors;
    LinkSector(file, chain[std::min(place, chain.size() - 1)], next(layout));
  };
}

auto FollowMini(std::size_t place, std::function<std::uint32_t(const Layout&)> next) {
  return [=](CompoundFile& file, const Layout& layout) {
    LinkMiniSector(file, layout.entries[kSmall].sectors[place], next(layout));
  };
}

std::function<std::uint32_t(const Layout&)> Number(std::uint32_t number) {
  return [number](const Layout&) { return number; };
}

/// What follows is sector `place` of the entry's own chain.
std::function<std::uint32_t(const Layout&)> SectorOf(EntryIndex entry, std::size_t place) {
  return [=](const Layout& layout) { return layout.entries[entry].sectors[place]; };
}

const auto kNoChange = [](CompoundFile&, const Layout&) {};

TEST(OpenStream, FindsAndJudgesTheEntry) {
  const Case cases[] = {
      {"none", "small", kNoChange, 0, Out::kObject, 100, 100},
      {"a name in capitals", "SMALL", kNoChange, 0, Out::kObject, 100, 100},
      {"an unknown name", "smal", kNoChange, -1, Out::kNull},
      {"no name", "", kNoChange, -1, Out::kNull},
      {"a storage's name", "storage", kNoChange, -1, Out::kNull},
      {"the root's name", "Root Entry", kNoChange, -1, Out::kNull},
      {"a stream without bytes", "empty", kNoChange, -1, Out::kUntouched},
      {"no bytes any more", "small", Set(kSmall, EntryField::kSize, 0), -1, Out::kUntouched},
      {"no children", "small", Set(kRoot, EntryField::kChild, kNoEntry), -1, Out::kNull},
      {"colour 2", "small", Set(kSmall, EntryField::kColour, 2), -1, Out::kNull},
      {"name length 0", "small", Set(kSmall, EntryField::kNameLength, 0), -1, Out::kNull},
      {"name length 65", "small", Set(kSmall, EntryField::kNameLength, 65), -1, Out::kNull},
      {"not valid, without bytes", "empty", Set(kEmpty, EntryField::kColour, 2), -1, Out::kNull},
      {"type 1", "small", Set(kSmall, EntryField::kType, 1), -1, Out::kNull},
      {"type 3", "small", Set(kSmall, EntryField::kType, 3), -1, Out::kNull},
      {"type 5", "small", Set(kSmall, EntryField::kType, 5), -1, Out::kNull},
      {"a size of 2^32 more", "small", Set(kSmall, EntryField::kSizeHigh, 1), 0, Out::kObject, 100,
       100},
  };
  for (const Case& one : cases) Expect(one, {}, kSmallBytes);
}

TEST(OpenStream, FollowsSectors) {
  const auto firstBeyondFat = [](const Layout& layout) {
    return static_cast<std::uint32_t>(layout.fat.size()) * layout.sectorSize / 4;
  };
  for (const Format& format : Formats()) {
    const std::size_t sector = format.sectorSize;
    const Case cases[] = {
        {"none", "large", kNoChange, 0, Out::kObject, 10000, 10000},
        {"DIFAT mark", "large", Follow(99, Number(kDifatSector)), 0, Out::kObject, 10000, 10000},
        {"FAT mark", "large", Follow(99, Number(kFatSector)), 0, Out::kObject, 10000, 10000},
        {"free mark", "large", Follow(99, Number(kFreeSector)), 0, Out::kObject, 10000, 10000},
        {"shorter", "large", Follow(1, Number(kEndOfChain)), 0, Out::kObject, 2 * sector, 10000},
        {"longer", "large", Follow(99, SectorOf(kOther, 0)), 0, Out::kObject, 10000, 10000},
        {"longer than it says", "large", Set(kLarge, EntryField::kSize, 4097), 0, Out::kObject,
         4097, 4097},
        {"a loop of one", "large", Follow(0, SectorOf(kLarge, 0)), -1, Out::kNull},
        {"a loop of two", "large", Follow(1, SectorOf(kLarge, 0)), -1, Out::kNull},
        {"a loop after all bytes", "large", Follow(99, SectorOf(kLarge, 0)), -1, Out::kNull},
        {"beyond the FAT", "large", Follow(0, firstBeyondFat), -1, Out::kNull},
        {"far beyond it", "large", Follow(0, Number(0xFFFFFFFB)), -1, Out::kNull},
        {"beyond the FAT after all bytes", "large", Follow(99, firstBeyondFat), -1, Out::kNull},
        {"no start", "large", Set(kLarge, EntryField::kStartSector, kEndOfChain), -1, Out::kNull},
        {"2^31 - 1 bytes", "large", Set(kLarge, EntryField::kSize, 0x7FFFFFFF), 0, Out::kObject,
         (10000 + sector - 1) / sector * sector, 0x7FFFFFFF},
        {"2^31 bytes", "large", Set(kLarge, EntryField::kSize, 0x80000000), 0, Out::kObject, 0,
         0x80000000},
        {"2^32 - 1 bytes", "large", Set(kLarge, EntryField::kSize, 0xFFFFFFFF), 0, Out::kObject, 0,
         0xFFFFFFFF},
    };
    for (const Case& one : cases) Expect(one, format, kLargeBytes);
  }
}

TEST(OpenStream, FollowsMiniSectors) {
  const auto cutMiniStream = [](std::uint32_t tooShort) {
    return [tooShort](CompoundFile& file, const Layout& layout) {
      const auto& sectors = layout.entries[kSmall].sectors;
      PatchEntry(file, kRoot, EntryField::kSize, sectors[1] * kMiniSectorSize + 36 - tooShort);
    };
  };
  const auto sizeWithCutoff = [](std::uint32_t size) {
    return [size](CompoundFile& file, const Layout&) {
      PatchHeader(file, HeaderField::kMiniStreamCutoff, 0xFFFFFFFF);
      PatchEntry(file, kSmall, EntryField::kSize, size);
    };
  };
  const auto wrapped = [](const Layout& layout) {
    return layout.entries[kSmall].sectors[1] + 0x4000000;
  };
  const Case cases[] = {
      {"none", "small", kNoChange, 0, Out::kObject, 100, 100},
      {"DIFAT mark", "small", FollowMini(1, Number(kDifatSector)), 0, Out::kObject, 100, 100},
      {"free mark", "small", FollowMini(1, Number(kFreeSector)), 0, Out::kObject, 100, 100},
      {"shorter", "small", FollowMini(0, Number(kEndOfChain)), 0, Out::kObject, 64, 100},
      {"longer", "small", FollowMini(1, Number(2)), -1, Out::kObject, 100},
      {"longer and beyond the mini FAT", "small", FollowMini(1, Number(0xFFFFFFFB)), -1,
       Out::kObject, 100},
      {"longer than it says", "small", Set(kSmall, EntryField::kSize, 64), -1, Out::kObject, 64},
      {"a loop after all bytes", "small", FollowMini(1, SectorOf(kSmall, 0)), -1, Out::kObject,
       100},
      {"beyond the mini stream", "small", FollowMini(0, Number(2)), -1, Out::kObject, 64},
      {"far beyond it", "small", FollowMini(0, Number(0x3FFFFFF)), -1, Out::kObject, 64},
      {"no start", "small", Set(kSmall, EntryField::kStartSector, kEndOfChain), -1, Out::kObject},
      {"no mini stream", "small", Set(kRoot, EntryField::kSize, 0), -1, Out::kObject},
      {"an offset that wraps around", "small", FollowMini(0, wrapped), 0, Out::kObject, 100, 100},
      {"a mini stream as long as needed", "small", cutMiniStream(0), 0, Out::kObject, 100, 100},
      {"a byte shorter", "small", cutMiniStream(1), -1, Out::kObject, 64},
      {"no mini FAT", "small",
       [](CompoundFile& file, const Layout&) {
         PatchHeader(file, HeaderField::kMiniFatStart, kEndOfChain);
       },
       0, Out::kObject, 64, 100},
      {"2^31 - 1 bytes", "small", sizeWithCutoff(0x7FFFFFFF), 0, Out::kObject, 128, 0x7FFFFFFF},
      {"2^31 bytes", "small", sizeWithCutoff(0x80000000), 0, Out::kObject, 0, 0x80000000},
      {"2^32 - 2 bytes", "small", sizeWithCutoff(0xFFFFFFFE), 0, Out::kObject, 0, 0xFFFFFFFE},
  };
  for (const Format& format : Formats()) {
    if (format.placement == Placement::kScattered) continue;  // mini sectors 0 and 1, no other
    for (const Case& one : cases) Expect(one, format, kSmallBytes);
    Bytes repeated = Prefix(kSmallBytes, kMiniSectorSize);
    repeated.insert(repeated.end(), kSmallBytes.begin(), kSmallBytes.begin() + kMiniSectorSize);
    Expect({"a loop of one", "small", FollowMini(0, SectorOf(kSmall, 0)), -1, Out::kObject, 100},
           format, repeated);
  }
}

}  // namespace
