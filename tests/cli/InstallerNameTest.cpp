#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/cli/RunKelst.h"
#include "tests/support/CompoundFileBuilder.h"
#include "tests/support/TemporaryFile.h"

namespace kelx::test {
namespace {

struct PackedCase {
  std::u16string stored;
  std::string decoded;  ///< empty when the name is not packed
};

const std::vector<PackedCase> kCases{
    {u"Property", ""},
    {u"", ""},
    {u"\u4840", ""},
    {u"\u37FF\u4841", ""},
    {u"\u3800", "00"},
    {u"\u3801", "10"},
    {u"\u47FF", "__"},
    {u"\u47BF", "_."},
    {u"\u4800", "0"},
    {u"\u483F", "_"},
    {u"\u4840\u4801", "1"},
    {u"\u4801\u4840", "1\u4840"},
    {u"\u4840\u4840\u4801", "\u48401"},
    {u"\u4825 \u3929\u4842", "b f4\u4842"},
    {u"\x05\u480A/\\\u202E", "\\x05A\\x2F\\\\\\u202E"},
    {{0x480A, 0xD800, 0, 0xDC00}, "A\\uD800\\x00\\uDC00"},
    {std::u16string(32, 0x3800), std::string(64, '0')},
};

TEST(InstallerNameTest, OfEachUnitThatIsPackedTheCharactersAreShown) {
  CompoundFileBuilder builder;
  for (std::uint32_t i = 0; i < kCases.size(); ++i) {
    builder.AddStream(kRoot, kCases[i].stored, Bytes(i, 'x'));
  }
  const TemporaryFile file(builder.Build().bytes);
  const RunResult listed = RunKelst({"ls", "--json", file.Path()});
  const auto entries = nlohmann::json::parse(listed.out)["entries"];
  for (std::size_t i = 0; i < kCases.size(); ++i) {
    const auto& entry = entries[i + 1];
    const std::string& decoded = kCases[i].decoded;
    EXPECT_EQ(entry.value("decodedName", ""), decoded) << entry;
    const std::string path = decoded.empty() ? entry["path"].get<std::string>() : decoded;
    EXPECT_EQ(RunKelst({"cat", file.Path(), path}).out.size(), i) << path;
    EXPECT_EQ(RunKelst({"find", file.Path(), "--name", path}).exitCode, 0) << path;
  }
}

TEST(InstallerNameTest, TheSampleHasSensibleNames) {
  const std::string sample = SampleFile("installer.msi");
  std::vector<std::string> names;
  for (const std::string& line : Lines(RunKelst({"ls", sample}).out)) {
    const std::size_t bracket = line.find('(');
    if (bracket != std::string::npos) names.push_back(line.substr(bracket));
  }
  EXPECT_EQ(names,
            (std::vector<std::string>{
                "(_StringData)", "(_StringPool)", "(sample.cab)", "(AdminUISequence)",
                "(Directory)", "(AdminExecuteSequence)", "(MsiFileHash)", "(Media)", "(Component)",
                "(File)", "(InstallUISequence)", "(Feature)", "(Property)", "(AdvtExecuteSequence)",
                "(FeatureComponents)", "(InstallExecuteSequence)", "(_Columns)", "(_Tables)"}));
}

TEST(InstallerNameTest, AStoredNameIsFoundBeforeADecodedOne) {
  CompoundFileBuilder builder;
  builder.AddStream(kRoot, u"\u4840\u47E9\u4829", Bytes{'p'});  // f_f
  builder.AddStream(kRoot, u"F_F", Bytes{'c'});
  const TemporaryFile file(builder.Build().bytes);
  EXPECT_EQ(RunKelst({"cat", file.Path(), "f_f"}).out, "c");
  EXPECT_EQ(RunKelst({"cat", file.Path(), "f_f\\#1"}).out, "p");
}

}  // namespace
}  // namespace kelx::test
