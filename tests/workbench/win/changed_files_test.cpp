// Files that another program changes while the workbench has them open.

#include <gmock/gmock.h>

#include "host/workbench/win/command_ids.h"
#include "sdk/generator.h"
#include "sdk/unsaved_work.h"
#include "tests/test_folder.h"
#include "tests/windows/window_driver.h"
#include "tests/workbench/win/program.h"

namespace {

using namespace NWorkbenchTest;
using namespace NWorkbench;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

std::string Configuration(int base, const char* more = "") {
  return R"({"format": 1, "variant": "halvard", "language": 1, "numberBase": )" + std::to_string(base) +
         R"(, "channels": [{"number": 1, "bus": "virtual"}])" + more + "}";
}

std::string Sequence(int count) {
  std::string items;
  for (int number = 0; number < count; ++number) items += R"(<SYNC COBID="0x80" Enabled="1"/>)";
  return R"(<?xml version="1.0"?><CANopenIG><Sequence>)" + items + "</Sequence><CyclicMsgs/></CANopenIG>";
}

/// Changes the file from outside; what was asked then.
std::wstring AskedWhen(Program& program, const std::filesystem::path& file, const std::string& text,
                       int answer, const std::function<bool()>& until) {
  Answers answers(answer);
  NTest::WriteFile(file, text);
  EXPECT_TRUE(program.Wait([&] { return answers.HasAnswered() && until(); }));
  return answers.Texts();
}

bool Always() { return true; }

TEST(WorkbenchChangedFiles, AConfigurationIsReloadedWhenItsUserWantsIt) {
  const NTest::TestFolder folder;
  const auto file = NTest::WriteFile(folder / "plant.json", Configuration(10));
  Program program(file);
  program.Command(kOptionsLargeIcons);
  program.Command(kFileSave);
  ASSERT_TRUE(program.Wait([&] { return program.Status(3) == L"Dec"; }));
  EXPECT_THAT(AskedWhen(program, file, Configuration(16), IDNO, Always),
              AllOf(HasSubstr(L"plant.json\nwas changed by another program"), Not(HasSubstr(L"lost"))))
      << "the program's own saving is no change";
  EXPECT_EQ(program.Status(3), L"Dec");
  program.Command(kOptionsTesmond);
  // The first box asks, the second one says that it cannot be read.
  EXPECT_THAT(AskedWhen(program, file, "{", IDYES, [&] { return program.Host().IsModified(); }),
              HasSubstr(L"lost"));
  EXPECT_EQ(program.Host().Settings().variant, NSdk::kHostTesmond) << "what is open stays";
  AskedWhen(program, file, Configuration(16), IDYES, [&] { return program.Status(3) == L"Hex"; });
  EXPECT_EQ(program.Host().Settings().variant, NSdk::kHostHalvard);
  EXPECT_THAT(program.Messages(), testing::IsEmpty());
}

TEST(WorkbenchChangedFiles, ASequenceWaitsForTheEndOfTheMeasurement) {
  const NTest::TestFolder folder;
  const auto sequence = NTest::WriteFile(folder / "line.seq", Sequence(1));
  Program program(NTest::WriteFile(folder / "plant.json", Configuration(16, R"(, "blocks": [
      {"progId": "HarlowPlugIn.CANopenIG", "settings": {"Name": "Sender", "LastCOIGSequenceRel": "line.seq"},
       "window": {"x": 300, "y": 0, "width": 600, "height": 400}}])")));
  const auto block = [&] { return NRuntime::Query<NSdk::IGenerator>(program.Host().Blocks().at(0).object); };
  const auto count = [&] {
    std::uint32_t items = 0;
    block()->GetItemCount(NSdk::kSequenceList, &items);
    return items;
  };
  ASSERT_TRUE(program.Wait([&] { return count() == 1; }));
  program.Command(kMeasureStart);
  ASSERT_TRUE(program.Wait([&] { return program.Status(0).find(L"Measuring") == 0; }));
  NTest::WriteFile(sequence, Sequence(2));
  ASSERT_TRUE(program.Wait([&] { return !program.Messages().empty(); }));
  EXPECT_THAT(program.Messages(), ElementsAre(HasSubstr(L"Once the measurement has stopped")));
  {
    Answers yes(IDYES);
    program.Command(kMeasureStop);
    EXPECT_TRUE(program.Wait([&] { return count() == 2; }));
    EXPECT_THAT(yes.Texts(), HasSubstr(L"line.seq\nwas changed"));
  }
  // Unsaved lists, and a file that is none.
  const auto copy = NTest::WriteFile(folder / "copy.seq", Sequence(3));
  NRuntime::Query<NSdk::IWorkCopy>(program.Host().Blocks().at(0).object)->TakeCopy(copy.wstring().c_str());
  EXPECT_THAT(AskedWhen(program, sequence, "<nothing", IDYES, Always), HasSubstr(L"lost"));
  EXPECT_EQ(count(), 3u);
  block()->SaveSequence(sequence.wstring().c_str(), nullptr);
  NTest::PumpFor(100);  // the program learns of its own saving
  std::filesystem::remove(sequence);
  EXPECT_TRUE(program.Wait([&] { return program.Messages().size() == 2; }));
  EXPECT_THAT(program.Messages().back(), HasSubstr(L"no longer there"));
}

// What a block changes of itself while it is opened is no change of the user's.
TEST(WorkbenchChangedFiles, DescriptionsThatADatabaseNamesAreWatched) {
  const NTest::TestFolder folder;
  const std::filesystem::path example = OSTREL_SOURCE_DIR "/examples/plant";
  for (const char* name : {"plant.dbc", "valves.dcf", "spindle.dcf", "plant.seq"})
    NTest::WriteFile(folder / name, NTest::ReadFile(example / name));
  Program program(NTest::WriteFile(folder / "plant.json", R"({"format": 1, "variant": "halvard",
      "language": 1, "numberBase": 10,
      "channels": [{"number": 1, "bus": "virtual", "databases": ["plant.dbc"]}],
      "blocks": [{"progId": "HarlowPlugIn.CANopenIG", "settings": {"LastCOIGSequenceRel": "plant.seq"},
                  "window": {"x": 0, "y": 0, "width": 500, "height": 300, "open": true}},
                 {"progId": "HarlowPlugIn.CANopenScanner", "settings": {},
                  "window": {"x": 0, "y": 0, "width": 500, "height": 300, "open": true}}]})"));
  NTest::PumpFor(2500);  // the generator loads its file, and the program looks at its files once
  EXPECT_FALSE(program.Host().IsModified());
  const auto file = folder / "valves.dcf";
  EXPECT_THAT(AskedWhen(program, file, NTest::ReadFile(file) + "\n", IDYES, Always),
              HasSubstr(L"valves.dcf\nwas changed by another program"));
  EXPECT_THAT(program.Messages(), testing::IsEmpty());
}

}  // namespace
