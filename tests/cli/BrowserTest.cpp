#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "tests/cli/HostileFile.h"
#include "tests/cli/RunKelst.h"
#include "tests/support/TemporaryFile.h"

namespace kelx::test {
namespace {

using testing::HasSubstr;
using testing::Not;

/// Reports and maps as a browser sees them.
class BrowserTest : public testing::Test {
 protected:
  void SetUp() override {
    if (RunProgram({"chromium", "--version"}).exitCode == 127) {
      GTEST_SKIP() << "no chromium; scripts/install-packages browser has it";
    }
  }

  /// The document after loading on standard output, and what the console has to say on standard
  /// error.
  RunResult Open(const std::string& path) const {
    RunResult result = RunProgram({"chromium", "--headless", "--no-sandbox", "--disable-gpu",
                                   "--enable-logging=stderr", "--log-level=0",
                                   "--user-data-dir=" + folder_.PathOf("profile"), "--dump-dom",
                                   "file://" + path});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    return result;
  }

  std::string Make(const char* command, const std::string& input, const char* output) const {
    EXPECT_EQ(RunKelst({command, input, "-o", folder_.PathOf(output)}).exitCode, 0);
    return folder_.PathOf(output);
  }

  TemporaryFolder folder_;
};

TEST_F(BrowserTest, ShowsAReportWithoutComplaint) {
  const RunResult page = Open(Make("report", SampleFile("metadata.doc"), "page.html"));
  EXPECT_THAT(page.err, Not(HasSubstr("CONSOLE")));
  for (const char* const part :
       {"<h1>metadata.doc</h1>", ">Facts</h2>", ">Findings</h2>", ">Map</h2>",
        ">Property sets</h2>", ">Tree</h2>", "<td>Anna Writer</td>", "<rect ", ">6,703</td>"}) {
    EXPECT_THAT(page.out, HasSubstr(part));
  }
}

TEST_F(BrowserTest, TakesHostileNamesAndValuesForText) {
  const std::string input = folder_.Write(kHostileFileName, HostileFile());
  for (const char* const command : {"report", "map"}) {
    const bool isMap = std::string_view(command) == "map";
    const RunResult page = Open(Make(command, input, isMap ? "map.svg" : "page.html"));
    EXPECT_THAT(page.err, Not(HasSubstr("CONSOLE")));
    EXPECT_THAT(page.out, HasSubstr("&lt;img src=x onerror=intruder()&gt;&amp;"));
    EXPECT_THAT(page.out, Not(testing::ContainsRegex("<(script|img|b) ")));
    EXPECT_THAT(page.out, Not(testing::ContainsRegex("<[^>\"]*intruder")));
  }
}

/// Shows too that complaints would have been seen above.
TEST_F(BrowserTest, RunsNothingThatGotIntoAReport) {
  std::string page = ReadFile(Make("report", SampleFile("cells.xls"), "page.html"));
  page.insert(page.find("<footer>"),
              "<script>document.title = 'intruder'</script><img src='x' onerror='intruder()'/>"
              "<p style='color:red'>red</p>");
  std::ofstream(folder_.PathOf("changed.html")) << page;
  const RunResult shown = Open(folder_.PathOf("changed.html"));
  EXPECT_THAT(shown.out, HasSubstr("<title>cells.xls</title>"));
  for (const char* const kind : {"inline script", "image", "inline style"}) {
    EXPECT_THAT(shown.err, testing::ContainsRegex(std::string("CONSOLE.*") + kind));
  }
}

}  // namespace
}  // namespace kelx::test
