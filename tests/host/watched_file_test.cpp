#include "host/runtime/watched_file.h"

#include <gmock/gmock.h>

#include "tests/test_folder.h"

namespace {

using NRuntime::WatchedFile;
using Change = WatchedFile::Change;
namespace fs = std::filesystem;
using std::chrono::seconds;

constexpr std::chrono::milliseconds kSettled{1000};

class WatchedFiles : public testing::Test {
 protected:
  // Each time with a later time than before, however coarse the clock of the disk.
  void Write(const char* text) {
    NTest::WriteFile(mPath, text);
    fs::last_write_time(mPath, mTime += seconds(1));
  }
  void Remove() { fs::remove_all(mPath); }

  const NTest::TestFolder mFolder;
  const fs::path mPath = mFolder / "watched ä.json";
  fs::file_time_type mTime = fs::file_time_type::clock::now();
};

TEST_F(WatchedFiles, TellEachChangeOfContentsOnce) {
  Write("first");
  WatchedFile watched(mPath);
  const struct {
    const char* what;
    std::function<void()> act;
    Change expected;
  } steps[] = {
      {"nothing", [] {}, Change::None},
      {"touched", [&] { Write("first"); }, Change::None},
      {"as long as before", [&] { Write("other"); }, Change::Changed},
      {"back again", [&] { Write("first"); }, Change::Changed},
      {"written here",
       [&] {
         Write("own");
         watched.Accept();
       },
       Change::None},
      {"removed", [&] { Remove(); }, Change::Vanished},
      {"there again, the same", [&] { Write("own"); }, Change::None},
      {"a folder in its place",
       [&] {
         Remove();
         fs::create_directory(mPath);
       },
       Change::Vanished},
      {"there again, another",
       [&] {
         Remove();
         Write("new");
       },
       Change::Changed},
      {"empty", [&] { Write(""); }, Change::Changed},
  };
  WatchedFile::Moment now{};
  for (const auto& [what, act, expected] : steps) {
    act();
    EXPECT_EQ(watched.Look(now), Change::None) << what << ": it may not be finished";
    EXPECT_EQ(watched.Look(now += kSettled), expected) << what;
    EXPECT_EQ(watched.Look(now += kSettled), Change::None) << what << ": once";
  }
}

TEST_F(WatchedFiles, AreLeftAloneWhileTheyAreWritten) {
  WatchedFile watched(mPath);  // not there yet
  WatchedFile::Moment now{};
  for (const char* half : {"h", "ha", "hal", "half"}) {
    Write(half);
    EXPECT_EQ(watched.Look(now), Change::None) << half;
    EXPECT_EQ(watched.Look(now += kSettled / 2), Change::None) << half;
  }
  EXPECT_EQ(watched.Look(now += kSettled / 2), Change::Changed);
  // Replaced in two steps, as some editors do.
  Remove();
  EXPECT_EQ(watched.Look(now), Change::None);
  Write("whole");
  EXPECT_EQ(watched.Look(now += kSettled), Change::None);
  EXPECT_EQ(watched.Look(now += kSettled), Change::Changed);
}

}  // namespace
