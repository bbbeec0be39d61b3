#include <gmock/gmock.h>

#include <algorithm>

#include "tests/bench/program.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

const std::string kGoodFile = NTest::Quoted(OSTREL_SOURCE_DIR "/examples/first-steps.seq");

class BadInput : public testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(folder / "folder");
    NTest::WriteFile(folder / "broken.seq", "<CANopenIG><Sequence>");
    NTest::WriteFile(folder / "empty.seq", "");
    NTest::WriteFile(folder / "text.hpi", std::string(5000, 'x'));
  }

  std::string In(const std::string& name) const { return NTest::Quoted(folder / name); }

  // One line on standard error that names what is at fault, nothing else anywhere.
  void Expect(const std::string& arguments, const std::string& named) {
    SCOPED_TRACE(arguments);
    const NTest::Outcome outcome = NTest::RunBench(arguments);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors, StartsWith("ostrel-bench: "));
    EXPECT_THAT(outcome.errors, HasSubstr(named));
    EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1) << outcome.errors;
    EXPECT_FALSE(std::filesystem::exists(folder / "new.log"));
  }

  const NTest::TestFolder folder;
};

TEST_F(BadInput, OnTheCommandLine) {
  const std::pair<const char*, const char*> cases[] = {
      {"--can 1=serial", "unknown kind \"serial\""},
      {"--can 1=virtual,rate=125000", "\"rate\""},
      {"--can 0=virtual", "--can 0=virtual"},
      {"--can virtual", "--can virtual"},
      {"--can 1=virtual --can 1=virtual", "channel 1 is given twice"},
      {"--channel 2", "--channel 2"},
      {"--can 3=virtual --channel 1", "(channel: 3)"},
      {"--channel one", "--channel one"},
      {"--for soon", "--for soon"},
      {"--for -1", "--for -1"},
      {"--for 0", "--for 0"},
      {"--for nan", "--for nan"},
      {"--for inf", "--for inf"},
      {"--for 5s", "--for 5s"},
      {"--for", "--for"},
      {"--delay 0", "--delay 0"},
      {"--delay 100001", "--delay 100001"},
      {"--delay 4294967297", "--delay 4294967297"},
      {"--variant other", "--variant other"},
      {"--device 0", "device \"0\""},
      {"--device 5 --device 5", "--device 5"},
      {"--frob", "--frob"},
      {"second.seq", "second.seq"},
  };
  for (const auto& [options, named] : cases) {
    Expect("play " + kGoodFile + "--log " + In("new.log") + options, named);
  }
  Expect("", "--help");
  Expect("sing", "sing");
  Expect("play", "FILE.seq");
}

TEST_F(BadInput, OfAScan) {
  const std::pair<std::string, const char*> cases[] = {
      {"--can 1=serial", "unknown kind \"serial\""},
      {"--channel 2", "--channel 2"},
      {"--for soon", "--for soon"},
      {"--device 128", "device \"128\""},
      {"--variant other", "--variant other"},
      {"it.seq", "it.seq"},
      {"--log " + In("folder"), "folder: cannot be created"},
      {"--module " + In("none.hpi"), "none.hpi: no such module"},
      {"--module " + NTest::Quoted(FAULTY_MODULE_5),
       "\"Insert.CANopenScanner\": the module has none of this name"},
  };
  for (const auto& [options, named] : cases) Expect("scan " + options, named);
}

TEST_F(BadInput, InFiles) {
  const std::string log = "--log " + In("new.log");
  Expect("play " + In("none.seq") + log, "none.seq: no such file");
  Expect("play " + In("folder") + log, "folder: a directory");
  Expect("play " + In("broken.seq") + log, "broken.seq: ");
  Expect("play " + In("empty.seq") + log, "empty.seq: ");
  Expect("play " + kGoodFile + "--log " + In("missing/new.log"), "new.log: cannot be created");
  Expect("play " + kGoodFile + "--log " + In("folder"), "folder: cannot be created");
}

TEST_F(BadInput, ALogNeverReplacesWhatIsPlayed) {
  NTest::WriteFile(folder / "mine.seq", NTest::ReadFile(OSTREL_SOURCE_DIR "/examples/first-steps.seq"));
  NTest::WriteFile(folder / "mine.log", "(1.000000) can1 123#11\n");
  const std::string sequence = NTest::ReadFile(folder / "mine.seq");
  const std::string replay = " --can " + NTest::Quoted("1=replay:" + (folder / "mine.log").string());
  Expect("play " + In("mine.seq") + "--log " + In("mine.seq"), "mine.seq");
  Expect("play " + In("mine.seq") + "--log " + In("mine.log") + replay, "mine.log");
  Expect("scan --log " + In("mine.log") + replay, "mine.log");
  EXPECT_EQ(NTest::ReadFile(folder / "mine.seq"), sequence);
  EXPECT_EQ(NTest::ReadFile(folder / "mine.log"), "(1.000000) can1 123#11\n");
}

TEST_F(BadInput, InModules) {
  const std::pair<std::string, const char*> cases[] = {
      {In("none.hpi"), "none.hpi: no such module"},
      {In("folder"), "a directory"},
      {In("text.hpi"), "text.hpi: not a module"},
      {NTest::Quoted(FAULTY_MODULE_1), "does not export DllCanUnloadNow"},
      {NTest::Quoted(FAULTY_MODULE_2), "has no class \"HarlowPlugIn.PlugIn\""},
      {NTest::Quoted(FAULTY_MODULE_3), "has no factory for \"HarlowPlugIn.PlugIn\""},
      {NTest::Quoted(FAULTY_MODULE_4), "is not a plug-in object"},
      {NTest::Quoted(FAULTY_MODULE_6), "the plug-in object refuses this host"},
      {NTest::Quoted(FAULTY_MODULE_5), "\"Insert.CANopenIG\": the module has none of this name"},
  };
  for (const auto& [module, named] : cases) {
    Expect("play " + kGoodFile + "--module " + module + " --log " + In("new.log"), named);
  }
}

}  // namespace
