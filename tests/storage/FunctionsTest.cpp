#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "storage/KELStgFunctions.h"
#include "tests/storage/OpenedFile.h"
#include "tests/support/Damage.h"

namespace {

using namespace kelx::test;  // NOLINT: the words of the builder

using Names = std::vector<std::string>;

CompoundFile Listed() {
  CompoundFileBuilder builder({.siblings = Siblings::kInsertionOrder});
  builder.AddStream(kRoot, u"b", Pattern(2500));
  builder.AddStorage(kRoot, u"Y");
  builder.AddStream(kRoot, u"a", Pattern(6));
  builder.AddStream(kRoot, u"c", {});
  const EntryIndex streamsOnly = builder.AddStorage(kRoot, u"X");
  builder.AddStream(streamsOnly, u"s", Pattern(10));
  builder.AddStream(kRoot, u"odd", Pattern(10), {.type = std::uint8_t{3}});
  return builder.Build();
}

KELXDynamicArray<KELXString> ArrayOf(const Names& texts) {
  KELXDynamicArray<KELXString> array;
  for (const std::string& text : texts) array.Add(KELXString::fromUtf8(text));
  return array;
}

Names TextsIn(const KELXDynamicArray<KELXString>& array) {
  Names texts;
  for (const KELXString& text : array) texts.push_back(text.toUtf8());
  return texts;
}

std::unique_ptr<KELIStream> Opened(KELIStorage& storage, const char* name) {
  return std::unique_ptr<KELIStream>(OpenStream(&storage, KELXString::fromUtf8(name)));
}

TEST(Functions, OpenCompoundFilesOnly) {
  const TemporaryFolder folder;
  CompoundFile refused = Listed();
  PatchHeader(refused, HeaderField::kSectorShift, 10);
  struct Case {
    std::string path;
    bool isCompoundFile;
  };
  const Case cases[] = {
      {folder.Write("valid", Listed().bytes), true},
      {KELX_TEST_DATA "/nested.cfb", true},
      {folder.Write("refused", refused.bytes), false},
      {folder.Write("empty", {}), false},
      {folder.PathOf("missing"), false},
      {folder.Path(), false},
      {"", false},
  };
  for (const Case& one : cases) {
    const KELXFilePath path = PathTo(one.path);
    KELXFilePath unused("/no/such/file");
    EXPECT_EQ(IsStorageFile(path), one.isCompoundFile) << one.path;
    KELIStorage sentinel;
    const auto opened =
        Try(sentinel, [&](KELIStorage** storage) { return KELStgOpenStorage(path, storage); });
    EXPECT_EQ(opened.status, one.isCompoundFile ? 0 : -1) << one.path;
    EXPECT_EQ(opened.out, one.isCompoundFile ? Out::kObject : Out::kNull) << one.path;
    const std::unique_ptr<KELIStorage> root(KELStgOpenStorageRoot(path));
    EXPECT_EQ(root != nullptr, one.isCompoundFile) << one.path;
    const std::unique_ptr<KELIStorage> same(OpenStorage(path, unused));
    EXPECT_EQ(same != nullptr, one.isCompoundFile) << one.path;
  }
}

TEST(Functions, OpenChildren) {
  CompoundFile file = Listed();
  LinkMiniSector(file, file.layout.entries[1].sectors.back(), 0);
  const OpenedFile opened(file);
  struct Case {
    const char* name;
    bool isStream;
    bool isStorage;
  };
  const Case cases[] = {
      {"a", true, false},     {"A", true, false},  {"X", false, true},
      {"x", false, false},    {"s", false, false}, {"odd", false, false},
      {"none", false, false}, {"b", false, false},  // its chain loops
      {"c", false, false},                          // it has no bytes
  };
  for (const Case& one : cases) {
    EXPECT_EQ(Opened(*opened.root, one.name) != nullptr, one.isStream) << one.name;
    const std::unique_ptr<KELIStorage> storage(
        OpenStorage(opened.root.get(), KELXString::fromUtf8(one.name)));
    EXPECT_EQ(storage != nullptr, one.isStorage) << one.name;
  }
}

TEST(Functions, ListNames) {
  using Lister = bool (*)(KELIStorage*, KELXDynamicArray<KELXString>&);
  struct Case {
    Lister list;
    const char* storage;  ///< empty for the root
    Names before;
    bool result;
    Names after;
  };
  const Case cases[] = {
      {&GetStreamNames, "", {"bb", "B"}, true, {"B", "a", "b", "bb", "c"}},
      {&GetStorageNames, "", {"Z", "A"}, true, {"A", "X", "Y", "Z"}},
      {&GetStreamStorageNames, "", {"x"}, true, {"X", "Y", "a", "b", "c", "odd", "x"}},
      {&GetStreamNames, "X", {}, true, {"s"}},
      {&GetStorageNames, "X", {"z", "y"}, true, {"y", "z"}},
      {&GetStreamNames, "Y", {"z", "y"}, false, {"z", "y"}},
      {&GetStorageNames, "Y", {"z", "y"}, false, {"z", "y"}},
      {&GetStreamStorageNames, "Y", {"z", "y"}, false, {"z", "y"}},
  };
  const OpenedFile opened(Listed());
  for (const Case& one : cases) {
    const std::string name = one.storage;
    const auto child = TryStorage(*opened.root, name);
    KELXDynamicArray<KELXString> names = ArrayOf(one.before);
    EXPECT_EQ(one.list(name.empty() ? opened.root.get() : child.object.get(), names), one.result);
    EXPECT_EQ(TextsIn(names), one.after) << one.storage;
  }
}

TEST(Functions, ListElementsInDirectoryOrder) {
  using Kinds = std::vector<std::pair<std::string, int>>;
  const auto kinds = [](const KELXDynamicArray<KELXStStorageElement>& elements) {
    Kinds result;
    for (const auto& element : elements) result.emplace_back(element.name.toUtf8(), element.type);
    return result;
  };
  const OpenedFile opened(Listed());
  const auto childless = TryStorage(*opened.root, "Y");
  KELXDynamicArray<KELXStStorageElement> elements;
  EXPECT_FALSE(GetChildElements(childless.object.get(), elements));
  EXPECT_EQ(elements.Count(), 0);
  elements.Add({KELXString::fromUtf8("z"), KELXStStorageElementStream});
  EXPECT_TRUE(GetChildElements(childless.object.get(), elements));  // it held one before
  EXPECT_EQ(elements.Count(), 1);
  EXPECT_TRUE(GetChildElements(opened.root.get(), elements));
  EXPECT_EQ(kinds(elements),
            (Kinds{{"z", 0}, {"b", 0}, {"Y", 1}, {"a", 0}, {"c", 0}, {"X", 1}, {"odd", 1}}));
}

TEST(Functions, NullIsAnswered) {
  const KELXString name = KELXString::fromUtf8("a");
  KELXDynamicArray<KELXString> names = ArrayOf({"z", "y"});
  KELXDynamicArray<KELXStStorageElement> elements;
  elements.Add({name, KELXStStorageElementStream});
  unsigned long number = 7;
  unsigned char byte = 7;
  char character = 7;
  EXPECT_EQ(OpenStorage(nullptr, name), nullptr);
  EXPECT_EQ(OpenStream(nullptr, name), nullptr);
  for (const auto list : {&GetStreamNames, &GetStorageNames, &GetStreamStorageNames}) {
    EXPECT_FALSE(list(nullptr, names));
  }
  EXPECT_FALSE(GetChildElements(nullptr, elements));
  EXPECT_FALSE(GetStreamSize(nullptr, number));
  EXPECT_FALSE(ReadStream(nullptr, &byte, 1));
  EXPECT_FALSE(ReadStream(nullptr, &character, 1));
  EXPECT_FALSE(TellStream(nullptr, number));
  EXPECT_FALSE(SeekStream(nullptr, 0, 0));
  EXPECT_FALSE(WriteStreamToFile(nullptr, stdout, 1));
  EXPECT_TRUE(CloseStream(nullptr));
  EXPECT_TRUE(CloseStorage(nullptr));
  EXPECT_EQ(TextsIn(names), (Names{"z", "y"}));
  EXPECT_EQ(number, 7U);
  EXPECT_EQ(byte, 7);
}

TEST(Functions, CloseInAnyOrder) {
  const TemporaryFile file(Listed().bytes);
  KELIStorage* const root = KELStgOpenStorageRoot(PathTo(file.Path()));
  KELIStorage* const child = OpenStorage(root, KELXString::fromUtf8("X"));
  KELIStream* const stream = OpenStream(root, KELXString::fromUtf8("a"));
  EXPECT_TRUE(CloseStorage(root));
  EXPECT_EQ(Contents(*child, "s"), Pattern(10));
  EXPECT_TRUE(CloseStorage(child));
  EXPECT_EQ(Rest(*stream), Pattern(6));
  EXPECT_TRUE(CloseStream(stream));
}

TEST(Functions, TheMarkerAnswers) { EXPECT_EQ(VANTREL_INTERNAL_KELXStStorage(), 1); }

}  // namespace
