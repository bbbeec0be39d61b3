#include <sys/wait.h>
#include <unistd.h>

#include <vector>

#include "plugin/external_tools.h"

namespace NPlugin {
namespace {

// Blanks part the parameters, but not between double quotation marks.
std::vector<std::string> Split(const std::string& parameters) {
  std::vector<std::string> words;
  bool inWord = false;
  bool quoted = false;
  for (const char character : parameters) {
    if (character == ' ' && !quoted) {
      inWord = false;
      continue;
    }
    if (!inWord) words.emplace_back();
    inWord = true;
    if (character == '"') {
      quoted = !quoted;
    } else {
      words.back() += character;
    }
  }
  return words;
}

}  // namespace

// Nobody waits for the program: it becomes a child of the system, not of the host.
bool StartProgram(const ProgramStart& start) {
  if (access(start.program.c_str(), X_OK) != 0) return false;
  std::vector<std::string> words = Split(start.parameters);
  words.insert(words.begin(), start.program.string());
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);

  const pid_t child = fork();
  if (child < 0) return false;
  if (child == 0) {
    if (fork() != 0) _exit(0);
    setsid();
    if (start.folder.empty() || chdir(start.folder.c_str()) == 0) execv(arguments[0], arguments.data());
    _exit(127);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return true;
}

}  // namespace NPlugin
