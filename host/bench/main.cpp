#include <stdexcept>

#include "host/bench/console.h"
#include "host/bench/options.h"
#include "host/bench/play.h"

namespace {

int Run(const std::vector<std::string>& arguments) {
  const NBench::CommandLine command = NBench::ParseCommandLine(arguments);
  if (command.play) return NBench::Play(*command.play);
  NBench::Output output;
  output.Write(command.text);
  if (!output.Reason().empty()) NBench::Complain(output.Reason());
  return output.Failed() ? NBench::kFailed : NBench::kOk;
}

}  // namespace

int main(int count, char** values) {
  NBench::PrepareConsole();
  try {
    return Run(NBench::CommandLineArguments(count, values));
  } catch (const std::exception& error) {
    NBench::Complain(error.what());
    return NBench::kBadInput;
  }
}
