// Crashes in the way that is asked for: crashing_program FOLDER null|throw|stack|abort.
#include <cstdio>
#include <cstdlib>
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

void TellOfTheRest() {
  std::fputs("the rest is done\n", stderr);
  std::fflush(stderr);
}

}  // namespace

int main(int count, char** values) {
  if (count != 3) return 2;
  const std::string how = values[2];
  NRuntime::ReportCrashes("crasher", "1.2.3", values[1], TellOfTheRest);
  if (how == "null") *gNowhere = 1;
  if (how == "throw") throw std::runtime_error("nobody catches this");
  if (how == "stack") return Deeper(0);
  if (how == "abort") std::abort();
  return 2;
}
