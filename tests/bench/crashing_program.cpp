// Crashes in the way that is asked for: crashing_program FOLDER null|throw|stack.
#include <stdexcept>
#include <string>

#include "host/runtime/crash_report.h"

namespace {

volatile int* volatile gNowhere = nullptr;

int Deeper(int depth) {
  volatile char room[4096] = {};
  room[0] = static_cast<char>(depth);
  return depth < 0 ? 0 : Deeper(depth + 1) + room[0];
}

}  // namespace

int main(int count, char** values) {
  if (count != 3) return 2;
  const std::string how = values[2];
  NRuntime::ReportCrashes("crasher", "1.2.3", values[1]);
  if (how == "null") *gNowhere = 1;
  if (how == "throw") throw std::runtime_error("nobody catches this");
  if (how == "stack") return Deeper(0);
  return 2;
}
