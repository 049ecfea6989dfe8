#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <functional>
#include <memory>
#include <string>

#include "KELXStStorage.h"
#include "tests/support/CompoundFileBuilder.h"
#include "tests/support/Damage.h"
#include "tests/support/PropertySetBuilder.h"
#include "tests/support/TemporaryFile.h"

// Files that are made to cost more than they are long. Each is opened, listed and read whole, with
// all property sets, by a process that may have 256 MiB and 16 times the file and some seconds of
// processor time: it ends by itself, or the test fails.

namespace {

using namespace kelx::test;  // NOLINT: the words of the builder

void ReadAll(KELIStorage& storage, int depth) {
  KELXDynamicArray<KELXStStorageElement> children;
  GetChildElements(&storage, children);
  storage.getPropertySetStorage();
  for (const KELXStStorageElement& child : children) {
    const std::unique_ptr<KELIStream> stream(OpenStream(&storage, child.name));
    if (child.type == KELXStStorageElementStream || depth == 0) continue;
    const std::unique_ptr<KELIStorage> inner(OpenStorage(&storage, child.name));
    if (inner) ReadAll(*inner, depth - 1);
  }
}

/// The sanitizers reserve address space of their own, far beyond any limit.
constexpr bool IsSanitized() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  return true;
#else
  return false;
#endif
}

void Limit(std::size_t fileSize) {
  constexpr rlim_t kSeconds = 20;  // a hang ends; how quick it is the benchmarks tell
  const rlimit time{kSeconds, kSeconds};
  setrlimit(RLIMIT_CPU, &time);
  const rlim_t bytes = (rlim_t{256} << 20) + 16 * rlim_t{fileSize};
  const rlimit memory{bytes, bytes};
  if (!IsSanitized()) setrlimit(RLIMIT_AS, &memory);
}

