#include "host/workbench/win/recent_files.h"

#include <windows.h>

#include <shlobj.h>

#include <algorithm>
#include <fstream>
#include <string>

#include "host/runtime/text.h"

namespace NWorkbench {
namespace {

constexpr std::size_t kMostFiles = 10;

std::filesystem::path StorePath() {
  wchar_t folder[MAX_PATH];
  if (FAILED(SHGetFolderPathW(nullptr, CSIDL_APPDATA | CSIDL_FLAG_CREATE, nullptr, 0, folder))) return {};
  return std::filesystem::path(folder) / L"Ostrel" / L"recent.txt";
}

}  // namespace

// One path per line in UTF-8.
RecentFiles::RecentFiles() : mStore(StorePath()) {
  std::ifstream stream(mStore, std::ios::binary);
  for (std::string line; mFiles.size() < kMostFiles && std::getline(stream, line);) {
    if (!line.empty()) mFiles.push_back(NRuntime::ToPath(line));
  }
}

void RecentFiles::Add(const std::filesystem::path& file) {
  std::erase(mFiles, file);
  mFiles.insert(mFiles.begin(), file);
  if (mFiles.size() > kMostFiles) mFiles.pop_back();
  Write();
}

void RecentFiles::Remove(const std::filesystem::path& file) {
  std::erase(mFiles, file);
  Write();
}

// A list that cannot be kept is missed the next time, which is no reason to disturb the user now.
void RecentFiles::Write() const {
  if (mStore.empty()) return;
  std::error_code ignored;
  std::filesystem::create_directories(mStore.parent_path(), ignored);
  std::ofstream stream(mStore, std::ios::binary | std::ios::trunc);
  for (const auto& file : mFiles) stream << NRuntime::PathText(file) << '\n';
}

}  // namespace NWorkbench
