#include <gtest/gtest.h>

#include <barrier>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
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

constexpr std::string_view kStorages = "ABCDEFGH";

/// The storages "A" to "H" with streams of the same names, both small and large ones.
CompoundFile EightStorages() {
  CompoundFileBuilder builder;
  for (const char name : kStorages) {
    const EntryIndex storage = builder.AddStorage(kRoot, std::u16string(1, name));
    for (int i = 0; i < kStreams; ++i) {
      const auto size = static_cast<std::size_t>(i % 2 == 0 ? 100 + i : 5000 + i);
      builder.AddStream(storage, StreamName(i), Pattern(size, static_cast<unsigned char>(name)));
    }
  }
  return builder.Build();
}

std::unique_ptr<KELIStorage> Child(KELIStorage& root, const char* name) {
  return std::unique_ptr<KELIStorage>(OpenStorage(&root, KELXString::fromUtf8(name)));
}

std::size_t IndexOf(const std::string& name) { return kStorages.find(name); }

std::vector<std::unique_ptr<KELIStorage>> Children(KELIStorage& root) {
  std::vector<std::unique_ptr<KELIStorage>> children;
  for (const char name : kStorages) children.push_back(Child(root, std::string(1, name).c_str()));
  return children;
}

/// Runs `work("A")` to `work("H")`, or of the first `count` letters, side by side, all begun before
/// any goes on.
void RunAll(const std::function<void(const std::string&)>& work,
            std::size_t count = kStorages.size()) {
  std::barrier start(static_cast<std::ptrdiff_t>(count));
  std::vector<std::jthread> threads;
  for (const char name : kStorages.substr(0, count)) {
    threads.emplace_back([&, name] {
      start.arrive_and_wait();
      work(std::string(1, name));
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
  const CompoundFile built = EightStorages();
  for (int round = 0; round < kRounds; ++round) {
    OpenedFile opened(built);
    std::vector<std::unique_ptr<KELIStorage>> storages = Children(*opened.root);
    opened.root.reset();  // the last owner of the image is now one of the threads
    RunAll([&](const std::string& name) { ReadAll(std::move(storages[IndexOf(name)]), name); });
  }
}

TEST(Threads, AStorageAndItsParent) {
  const CompoundFile built = EightStorages();
  for (int round = 0; round < kRounds; ++round) {
    OpenedFile opened(built);
    std::unique_ptr<KELIStorage> child = Child(*opened.root, "A");
    const auto work = [&](const std::string& name) {
      // The parent makes further copies of the image while the child reads and frees its own.
      ReadAll(name == "A" ? std::move(child) : Child(*opened.root, "B"), name);
    };
    RunAll(work, 2);
  }
}

TEST(Threads, ChangesDetach) {
  const CompoundFile built = EightStorages();
  for (int round = 0; round < kRounds; ++round) {
    OpenedFile opened(built);
    std::vector<std::unique_ptr<KELIStorage>> storages = Children(*opened.root);
    opened.root.reset();
    RunAll([&](const std::string& name) {
      const std::unique_ptr<KELIStorage> storage = std::move(storages[IndexOf(name)]);
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
  const CompoundFile built = EightStorages();
  for (int round = 0; round < kRounds; ++round) {
    OpenedFile opened(built);
    std::vector<std::unique_ptr<KELIStream>> streams;
    while (streams.size() < kStorages.size()) {
      const auto storage = Child(*opened.root, "A");
      streams.push_back(std::move(TryStream(*storage, "stream b").object));
    }
    RunAll([&](const std::string& name) {
      const std::unique_ptr<KELIStream> stream = std::move(streams[IndexOf(name)]);
      const KELStStorageDirEntry entry = stream->getDirEntry();
      entry.getName() += KELXString::fromUtf8(name);
      EXPECT_EQ(entry.getName().toUtf8(), "stream b");
      EXPECT_EQ(Rest(*stream), Pattern(5001, 'A'));
    });
  }
}

}  // namespace
