#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <iterator>
#include <thread>

#include "plugin/external_tools.h"
#include "tests/test_folder.h"

TEST(StartProgram, RunsItInItsFolderWithItsParameters) {
  const NTest::TestFolder folder;
  ASSERT_TRUE(NPlugin::StartProgram(
      {"/bin/sh", "-c \"printf '%s|' $0 $# > part && mv part done\" one \"\"", folder}));
  for (int wait = 0; wait < 500 && !std::filesystem::exists(folder / "done"); ++wait) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  EXPECT_EQ(NTest::ReadFile(folder / "done"), "one|1|");
}
