#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>

#include "tests/cli/RunKelst.h"
#include "tests/support/CompoundFileBuilder.h"
#include "tests/support/Damage.h"
#include "tests/support/TemporaryFile.h"

namespace kelx::test {
namespace {

/// The arguments behind file and stream, and what comes of them.
struct HexdumpCase {
  std::vector<std::string> arguments;
  std::string out;
  std::string err;  ///< after the names
};

void ExpectDumps(const std::string& path, const std::string& stream,
                 const std::vector<HexdumpCase>& cases) {
  for (const HexdumpCase& one : cases) {
    std::vector<std::string> arguments{"hexdump", path, stream};
    arguments.insert(arguments.end(), one.arguments.begin(), one.arguments.end());
    const RunResult result = RunKelst(arguments);
    const std::string where = "kelst: " + path + ": " + stream + ": ";
    EXPECT_EQ(result.out, one.out) << testing::PrintToString(one.arguments);
    EXPECT_EQ(result.err, one.err.empty() ? "" : where + one.err + '\n');
    EXPECT_EQ(result.exitCode, one.err.empty() ? 0 : 1);
  }
}

TEST(HexdumpTest, ShowsRowsOfTheRange) {
  CompoundFileBuilder builder;
  builder.AddStream(kRoot, u"s",
                    Bytes{0x00, 0x1F, ' ', '~', 0x7F, 0x80, 0xFF, 'a', 'b', 'c', 'd', 'e', 0x0A,
                          0x0D, 0x1B, '|', 'x', 'y'});
  builder.AddStream(kRoot, u"none", Bytes());
  const TemporaryFile file(builder.Build().bytes);
  const std::string first =
      "00000000  00 1f 20 7e 7f 80 ff 61  62 63 64 65 0a 0d 1b 7c  |.. ~...abcde...||\n";
  const std::string last = "00000010  78 79                                             |xy|\n";
  ExpectDumps(file.Path(), "s",
              {{{}, first + last, ""},
               {{"--length", "16"}, first, ""},
               {{"--length", "0"}, "", ""},
               {{"--offset", "0x10"}, last, ""},
               {{"--offset", "010", "--length", "0XFFFFFFFFFFFFFFFF"},
                "0000000a  64 65 0a 0d 1b 7c 78 79                           |de...|xy|\n",
                ""},
               {{"--offset", "18"}, "", ""},
               {{"--offset", "19"}, "", "offset 19 is beyond the end (18 bytes)"}});
  ExpectDumps(file.Path(), "none",
              {{{}, "", ""}, {{"--offset", "1"}, "", "offset 1 is beyond the end (0 bytes)"}});
}

TEST(HexdumpTest, DamageBehindTheRangeIsNone) {
  CompoundFileBuilder builder;
  const EntryIndex stream = builder.AddStream(kRoot, u"s", Bytes(70'000, 'a'));
  CompoundFile damaged = builder.Build();
  LinkSector(damaged, damaged.layout.entries[stream].sectors[1], kEndOfChain);
  const TemporaryFile file(damaged.bytes);
  const std::string row = "000003ff  61                                                |a|\n";
  const std::string problem = "damaged: only 1,024 of 70,000 bytes are there";
  ExpectDumps(file.Path(), "s",
              {{{"--offset", "1023", "--length", "1"}, row, ""},
               {{"--offset", "1023", "--length", "2"}, row, problem},
               {{"--offset", "60000", "--length", "2"}, "", problem}});
}

std::string Text(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }

std::string Hex(const std::string& bytes) {
  std::ostringstream text;
  text << ' ' << std::hex << std::setfill('0');
  for (const unsigned char byte : bytes) text << ' ' << std::setw(2) << unsigned{byte};
  return text.str() + ' ';
}

// Large streams are read in pieces of 1 MiB.
TEST(LargeStreamTest, PiecesComeInOrderAndEndWhereTheChainDoes) {
  constexpr std::size_t kPiece = std::size_t{1} << 20;
  const std::string content = Text(Pattern(2 * kPiece + 5));
  for (const Format& format : {Format{}, Format{.placement = Placement::kScattered},
                               Format{.sectorSize = 4096, .byteOrder = ByteOrder::kBig}}) {
    CompoundFileBuilder builder(format);
    const EntryIndex stream = builder.AddStream(kRoot, u"s", Pattern(content.size()));
    CompoundFile built = builder.Build();
    const TemporaryFile file(built.bytes);
    EXPECT_TRUE(RunKelst({"cat", file.Path(), "s"}).out == content);
    for (const std::size_t offset : {kPiece - 2, kPiece, 2 * kPiece - 1, 2 * kPiece}) {
      const RunResult result = RunKelst(
          {"hexdump", file.Path(), "s", "--offset", std::to_string(offset), "--length", "5"});
      EXPECT_EQ(result.out.substr(8, 17), Hex(content.substr(offset, 5))) << offset;
    }
    const auto& sectors = built.layout.entries[stream].sectors;
    for (const std::size_t held : {kPiece + format.sectorSize, kPiece}) {
      LinkSector(built, sectors[held / format.sectorSize - 1], kEndOfChain);
      const TemporaryFile cut(built.bytes);
      const RunResult result = RunKelst({"cat", cut.Path(), "s"});
      EXPECT_EQ(result.exitCode, 1);
      EXPECT_TRUE(result.out == content.substr(0, held)) << held;
    }
  }
}

}  // namespace
}  // namespace kelx::test
