#include "host/bench/console.h"
#include "host/bench/options.h"
#include "host/runtime/crash_report.h"

namespace {

int Run(const std::vector<std::string>& arguments) {
  const NBench::CommandLine line = NBench::ParseCommandLine(arguments);
  if (line.command) return line.command->Run();
  NBench::Output output;
  output.Write(line.text);
  return output.End() ? NBench::kOk : NBench::kFailed;
}

}  // namespace

int main(int count, char** values) {
  NRuntime::ReportCrashes("ostrel-bench", OSTREL_VERSION, NRuntime::StateFolder());
  NBench::PrepareConsole();
  try {
    return Run(NBench::CommandLineArguments(count, values));
  } catch (const std::exception& error) {
    NBench::Complain(error.what());
    return NBench::kBadInput;
  }
}
