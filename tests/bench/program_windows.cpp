#include <cstdlib>

#include "tests/bench/program.h"

namespace NTest {

// The command processor takes one pair of quotes off a command that begins with one.
int RunShell(const std::string& command) {
  return _wsystem(std::filesystem::path("\"" + command + "\"").c_str());
}

}  // namespace NTest
