#include <gmock/gmock.h>

#include "tests/bench/program.h"

namespace {

using testing::HasSubstr;

// Each kind of crash leaves a text that says what happened and where, and the program still ends badly.
TEST(CrashReport, IsLeftByEachKindOfCrash) {
  const auto folder = std::filesystem::temp_directory_path() / "ostrel-crash-report";
  const std::pair<const char*, const char*> kinds[] = {
      {"null", ""}, {"throw", "nobody catches this"}, {"stack", ""}, {"abort", ""}};
  for (const auto& [kind, word] : kinds) {
    std::filesystem::remove_all(folder);
    const std::string command = NTest::Quoted(CRASHING_PROGRAM) + " " + NTest::Quoted(folder) + " " + kind;
    const std::filesystem::path errors = folder.string() + ".err";
    EXPECT_NE(NTest::RunShell(command + " 2> " + NTest::Quoted(errors)), 0) << kind;
    EXPECT_THAT(NTest::ReadFile(errors), HasSubstr("the rest is done")) << kind;
    std::string text;
    for (const auto& file : std::filesystem::directory_iterator(folder)) {
      if (file.path().extension() == ".txt") text = NTest::ReadFile(file.path());
    }
    EXPECT_THAT(text, HasSubstr("crasher 1.2.3 has crashed")) << kind;
    EXPECT_THAT(text, HasSubstr(word)) << kind;
    EXPECT_THAT(text, HasSubstr("crashing_program")) << kind;
  }
  std::filesystem::remove_all(folder);
}

}  // namespace
