#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <iterator>
#include <thread>

#include "plugin/external_tools.h"

TEST(StartProgram, RunsItInItsFolderWithItsParameters) {
  const std::filesystem::path folder = std::filesystem::temp_directory_path() / "ostrel start test";
  std::filesystem::create_directories(folder);
  ASSERT_TRUE(NPlugin::StartProgram(
      {"/bin/sh", "-c \"printf '%s|' $0 $# > part && mv part done\" one \"\"", folder}));
  for (int wait = 0; wait < 500 && !std::filesystem::exists(folder / "done"); ++wait) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  std::ifstream stream(folder / "done");
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(stream), {}), "one|1|");
  std::filesystem::remove_all(folder);
}
