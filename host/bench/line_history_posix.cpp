#include <fcntl.h>
#include <unistd.h>

#include <fstream>

#include "host/bench/line_history.h"
#include "host/bench/line_source.h"
#include "host/runtime/crash_report.h"

namespace NBench {
namespace {

void Write(const std::filesystem::path& file, const std::string& text, int how) {
  const int handle = open(file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | how, 0600);
  if (handle < 0) return;
  // A history that is cut short by a full disk is no loss to speak of.
  if (write(handle, text.data(), text.size()) < 0) {
  }
  close(handle);
}

}  // namespace

std::vector<std::string> LoadHistory(const std::filesystem::path& file) {
  std::vector<std::string> lines;
  std::ifstream stream(file);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  if (lines.size() <= kHistoryLines) return lines;
  lines.erase(lines.begin(), lines.end() - kHistoryLines);
  std::string text;
  for (const std::string& line : lines) text += line + '\n';
  Write(file, text, O_TRUNC);
  return lines;
}

void AppendHistory(const std::filesystem::path& file, const std::string& line) {
  Write(file, line + '\n', O_APPEND);
}

std::filesystem::path HistoryFile() {
  const std::filesystem::path folder = NRuntime::StateFolder();
  if (folder.empty()) return {};
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  return error ? std::filesystem::path() : folder / "shell-history";
}

}  // namespace NBench
