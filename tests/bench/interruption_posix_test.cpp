#include <gmock/gmock.h>

#include "tests/bench/program.h"

namespace {

using testing::HasSubstr;
using testing::MatchesRegex;

const std::string kProgram = NTest::Quoted(OSTREL_BENCH_PROGRAM);

class Interruption : public testing::Test {
 protected:
  void SetUp() override {
    NTest::WriteFile(folder / "it.seq",
                     R"(<CANopenIG><Sequence><PAUSE PauseMilliSec="30000" Enabled="1"/>
                        <SYNC COBID="0x81" Enabled="1"/></Sequence><CyclicMsgs>
                        <SYNC COBID="0x80" SendCycle="5" SendDelay="0" Enabled="1"/></CyclicMsgs></CANopenIG>)");
  }

  int Shell(const std::string& command) {
    return NTest::RunShell("cd " + NTest::Quoted(folder) + "&& " + command);
  }

  const NTest::TestFolder folder;
};

TEST_F(Interruption, CtrlCStopsCleanlyWithAWholeLogAndASummary) {
  for (const char* signal : {"INT", "TERM"}) {
    EXPECT_EQ(Shell(std::string("timeout --preserve-status -s ") + signal + " 1.5 " + kProgram +
                    "play it.seq --cyclic --log it.log > out.txt 2> err.txt"),
              130);
    EXPECT_THAT(NTest::ReadFile(folder / "out.txt"), HasSubstr("1 of 2 items, "));
    EXPECT_THAT(NTest::ReadFile(folder / "err.txt"), HasSubstr("stopped before the end of the sequence\n"));
    EXPECT_THAT(NTest::ReadFile(folder / "it.log"), MatchesRegex("(\\([0-9.]+\\) can1 080#\n)+"));
  }
}

TEST_F(Interruption, CtrlCIsTheEndOfAScanThatHasNoOther) {
  const std::string scan = "timeout --preserve-status -s INT 1.5 " + kProgram + "scan --device 5 ";
  EXPECT_EQ(Shell(scan + "> out.txt"), 0);
  EXPECT_THAT(NTest::ReadFile(folder / "out.txt"), HasSubstr("\n1 node, "));
  EXPECT_EQ(Shell(scan + "--for 20 > out.txt"), 130);
}

TEST_F(Interruption, AReaderThatLeavesEndsTheRunQuietly) {
  EXPECT_EQ(Shell("timeout 20 " + kProgram + "play it.seq --cyclic 2> err.txt | head -n 2 > out.txt"), 0);
  EXPECT_EQ(NTest::ReadFile(folder / "out.txt"), "  can1  080   [0] \n  can1  080   [0] \n");
}

TEST_F(Interruption, AFullDiskIsNamedAndEndsTheRun) {
  for (const std::string target :
       {"> /dev/full", "--json --for 0.2 > /dev/full", "--log /dev/full > out.txt"}) {
    SCOPED_TRACE(target);
    EXPECT_EQ(Shell("timeout 20 " + kProgram + "play it.seq --cyclic " + target + " 2> err.txt"), 1);
    EXPECT_THAT(NTest::ReadFile(folder / "err.txt"), HasSubstr("No space left on device"));
  }
}

TEST_F(Interruption, ClosedStandardFilesAreNotTakenForOthers) {
  EXPECT_EQ(Shell("timeout 20 " + kProgram + "shell <&- > out.txt"), 0);
  EXPECT_EQ(Shell("timeout 20 " + kProgram + "play it.seq --cyclic --log it.log >&- 2> err.txt"), 1);
  EXPECT_THAT(NTest::ReadFile(folder / "it.log"), MatchesRegex("(\\([0-9.]+\\) can1 080#\n)*"));
}

}  // namespace
