#include "tests/bench/program.h"

#include <gtest/gtest.h>

#include <fstream>

namespace NTest {

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void WriteFile(const std::filesystem::path& path, const std::string& content) {
  std::ofstream(path, std::ios::binary) << content;
}

std::string Quoted(const std::filesystem::path& path) {
  std::string text(1, '"');
  text.append(path.string());
  return text.append("\" ");
}

Outcome RunBench(const std::string& arguments, const std::filesystem::path& folder) {
  // Tests that run side by side may share a folder, and a program that has ended may hold its files a little
  // longer.
  static int run = 0;
  const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
  const std::string name =
      std::string("ostrel-") + test.test_suite_name() + '-' + test.name() + '-' + std::to_string(++run);
  const auto output = folder / (name + ".out"), errors = folder / (name + ".err");
  const std::string command =
      Quoted(OSTREL_BENCH_PROGRAM) + arguments + " > " + Quoted(output) + "2> " + Quoted(errors);
  const int status = RunShell(command);
  const Outcome outcome = {status, ReadFile(output), ReadFile(errors)};
  std::filesystem::remove(output);
  std::filesystem::remove(errors);
  return outcome;
}

}  // namespace NTest
