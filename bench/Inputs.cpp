#include "bench/Inputs.h"

#include <filesystem>

#include "tests/support/PropertySetBuilder.h"

namespace kelx::bench {

namespace {

using test::CompoundFileBuilder;
using test::kRoot;

/// Makes the file unless an earlier run did.
template <typename Fill>
std::string Make(const std::string& name, const test::Format& format, Fill fill) {
  std::filesystem::create_directories(KELX_BENCH_DATA);
  const std::string path = KELX_BENCH_DATA "/" + name;
  if (std::filesystem::exists(path)) return path;
  CompoundFileBuilder builder(format);
  fill(builder);
  const std::string unfinished = path + ".part";
  builder.WriteTo(unfinished);
  std::filesystem::rename(unfinished, path);
  return path;
}

test::Format FormatWith(test::Siblings siblings, test::Placement placement) {
  test::Format format;
  format.siblings = siblings;
  format.placement = placement;
  return format;
}

}  // namespace

std::u16string NameOf(int i) {
  std::u16string name = u"Stream ";
  for (const char digit : std::to_string(i)) name.push_back(static_cast<char16_t>(digit));
  return name;
}

std::string SmallStreams(int count, test::Siblings siblings) {
  const bool isList = siblings == test::Siblings::kRightList;
  const std::string name = "small-" + std::to_string(count) + (isList ? "-list" : "-tree");
  const auto format = FormatWith(siblings, test::Placement::kContiguous);
  return Make(name, format, [count](CompoundFileBuilder& builder) {
    for (int i = 0; i < count; ++i) {
      builder.AddStream(kRoot, NameOf(i),
                        test::GeneratedPattern(kSmallStream, static_cast<std::uint32_t>(i)));
    }
  });
}

std::string LargeStream(std::uint64_t bytes, test::Placement placement) {
  const bool isScattered = placement == test::Placement::kScattered;
  const std::string name =
      "large-" + std::to_string(bytes >> 20) + (isScattered ? "-scattered" : "-contiguous");
  return Make(name, FormatWith(test::Siblings::kBalanced, placement),
              [bytes](CompoundFileBuilder& builder) {
                builder.AddStream(kRoot, u"Large", test::GeneratedPattern(bytes));
              });
}

std::string SubStorages(int count) {
  const auto format = FormatWith(test::Siblings::kBalanced, test::Placement::kContiguous);
  return Make("storages-" + std::to_string(count), format, [count](CompoundFileBuilder& builder) {
    for (int i = 0; i < count; ++i) {
      const test::EntryIndex storage = builder.AddStorage(kRoot, NameOf(i));
      builder.AddStream(storage, u"a", test::GeneratedPattern(kSmallStream));
      builder.AddStream(storage, u"b", test::GeneratedPattern(kSmallStream));
    }
  });
}

std::string LargeFat(std::uint32_t fatSectors) {
  test::Format format;
  format.extraFatSectors = fatSectors;
  return Make("fat-" + std::to_string(fatSectors), format, [](CompoundFileBuilder& builder) {
    builder.AddStream(kRoot, u"Small", test::GeneratedPattern(kSmallStream));
  });
}

std::vector<unsigned char> PropertySet(int properties) {
  test::PropertySetBuilder builder;
  builder.Add(1, test::CodePage(1252));
  for (int i = 2; i < properties + 1; ++i) {
    const auto id = static_cast<std::uint32_t>(i);
    const std::string text = "text number " + std::to_string(i);
    builder.Add(id, i % 2 == 0 ? test::Lpstr(text) : test::Value(3, id, 4));
  }
  return builder.Build();
}

}  // namespace kelx::bench
