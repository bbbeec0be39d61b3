#include <sys/wait.h>

#include <cstdlib>

#include "tests/bench/program.h"

namespace NTest {

int RunShell(const std::string& command) {
  const int result = std::system(command.c_str());
  return WIFEXITED(result) ? WEXITSTATUS(result) : -1;
}

}  // namespace NTest
