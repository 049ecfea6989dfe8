#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "tests/support/CompoundFileBuilder.h"
#include "tests/support/PropertySetBuilder.h"

// Writes the seeds of the fuzz targets: small files that hold one of everything.
// usage: fuzz_seeds CORPUS

namespace {

using namespace kelx::test;  // NOLINT: the words of the builders

void Write(const std::filesystem::path& path, const Bytes& bytes) {
  std::filesystem::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
}

Bytes OneSection() {
  return PropertySetBuilder()
      .Add(1, CodePage(1252))
      .Add(0, Dictionary(std::vector<std::pair<std::uint32_t, std::string>>{{2, "Name"}, {3, "x"}}))
      .Add(2, Lpstr("text"))
      .Add(3, Lpwstr(u"wide"))
      .Add(4, Value(3, 42, 4))
      .Add(5, Value(5, 0x3FF0000000000000, 8))
      .Add(6, Value(64, 132'000'000'000'000'000, 8))
      .Add(7, Value(11, 0xFFFF, 2))
      .Build();
}

/// Names in UTF-16, a second section, and properties that share a value.
Bytes TwoSections() {
  return PropertySetBuilder()
      .Add(1, CodePage(1200))
      .Add(0,
           Dictionary(std::vector<std::pair<std::uint32_t, std::u16string>>{{2, u"Nom"}, {3, u""}}))
      .Add(2, Lpstr({"t\0e\0x\0t\0", 8}))
      .AddShared(3, 2)
      .Section(kUserDefinedId, 8)
      .Add(1, CodePage(65001))
      .Add(2, Value(0x1000 + 30, Join({Little(2, 4), Little(4, 4), Little(0x636261, 4)})))
      .AddAt(3, 0xFFFFFFF0)
      .Build();
}

Bytes File(Format format) {
  CompoundFileBuilder builder(format);
  builder.AddStream(kRoot, u"\x05SummaryInformation", OneSection());
  builder.AddStream(kRoot, u"large", Pattern(4500));
  const EntryIndex inner = builder.AddStorage(kRoot, u"Inner");
  builder.AddStream(inner, u"\x05Set", OneSection());
  builder.AddStream(inner,
                    u"\x05"
                    u"DocumentSummaryInformation",
                    TwoSections());
  builder.AddStream(inner, u"small", Pattern(150));
  builder.AddStream(inner, u"empty", Bytes{});
  return builder.Build().bytes;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const std::filesystem::path corpus(argv[1]);
  Format format;
  Write(corpus / "compound_file" / "plain", File(format));
  format.placement = Placement::kScattered;
  format.siblings = Siblings::kRightList;
  format.fatSectorsInHeader = 0;
  Write(corpus / "compound_file" / "scattered-difat", File(format));
  format = {};
  format.byteOrder = ByteOrder::kBig;
  Write(corpus / "compound_file" / "big-endian", File(format));
  format = {};
  format.sectorSize = 4096;
  Write(corpus / "compound_file" / "long-sectors", File(format));
  Write(corpus / "property_stream" / "one-section", OneSection());
  Write(corpus / "property_stream" / "two-sections", TwoSections());
  Write(corpus / "entry_name" / "name", Bytes{'R', 0, 'o', 0, '/', 0, 5, 0, 0, 0xD8, '\\', 0});
  return 0;
}
