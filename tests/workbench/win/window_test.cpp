// The program's windows as its user drives them.

#include <gmock/gmock.h>

#include "host/workbench/win/command_ids.h"
#include "tests/workbench/win/program.h"

namespace {

using namespace NWorkbenchTest;
using namespace NWorkbench;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

constexpr char kVirtual[] = R"({"number": 1, "bus": "virtual,bitrate=125000"})";
constexpr char kDevice[] = R"(, "devices": [{"channel": 1, "node": 5}, {"channel": 1, "node": 9}])";
constexpr char kScanners[] =
    R"(, "blocks": [{"progId": "HarlowPlugIn.CANopenScanner", "settings": {"Name": "First"}},
                    {"progId": "HarlowPlugIn.CANopenScanner", "settings": {"Name": "Second"}}])";
constexpr int kInsertMenu = 1;

TEST(Workbench, InsertsMeasuresSavesAndOpensAgain) {
  const auto file = WriteConfiguration("whole.json", kVirtual, kDevice);
  {
    Program program(file);
    ASSERT_TRUE(program.CommandOfMenu(kInsertMenu, L"Scanner"));
    EXPECT_TRUE(program.Wait([&] { return program.SetupLines().size() == 4; }));
    program.Command(kMeasureStart);
    EXPECT_TRUE(program.Wait([&] { return program.TraceRows() == 2; })) << "both devices boot";
    EXPECT_THAT(program.Status(0), HasSubstr(L"Measuring"));
    EXPECT_TRUE(program.Wait([&] { return program.Status(2).find(L"CAN 1: ") == 0; }))
        << "the load of the bus";
    program.Command(kMeasureStop);
    EXPECT_TRUE(program.Wait([&] { return program.Status(0) == L"Stopped"; }));
    program.Command(kFileSave);
    EXPECT_THAT(program.Messages(), testing::IsEmpty());
  }
  EXPECT_THAT(ReadFile(file), HasSubstr("HarlowPlugIn.CANopenScanner"));
  Program again(file);
  EXPECT_TRUE(again.Wait([&] { return again.SetupLines().size() == 4; }));
}

TEST(Workbench, SetupsAreThoseOfTheVariantAndTheLanguage) {
  Program program(WriteConfiguration("variants.json", kVirtual, kScanners));
  EXPECT_THAT(program.SetupLines(), testing::ElementsAre(L"Simulation setup", L"Network CAN 1",
                                                         L"Measurement setup", L"First", L"Second"));
  program.Command(kOptionsTesmond);
  EXPECT_TRUE(program.Wait([&] { return program.SetupLines().size() == 4; }));
  EXPECT_THAT(program.SetupLines(),
              testing::ElementsAre(L"Measurement setup", L"Send line", L"First", L"Second"));
  program.Command(kOptionsGerman);
  EXPECT_TRUE(program.Wait([&] { return program.SetupLines().front() == L"Messaufbau"; }));
  EXPECT_EQ(program.SetupLines().size(), 4u);
  const Answers no(IDNO);
  SendMessageW(program.Main(), WM_CLOSE, 0, 0);
  EXPECT_TRUE(program.IsClosed());
}

TEST(Workbench, ChangesAreAskedFor) {
  const auto file = WriteConfiguration("changes.json", kVirtual);
  Program program(file);
  {
    Answers cancel(IDCANCEL);
    program.Command(kOptionsHexadecimal);
    SendMessageW(program.Main(), WM_CLOSE, 0, 0);
    EXPECT_FALSE(program.IsClosed());
    EXPECT_THAT(cancel.Texts(), HasSubstr(L"changes.json"));
  }
  Answers yes(IDYES);
  SendMessageW(program.Main(), WM_CLOSE, 0, 0);
  EXPECT_TRUE(program.IsClosed());
  EXPECT_THAT(ReadFile(file), HasSubstr("\"numberBase\": 16"));
}

}  // namespace
