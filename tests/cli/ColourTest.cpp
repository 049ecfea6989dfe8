#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/cli/RunKelst.h"

namespace kelx::test {
namespace {

using testing::HasSubstr;
using testing::Not;

struct ColourCase {
  const char* noColour;  ///< null when the variable is not set
  const char* terminal;
  std::vector<std::string> arguments;
  StandardOutput output;
  bool isColoured;
};

TEST(ColourTest, IsForListingsOnATerminalThatWantsIt) {
  const std::vector<std::string> tree{"ls", SampleFile("objects.doc")};
  const std::vector<std::string> table{"ls", "-l", SampleFile("objects.doc")};
  const std::vector<ColourCase> cases{
      {nullptr, "xterm", tree, StandardOutput::kTerminal, true},
      {nullptr, "xterm", table, StandardOutput::kTerminal, true},
      {"", "xterm", tree, StandardOutput::kTerminal, true},
      {"0", "xterm", tree, StandardOutput::kTerminal, false},
      {nullptr, "dumb", tree, StandardOutput::kTerminal, false},
      {nullptr, "xterm", tree, StandardOutput::kFile, false},
      {nullptr, "xterm", {"ls", "-1", tree[1]}, StandardOutput::kTerminal, false},
      {nullptr, "xterm", {"ls", "--json", tree[1]}, StandardOutput::kTerminal, false},
  };
  for (const ColourCase& one : cases) {
    unsetenv("NO_COLOR");
    if (one.noColour != nullptr) setenv("NO_COLOR", one.noColour, 1);
    setenv("TERM", one.terminal, 1);
    const RunResult result = RunKelst(one.arguments, one.output);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_THAT(result.out, HasSubstr("WordDocument"));
    if (one.isColoured) {
      EXPECT_THAT(result.out, HasSubstr("\x1B[1;34m"));
      EXPECT_THAT(result.out, HasSubstr("\x1B[36m"));
      EXPECT_THAT(result.out, Not(HasSubstr("mWordDocument")));
    } else {
      EXPECT_THAT(result.out, Not(HasSubstr("\x1B")));
    }
  }
}

}  // namespace
}  // namespace kelx::test
