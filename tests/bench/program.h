#pragma once
// Runs a program as a user would and looks at what it leaves.

#include <filesystem>
#include <string>

#include "tests/test_folder.h"

namespace NTest {

struct Outcome {
  int status = -1;
  std::string output;
  std::string errors;
};

/// A path as an argument of a command line, with a blank behind it.
std::string Quoted(const std::filesystem::path& path);

/// Runs ostrel-bench with arguments written as on a command line.
Outcome RunBench(const std::string& arguments);

/// A command for std::system, and the status that it gives for what a program has returned; once per
/// platform.
int RunShell(const std::string& command);

}  // namespace NTest
