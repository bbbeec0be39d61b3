#include <cstdlib>

#include "tests/bench/program.h"

namespace NTest {

// The command processor takes one pair of quotes off a command that begins with one.
// Paths stand in it as UTF-8.
int RunShell(const std::string& command) {
  const std::u8string text(command.begin(), command.end());
  return _wsystem(std::filesystem::path(u8"\"" + text + u8"\"").c_str());
}

}  // namespace NTest