/// The memory of this process that is in use now, in KiB.
long ResidentKiB() {
  long all = 0;
  long resident = 0;
  std::ifstream("/proc/self/statm") >> all >> resident;
  return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

/// Reads the file and prints what that took.
bool ReadMeasured(const char* what, const TemporaryFile& file, std::size_t size) {
  const long before = ResidentKiB();
  const std::unique_ptr<KELIStorage> root(KELStgOpenStorageRoot(KELXFilePath(file.Path().c_str())));
  if (root) ReadAll(*root, 2);
  rusage used{};
  getrusage(RUSAGE_SELF, &used);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  std::printf("%-45s %8zu KiB file %6.2f s %8ld KiB memory\n", what, size / 1024,
              seconds(used.ru_utime) + seconds(used.ru_stime), used.ru_maxrss - before);
  std::fflush(stdout);
  return root != nullptr;
}

void ExpectHarmless(const char* what, const Bytes& bytes) {
  const TemporaryFile file(bytes);
  const pid_t child = fork();
  if (child == 0) {
    Limit(bytes.size());
    _exit(ReadMeasured(what, file, bytes.size()) ? 0 : 1);
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << what << ": status " << status;
}

CompoundFile Plain(Format format = {}) {
  CompoundFileBuilder builder(format);
  builder.AddStream(kRoot, u"large", Pattern(20000));
  builder.AddStream(kRoot, u"small", Pattern(1000));
  builder.AddStream(builder.AddStorage(kRoot, u"Inner"), u"deep", Pattern(100));
  return builder.Build();
}

constexpr EntryIndex kLarge = 1;
constexpr EntryIndex kSmall = 2;
constexpr EntryIndex kInner = 3;

TEST(Hostile, ControlIsReadUnderTheLimits) { ExpectHarmless("control", Plain().bytes); }

TEST(Hostile, ChainsAndCounts) {
  struct Case {
    const char* what;
    std::function<void(CompoundFile&)> damage;
  };
  const auto listEverywhere = [](std::uint32_t sector) {
    return [sector](CompoundFile& file) {
      for (std::size_t i = 0; i < 109; ++i) PatchHeader(file, HeaderField::Difat(i), sector);
    };
  };
  const auto claim = [](EntryIndex entry, std::uint32_t size) {
    return [=](CompoundFile& file) { PatchEntry(file, entry, EntryField::kSize, size); };
  };
  const Case cases[] = {
      {"4 billion DIFAT sectors in a loop",
       [](CompoundFile& file) {
         PatchHeader(file, HeaderField::kDifatStart, file.layout.directory[0]);
         PatchHeader(file, HeaderField::kDifatSectorCount, 0xFFFFFFFF);
       }},
      {"DIFAT sectors beyond the end",
       [](CompoundFile& file) {
         PatchHeader(file, HeaderField::kDifatStart, 0x00700000);
         PatchHeader(file, HeaderField::kDifatSectorCount, 0xFFFFFFFF);
       }},
      {"one FAT sector listed everywhere", listEverywhere(0)},
      {"FAT sectors beyond the end", listEverywhere(0x00700000)},
      {"a directory that loops",
       [](CompoundFile& file) { LinkSectorToItself(file, file.layout.directory[0]); }},
      {"a mini FAT that loops",
       [](CompoundFile& file) { LinkSectorToItself(file, file.layout.miniFat[0]); }},
      {"a mini stream that loops",
       [](CompoundFile& file) { LinkSectorToItself(file, file.layout.miniStream[0]); }},
      {"a stream that loops",
       [](CompoundFile& file) {
         LinkSectorToItself(file, file.layout.entries[kLarge].sectors.back());
       }},
      {"a small stream that loops",
       [](CompoundFile& file) {
         LinkMiniSectorToItself(file, file.layout.entries[kSmall].sectors.back());
       }},
      {"a storage that contains itself",
       [](CompoundFile& file) { PatchEntry(file, kInner, EntryField::kChild, kInner); }},
      {"siblings that loop",
       [](CompoundFile& file) {
         PatchEntry(file, kLarge, EntryField::kLeftSibling, kSmall);
         PatchEntry(file, kSmall, EntryField::kRightSibling, kLarge);
       }},
      {"2^31 - 1 bytes claimed", claim(kLarge, 0x7FFFFFFF)},
      {"2^31 bytes claimed", claim(kLarge, 0x80000000)},
      {"2^32 - 1 bytes claimed", claim(kLarge, 0xFFFFFFFF)},
      {"a mini stream of 2^31 - 1 bytes claimed", claim(kRoot, 0x7FFFFFFF)},
      {"2^32 - 1 bytes claimed in the mini stream",
       [claim](CompoundFile& file) {
         PatchHeader(file, HeaderField::kMiniStreamCutoff, 0xFFFFFFFF);
         claim(kSmall, 0xFFFFFFFE)(file);
       }},
  };
  for (const std::uint32_t sectorSize : {512U, 4096U}) {
    for (const Case& one : cases) {
      CompoundFile file = Plain({.sectorSize = sectorSize});
      one.damage(file);
      ExpectHarmless(one.what, file.bytes);
    }
  }
}

/// A file whose FAT, DIFAT sectors included, chains sectors far beyond its end.
TEST(Hostile, ChainsThroughSectorsBeyondTheEnd) {
  Format format;
  format.extraFatSectors = 2000;
  CompoundFile file = Plain(format);
  const auto sectors = static_cast<std::uint32_t>(file.layout.fat.size() * 128);
  for (std::uint32_t sector = file.layout.sectorCount; sector + 1 < sectors; ++sector) {
    LinkSector(file, sector, sector + 1);
  }
  for (const std::uint32_t last :
       {file.layout.directory.back(), file.layout.miniFat.back(), file.layout.miniStream.back(),
        file.layout.entries[kLarge].sectors.back()}) {
    LinkSector(file, last, file.layout.sectorCount);
  }
  PatchEntry(file, kRoot, EntryField::kSize, 0x7FFFFFFF);
  PatchEntry(file, kLarge, EntryField::kSize, 0x7FFFFFFF);
  ExpectHarmless("all chains run on", file.bytes);
}

/// Thousands of streams and property sets on one mini sector that loops, in a mini FAT that goes on
/// beyond the end of the file.
TEST(Hostile, SmallStreamsThatLoop) {
  constexpr EntryIndex kStreams = 4000;
  CompoundFileBuilder builder({.extraFatSectors = 250});
  builder.AddStream(kRoot, u"small", Pattern(64));
  for (EntryIndex i = 1; i < kStreams; ++i) {
    const char16_t name[] = {u'\x05', static_cast<char16_t>(0x4E00 + i)};
    builder.AddStream(kRoot, {name, 2}, {});
  }
  CompoundFile file = builder.Build();
  PatchHeader(file, HeaderField::kMiniStreamCutoff, 0xFFFFFFFF);
  LinkMiniSectorToItself(file, 0);
  LinkSector(file, file.layout.miniFat.back(), file.layout.sectorCount);
  const auto end = static_cast<std::uint32_t>(file.layout.fat.size() * 128 - 1);
  for (std::uint32_t sector = file.layout.sectorCount; sector < end; ++sector) {
    LinkSector(file, sector, sector + 1);
  }
  for (EntryIndex i = 1; i <= kStreams; ++i) {
    PatchEntry(file, i, EntryField::kStartSector, 0);
    PatchEntry(file, i, EntryField::kSize, i % 2 == 0 ? 0x80000000 : 0x7FFFFFFF);
  }
  ExpectHarmless("4,000 small streams that loop", file.bytes);
}

TEST(Hostile, ManyEntries) {
  Format format;
  format.siblings = Siblings::kRightList;
  CompoundFileBuilder list(format);
  for (int i = 0; i < 1'000'000; ++i) list.AddStream(kRoot, u"one name for all", {});
  ExpectHarmless("1,000,000 right siblings of one name", list.Build().bytes);

  CompoundFileBuilder deep;
  EntryIndex parent = kRoot;
  for (int i = 0; i < 100'000; ++i) parent = deep.AddStorage(parent, u"down");
  ExpectHarmless("100,000 levels", deep.Build().bytes);
}

Bytes WithSet(Bytes set) {
  CompoundFileBuilder builder;
  builder.AddStream(kRoot, u"\x05Set", std::move(set));
  return builder.Build().bytes;
}

TEST(Hostile, PropertySets) {
  // Section at 48: size, count; then the table.
  const auto header = PropertySetBuilder().Add(2, Value(3, 1, 4)).Build();
  Bytes counted = header;
  for (std::size_t i = 52; i < 56; ++i) counted[i] = 0xFF;
  ExpectHarmless("4 billion properties", WithSet(counted));

  const auto manyEntries = [&](std::uint32_t id, const Bytes& value) {
    constexpr std::uint32_t kCount = 20'000;
    Bytes set(header.begin(), header.begin() + 48);
    const auto append = [&set](const Bytes& bytes) {
      set.insert(set.end(), bytes.begin(), bytes.end());
    };
    append(Little(0, 4));
    append(Little(kCount, 4));
    for (std::uint32_t i = 0; i < kCount; ++i) {
      append(Little(id == 0 ? 0 : id + i, 4));
      append(Little(8 + 8 * kCount, 4));
    }
    append(value);
    return set;
  };
  ExpectHarmless("20,000 entries on one string",
                 WithSet(manyEntries(2, Lpstr(std::string(100'000, 'x')))));
  std::vector<std::pair<std::uint32_t, std::string>> names;
  for (std::uint32_t i = 0; i < 10'000; ++i) names.emplace_back(i, "name");
  ExpectHarmless("20,000 entries on one dictionary", WithSet(manyEntries(0, Dictionary(names))));
  ExpectHarmless("a dictionary of 4 billion names", WithSet(manyEntries(0, Little(0xFFFFFFFF, 4))));

  CompoundFileBuilder claiming;
  const EntryIndex set = claiming.AddStream(kRoot, u"\x05Set", counted);
  for (const std::uint32_t size : {0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
    CompoundFile file = claiming.Build();
    PatchHeader(file, HeaderField::kMiniStreamCutoff, 0);
    PatchEntry(file, set, EntryField::kSize, size);
    ExpectHarmless("a set of 4 GiB claimed", file.bytes);
  }
}

}  // namespace
