#include <gmock/gmock.h>

#include <cstdlib>
#include <fstream>

#include "host/buses/log_writer.h"
#include "tests/test_folder.h"

namespace {

using testing::HasSubstr;

// can-utils is the judge of what a log is.
TEST(Log2asc, TakesALogWithEveryKindOfFrame) {
  if (std::system("command -v log2asc > /dev/null") != 0) {
    GTEST_SKIP() << "log2asc (package can-utils) is not installed";
  }
  const NTest::TestFolder folder;
  const NSdk::CanFrame frames[] = {{0x5A, {0x0F, 0xA0, 0x00}, 3},
                                   {0x80, {}, 0},
                                   {0x1ABCDEF, {1, 2, 3, 4, 5, 6, 7, 8}, 8 | NSdk::kFrameExtended},
                                   {0x705, {}, 1 | NSdk::kFrameRemote},
                                   {5, {}, NSdk::kFrameRemote | NSdk::kFrameExtended}};
  {
    NBuses::LogWriter log(folder / "all.log");
    for (const NSdk::CanFrame& frame : frames) log.Write(std::chrono::seconds(1700000000), 1, frame);
  }
  const std::string command =
      "cd '" + folder.Path().string() + "' && log2asc -I all.log -O all.asc can1 2> complaints";
  EXPECT_EQ(std::system(command.c_str()), 0);
  EXPECT_EQ(NTest::ReadFile(folder / "complaints"), "");
  const std::string converted = NTest::ReadFile(folder / "all.asc");
  for (const char* part : {"5A ", "d 3 0F A0 00", "1ABCDEFx", "705 ", "Rx   r"}) {
    EXPECT_THAT(converted, HasSubstr(part));
  }
}

}  // namespace
