#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "ig/remembered_sequence.h"
#include "ig/settings_form.h"
#include "tests/test_folder.h"

namespace {

using NIg::SettingsFieldId;
namespace fs = std::filesystem;

TEST(SettingsForm, ChecksFieldByField) {
  const struct {
    NIg::SettingsEntry entry;
    int faultyField;  // -1: none
    const wchar_t* message;
  } rows[] = {
      {{"1", "50", "1", 2}, -1, L""},
      {{"100000", "1000000", "127", 2}, -1, L""},
      {{"0", "49", "128", {}}, 0, L"Please enter a value in the range from 1 to 100000\n"},
      {{"100001", "50", "1", 2}, 0, L"Please enter a value in the range from 1 to 100000\n"},
      {{"10", "49", "128", 2}, 1, L"Please enter a value in the range from 50 to 1000000\n"},
      {{"10", "1000001", "1", 2}, 1, L"Please enter a value in the range from 50 to 1000000\n"},
      {{"10", "50", "128", {}}, 2, L"Please enter a value in the range from 1 to 127\n"},
      {{"10", "50", "127", {}}, 3, L""},
  };
  for (const auto& row : rows) {
    NIg::GeneratorNumbers numbers;
    const auto fault = NIg::TakeSettings(row.entry, /*hasSimulationSetup=*/false, numbers);
    const NIg::SettingsEntry shown = NIg::ShowSettings(numbers);
    EXPECT_EQ(fault ? static_cast<int>(fault->field) : -1, row.faultyField) << row.entry.serviceDelay;
    EXPECT_EQ(fault ? fault->message : L"", row.message);
    EXPECT_EQ(shown.serviceDelay, fault ? "10" : row.entry.serviceDelay);
    EXPECT_EQ(shown.sdoTimeout, fault ? "5000" : row.entry.sdoTimeout);
    EXPECT_EQ(shown.sdoBlockSize, fault ? "10" : row.entry.sdoBlockSize);
    EXPECT_EQ(shown.channel, fault ? 1u : 2u);
  }
  NIg::GeneratorNumbers numbers;
  EXPECT_FALSE(NIg::TakeSettings({"10", "50", "1", 2}, /*hasSimulationSetup=*/true, numbers));
  EXPECT_EQ(numbers.channel, 1u) << "its channel is that of its place";
}

TEST(RememberedSequence, IsFoundBesideAConfigurationThatMoved) {
  const NTest::TestFolder folder;
  const fs::path there = folder / "there" / "project";
  fs::create_directories(there / "sequences");
  std::ofstream(there / "sequences" / "a.seq") << "\n";

  NIg::RememberedSequence sequence;
  EXPECT_TRUE(sequence.Resolve(folder / "c.json").empty());
  sequence.Remember(folder / "here" / "project" / "sequences" / "a.seq",
                    folder / "here" / "project" / "c.json");
  EXPECT_EQ(sequence.Resolve(there / "c.json"), there / "sequences" / "a.seq");
  EXPECT_EQ(sequence.Resolve({}), folder / "here" / "project" / "sequences" / "a.seq");

  sequence.relative = L"..\\project\\sequences\\a.seq";
  EXPECT_EQ(sequence.Resolve(there / "c.json"), there / "sequences" / "a.seq");

  // Saved under another name: the way is told from there.
  sequence.Remember(there / "sequences" / "a.seq", {});
  sequence.ConfigurationMoved(folder / "copy.json");
  EXPECT_EQ(fs::path(sequence.relative).generic_string(), "there/project/sequences/a.seq");
}

}  // namespace
