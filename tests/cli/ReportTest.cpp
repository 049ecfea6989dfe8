#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <functional>

#include "tests/cli/HostileFile.h"
#include "tests/cli/RunKelst.h"
#include "tests/support/CompoundFileBuilder.h"
#include "tests/support/Damage.h"
#include "tests/support/PropertySetBuilder.h"
#include "tests/support/TemporaryFile.h"

namespace kelx::test {
namespace {

using testing::HasSubstr;
using testing::Not;

std::string PageOf(const std::string& path) {
  const RunResult result = RunKelst({"report", path, "-o", "-"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.err, "");
  return result.out;
}

std::string PageOf(const CompoundFile& built) { return PageOf(TemporaryFile(built.bytes).Path()); }

TEST(ReportTest, TellsWhatInfoCheckMapPropsAndLsTell) {
  const std::string page = PageOf(SampleFile("metadata.doc"));
  for (const char* const part :
       {"<html xmlns=\"http://www.w3.org/1999/xhtml\" lang=\"en\">", "<h1>metadata.doc</h1>",
        "<span class=\"clean\">clean</span>", "<h2 id=\"facts\">Facts</h2>",
        "<th scope=\"row\">byte order</th><td>little-endian</td>",
        "<h2 id=\"findings\">Findings</h2>\n<p>Nothing is wrong with this file.</p>",
        "<h2 id=\"map\">Map</h2>\n<svg ", "<title>sectors 8 to 14: WordDocument</title>",
        "<h3 class=\"name\">\\x05SummaryInformation</h3>",
        "<td class=\"number\">4</td><td>Author</td><td>text</td><td>Anna Writer</td>",
        "<td>Megjegyzés</td><td>text</td><td>árvíztűrő tükörfúrógép</td>",
        "<caption>9,214 bytes in all streams</caption>",
        "├── </span>WordDocument</td><td>stream</td><td class=\"number\">6,703</td>"}) {
    EXPECT_TRUE(page.find(part) != std::string::npos) << part;
  }
}

TEST(ReportTest, ShowsWhatIsWrongAndIsNoFailure) {
  CompoundFileBuilder builder;
  builder.AddStream(kRoot, u"Stream", Pattern(5000));
  builder.AddStream(kRoot, u"\x05Set", Pattern(5000));
  CompoundFile built = builder.Build();
  LinkSectorToItself(built, built.layout.entries[1].sectors[4]);
  const std::string page = PageOf(built);
  EXPECT_THAT(page, HasSubstr("<span class=\"error\">2 errors, 1 warning</span>"));
  EXPECT_THAT(page, HasSubstr("<h3><span class=\"error\">error</span> chain-loops</h3>"));
  EXPECT_THAT(page, HasSubstr("<td class=\"name\">Stream</td><td>sector 6</td>"));
  EXPECT_THAT(page, HasSubstr("<h3 class=\"name\">\\x05Set</h3>\n"
                              "<p class=\"error\">is not a property set</p>"));
}

/// What is too much for a page, and what the page says then.
struct LimitCase {
  const char* name;
  std::function<CompoundFile()> build;
  std::string rest;
  std::size_t largestPage;
};

void PrintTo(const LimitCase& row, std::ostream* out) { *out << row.name; }

class ReportLimitTest : public testing::TestWithParam<LimitCase> {};

TEST_P(ReportLimitTest, CountsWhatItDoesNotShow) {
  const std::string page = PageOf(GetParam().build());
  EXPECT_THAT(page, HasSubstr("<p class=\"dim\">" + GetParam().rest + "</p>"));
  EXPECT_LT(page.size(), GetParam().largestPage);
}

CompoundFile ManyStreams(std::uint32_t count, std::u16string_view start, const Bytes& content) {
  CompoundFileBuilder builder;
  for (std::uint32_t i = 0; i < count; ++i) {
    builder.AddStream(kRoot, std::u16string(start) + char16_t(0x100 + i), content);
  }
  return builder.Build();
}

Bytes ManyProperties(std::uint32_t count, std::size_t length) {
  PropertySetBuilder set;
  for (std::uint32_t i = 0; i < count; ++i) set.Add(i + 2, Lpstr(std::string(length, '<')));
  return set.Build();
}

INSTANTIATE_TEST_SUITE_P(
    All, ReportLimitTest,
    testing::Values(
        LimitCase{"Tree", [] { return ManyStreams(2345, u"s", {}); },
                  "345 more rows; kelst ls shows all", 500'000},
        LimitCase{"Properties", [] { return ManyStreams(1, u"\x05", ManyProperties(1500, 40)); },
                  "501 more rows; kelst props shows all", 400'000},
        LimitCase{"LongValues", [] { return ManyStreams(2, u"\x05", ManyProperties(1000, 600)); },
                  "1 more property set; kelst props --all shows all", 2'500'000},
        LimitCase{"PropertySets",
                  [] { return ManyStreams(1200, u"\x05", PropertySetBuilder().Build()); },
                  "200 more property sets; kelst props --all shows all", 700'000},
        LimitCase{"Findings",
                  [] {
                    CompoundFile file = ManyStreams(50, u"s", Pattern(10));
                    for (EntryIndex i = 1; i <= 50; ++i) {
                      PatchEntry(file, i, EntryField::kColour, 9);
                    }
                    return file;
                  },
                  "40 more findings; kelst check --all shows all", 100'000}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(ReportTest, IsWellFormedWhateverTheFileHolds) {
  const TemporaryFolder folder;
  const std::string page = PageOf(folder.Write(kHostileFileName, HostileFile()));
  EXPECT_THAT(page, HasSubstr("&lt;script&gt;intruder()&lt;/script&gt;"));
  EXPECT_THAT(page, Not(testing::ContainsRegex("<[^>]*intruder")));
  EXPECT_THAT(page, Not(HasSubstr("<script")));
  std::ofstream(folder.PathOf("page.html")) << page;
  const RunResult result = RunProgram({"xmllint", "--noout", folder.PathOf("page.html")});
  if (result.exitCode == 127) GTEST_SKIP() << "no xmllint; scripts/install-packages test has it";
  EXPECT_EQ(result.exitCode, 0) << result.err;
}

/// The Base64 of bytes given in hexadecimal digits, a multiple of 3 bytes less one.
std::string Base64(const std::string& digits) {
  constexpr std::string_view kLetters =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (std::size_t at = 0; at < digits.size(); at += 3) {  // three digits make two letters
    std::string part = digits.substr(at, 3);
    part.resize(3, '0');
    const unsigned long bits = std::stoul(part, nullptr, 16);
    text += {kLetters[bits >> 6], kLetters[bits & 63]};
  }
  return text.substr(0, 43) + "=";
}

TEST(ReportTest, AllowsItsOwnStyleSheetAlone) {
  const std::string page = PageOf(SampleFile("cells.xls"));
  const std::size_t start = page.find("<style>") + 7;
  const TemporaryFolder folder;
  std::ofstream(folder.PathOf("css")) << page.substr(start, page.find("</style>") - start);
  const RunResult sum = RunProgram({"sha256sum", folder.PathOf("css")});
  EXPECT_THAT(
      page, HasSubstr("content=\"default-src 'none'; style-src 'sha256-" +
                      Base64(sum.out.substr(0, 64)) + "'; base-uri 'none'; form-action 'none'\""));
  EXPECT_THAT(page, Not(HasSubstr(" style=")));
}

}  // namespace
}  // namespace kelx::test
