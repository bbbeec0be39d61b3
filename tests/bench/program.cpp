#include "tests/bench/program.h"

namespace NTest {

std::string Quoted(const std::filesystem::path& path) {
  std::string text(1, '"');
  text.append(path.string());
  return text.append("\" ");
}

Outcome RunBench(const std::string& arguments) {
  const TestFolder folder;
  const auto output = folder / "output", errors = folder / "errors";
  const std::string command =
      Quoted(OSTREL_BENCH_PROGRAM) + arguments + " > " + Quoted(output) + "2> " + Quoted(errors);
  const int status = RunShell(command);
  return {status, ReadFile(output), ReadFile(errors)};
}

}  // namespace NTest
