#include "host/workbench/rescue_folder.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>

#include "host/configuration/replace_file.h"
#include "host/runtime/file_text.h"
#include "host/runtime/text.h"

namespace NWorkbench {
namespace {

namespace fs = std::filesystem;

constexpr char kLockFile[] = "lock";
constexpr char kContentsFile[] = "contents.txt";
constexpr char kFirstLine[] = "ostrel rescue 1";
constexpr char kConfiguration[] = "configuration.json";
constexpr std::size_t kLargestContents = 64 * 1024;

[[noreturn]] void Fail(const fs::path& file, const std::string& reason) {
  throw std::runtime_error(NRuntime::PathText(file) + ": " + reason);
}

std::string BlockFile(std::size_t position) { return "block-" + std::to_string(position); }

// The rest of a line behind its first word.
std::string RestOf(std::istringstream& line) {
  std::string text;
  std::getline(line >> std::ws, text);
  return text;
}

}  // namespace

RescueFolder::RescueFolder(fs::path root, unsigned long process) {
  const std::string name = std::to_string(process);
  std::error_code ignored;
  mFolder = root / name;
  for (int number = 2; fs::exists(mFolder, ignored); ++number)
    mFolder = root / (name + "-" + std::to_string(number));
}

bool RescueFolder::IsComplete() const {
  std::error_code ignored;
  return fs::is_regular_file(mFolder / kContentsFile, ignored);
}

// A process that ended before it had kept anything has left an empty folder.
std::vector<RescueFolder> RescueFolder::FindLeft(const fs::path& root) {
  std::vector<RescueFolder> found;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(root, error)) {
    RescueFolder folder(entry.path());
    if (!fs::is_directory(folder.mFolder, error) || !folder.mLock.Take(folder.mFolder / kLockFile)) continue;
    if (folder.IsComplete()) {
      found.push_back(std::move(folder));
    } else {
      folder.Discard();
    }
  }
  std::sort(found.begin(), found.end(),
            [](const RescueFolder& one, const RescueFolder& other) { return one.Time() > other.Time(); });
  return found;
}

bool RescueFolder::IsLeft(const fs::path& root, const std::string& name) {
  return RescueFolder(root / fs::path(name).filename()).IsComplete();
}

std::optional<RescueFolder> RescueFolder::Claim(const fs::path& root, const std::string& name) {
  RescueFolder folder(root / fs::path(name).filename());
  if (!folder.IsComplete() || !folder.mLock.Take(folder.mFolder / kLockFile)) return std::nullopt;
  return folder;
}

fs::path RescueFolder::FileOf(unsigned long turn, const std::string& name) const {
  return mFolder / (std::to_string(turn) + "-" + name);
}

// The files of each turn have names of their own; the list of contents, replaced at the end in one step, says
// which turn counts.
void RescueFolder::Keep(const UnsavedWork& work, std::int64_t time, const WriteBlock& write) {
  std::error_code error;
  fs::create_directories(mFolder, error);
  if (!mLock.IsTaken() && !mLock.Take(mFolder / kLockFile))
    Fail(mFolder, "unsaved work cannot be kept there");
  const unsigned long turn = ++mTurn;
  NConfiguration::Save(work.document, FileOf(turn, kConfiguration));
  for (const auto& [position, ignored] : work.blocks) {
    const fs::path file = FileOf(turn, BlockFile(position));
    if (!write(position, file)) Fail(file, "cannot be written");
  }
  WriteContents({turn, time, work});
  RemoveOthers(turn);
}

void RescueFolder::WriteContents(const Contents& contents) const {
  std::ostringstream text;
  text << kFirstLine << "\nturn " << contents.turn << "\ntime " << contents.time << "\nmodified "
       << contents.work.isModified << '\n';
  if (!contents.work.file.empty()) text << "file " << NRuntime::PathText(contents.work.file) << '\n';
  for (const auto& [position, ignored] : contents.work.blocks) text << "block " << position << '\n';
  const fs::path target = mFolder / kContentsFile, fresh = FileOf(contents.turn, kContentsFile);
  std::error_code error = NConfiguration::WriteNewFile(fresh, text.str(), target);
  if (!error) error = NConfiguration::RenameOver(fresh, target);
  if (error) Fail(target, "cannot be written: " + error.message());
}

// What cannot be removed now goes with the folder.
void RescueFolder::RemoveOthers(unsigned long turn) const {
  std::error_code ignored;
  std::vector<fs::path> others;
  const std::string prefix = std::to_string(turn) + "-";
  for (const auto& entry : fs::directory_iterator(mFolder, ignored)) {
    const std::string name = entry.path().filename().string();
    if (name != kLockFile && name != kContentsFile && !name.starts_with(prefix))
      others.push_back(entry.path());
  }
  for (const fs::path& other : others) fs::remove(other, ignored);
}

std::optional<RescueFolder::Contents> RescueFolder::ReadContents() const {
  const auto read = NRuntime::ReadFileBytes(mFolder / kContentsFile, kLargestContents);
  std::istringstream text(read.text);
  std::string line;
  if (read.state != NRuntime::FileState::Read || !std::getline(text, line) || line != kFirstLine)
    return std::nullopt;
  Contents contents;
  while (std::getline(text, line)) {
    std::istringstream words(line);
    std::string key;
    words >> key;
    if (key == "turn") words >> contents.turn;
    if (key == "time") words >> contents.time;
    if (key == "modified") words >> contents.work.isModified;
    if (key == "file") contents.work.file = NRuntime::ToPath(RestOf(words));
    if (std::size_t position = 0; key == "block" && words >> position)
      contents.work.blocks[position] = FileOf(contents.turn, BlockFile(position));
  }
  return contents;
}

UnsavedWork RescueFolder::Read() const {
  auto contents = ReadContents();
  if (!contents) Fail(mFolder / kContentsFile, "cannot be read");
  contents->work.document = NConfiguration::Load(FileOf(contents->turn, kConfiguration));
  return std::move(contents->work);
}

std::int64_t RescueFolder::Time() const {
  const auto contents = ReadContents();
  return contents ? contents->time : 0;
}

// The list of contents goes first: without it nobody takes the folder for a copy.
void RescueFolder::Discard() {
  std::error_code ignored;
  fs::remove(mFolder / kContentsFile, ignored);
  mLock.Release();
  fs::remove_all(mFolder, ignored);
}

}  // namespace NWorkbench
