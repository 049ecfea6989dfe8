#include <gtest/gtest.h>

#include <barrier>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "storage/KELStgFunctions.h"
#include "tests/storage/OpenedFile.h"

// Storages of one file share their image's arrays and texts under the hood, so these tests have
// each thread copy, change and free what the other reads. The thread sanitizer is the judge.

namespace {

using namespace kelx::test;  // NOLINT: the words of the builder

constexpr int kRounds = 20;
constexpr int kStreams = 12;

std::u16string StreamName(int i) { return std::u16string(u"stream ") + char16_t(u'a' + i); }

/// The storages "A" and "B" with streams of the same names, both small and large ones.
CompoundFile TwoStorages() {
  CompoundFileBuilder builder;
  for (const char16_t* name : {u"A", u"B"}) {
    const EntryIndex storage = builder.AddStorage(kRoot, name);
    for (int i = 0; i < kStreams; ++i) {
      const auto size = static_cast<std::size_t>(i % 2 == 0 ? 100 + i : 5000 + i);
      builder.AddStream(storage, StreamName(i), Pattern(size, name[0]));
    }
  }
  return builder.Build();
}

std::unique_ptr<KELIStorage> Child(KELIStorage& root, const char* name) {
  return std::unique_ptr<KELIStorage>(OpenStorage(&root, KELXString::fromUtf8(name)));
}

/// Runs `work("A")` and `work("B")` side by side, both begun before either goes on.
void RunBoth(const std::function<void(const std::string&)>& work) {
  std::barrier start(2);
  std::vector<std::jthread> threads;
  for (const char* name : {"A", "B"}) {
    threads.emplace_back([&, name] {
      start.arrive_and_wait();
      work(name);
    });
  }
}

/// Lists the storage and reads every stream of it by name, in capitals.
void ReadAll(std::unique_ptr<KELIStorage> storage, const std::string& name) {
  KELXDynamicArray<KELXString> names;
  EXPECT_TRUE(GetStreamNames(storage.get(), names));
  EXPECT_EQ(names.Count(), kStreams);
  for (int i = 0; i < kStreams; ++i) {
    const std::string upper = std::string("STREAM ") + static_cast<char>('A' + i);
    const Bytes bytes = Contents(*storage, upper);
    EXPECT_TRUE(bytes == Pattern(bytes.size(), static_cast<unsigned char>(name[0]))) << upper;
    EXPECT_EQ(bytes.size(), static_cast<std::size_t>(i % 2 == 0 ? 100 + i : 5000 + i)) << upper;
  }
}

TEST(Threads, StoragesOfOneParent) {
  const CompoundFile built = TwoStorages();
  for (int round = 0; round < kRounds; ++round) {
    OpenedFile opened(built);
    std::unique_ptr<KELIStorage> storages[] = {Child(*opened.root, "A"), Child(*opened.root, "B")};
    opened.root.reset();  // the last owner of the image is now one of the two threads
    RunBoth(
        [&](const std::string& name) { ReadAll(std::move(storages[name == "A" ? 0 : 1]), name); });
  }
}

TEST(Threads, AStorageAndItsParent) {
  const CompoundFile built = TwoStorages();
  for (int round = 0; round < kRounds; ++round) {
    OpenedFile opened(built);
    std::unique_ptr<KELIStorage> child = Child(*opened.root, "A");
    RunBoth([&](const std::string& name) {
      // The parent makes further copies of the image while the child reads and frees its own.
      ReadAll(name == "A" ? std::move(child) : Child(*opened.root, "B"), name);
    });
  }
}

TEST(Threads, ChangesDetach) {
  const CompoundFile built = TwoStorages();
  for (int round = 0; round < kRounds; ++round) {
    OpenedFile opened(built);
    std::unique_ptr<KELIStorage> storages[] = {Child(*opened.root, "A"), Child(*opened.root, "B")};
    opened.root.reset();
    RunBoth([&](const std::string& name) {
      const std::unique_ptr<KELIStorage> storage = std::move(storages[name == "A" ? 0 : 1]);
      const KELStStorageFileInfo& image = *storage->getStStorageFileInfo();
      KELXDynamicArray<unsigned int> fat = image.getFatSector();
      *fat.At(0) = static_cast<unsigned char>(name[0]);
      KELXDynamicArray<unsigned char> miniStream = image.getMiniStream();
      miniStream.Append(reinterpret_cast<const unsigned char*>(name.data()), 1);
      KELXDynamicArray<KELStStorageDirEntry> directory = image.getDirArray();
      const KELXString rootName = std::as_const(directory).At(0)->getName();
      rootName += KELXString::fromUtf8(name);
      directory.At(0)->setSize(static_cast<unsigned char>(name[0]));

      EXPECT_EQ(*fat.At(0), static_cast<unsigned char>(name[0]));
      EXPECT_EQ(*miniStream.At(miniStream.Count() - 1), static_cast<unsigned char>(name[0]));
      EXPECT_EQ(rootName.toUtf8(), "Root Entry" + name);
      EXPECT_EQ(image.getRootDirEntry().getName().toUtf8(), "Root Entry");
      EXPECT_NE(image.getRootDirEntry().getSize(), directory.At(0)->getSize());
      EXPECT_EQ(image.getMiniStream().Count() + 1, miniStream.Count());
    });
  }
}

TEST(Threads, StreamsGoToOtherThreads) {
  const CompoundFile built = TwoStorages();
  for (int round = 0; round < kRounds; ++round) {
    OpenedFile opened(built);
    std::unique_ptr<KELIStream> streams[2];
    for (const int i : {0, 1}) {
      const auto storage = Child(*opened.root, "A");
      streams[i] = std::move(TryStream(*storage, "stream b").object);
    }
    RunBoth([&](const std::string& name) {
      const std::unique_ptr<KELIStream> stream = std::move(streams[name == "A" ? 0 : 1]);
      const KELStStorageDirEntry entry = stream->getDirEntry();
      entry.getName() += KELXString::fromUtf8(name);
      EXPECT_EQ(entry.getName().toUtf8(), "stream b");
      EXPECT_EQ(Rest(*stream), Pattern(5001, 'A'));
    });
  }
}

}  // namespace
