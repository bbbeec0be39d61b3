#include "host/bench/line_source.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "host/runtime/file_text.h"
#include "host/runtime/text.h"

namespace NBench {
namespace {

constexpr std::size_t kLargestScript = 1 << 20;

class FileSource final : public LineSource {
 public:
  explicit FileSource(std::string text) : mText(std::move(text)) {}

  std::optional<std::string> Next() override {
    if (mAt == mText.size()) return std::nullopt;
    const std::size_t end = std::min(mText.find('\n', mAt), mText.size());
    std::string line = mText.substr(mAt, end - mAt);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    mAt = std::min(end + 1, mText.size());
    return line;
  }

 private:
  const std::string mText;
  std::size_t mAt = 0;  // of the next line
};

}  // namespace

std::optional<std::string> TakeLine(std::string& text) {
  const std::size_t end = text.find('\n');
  if (end == std::string::npos) return std::nullopt;
  std::string line = text.substr(0, end);
  text.erase(0, end + 1);
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return line;
}

std::unique_ptr<LineSource> MakeFileSource(const std::filesystem::path& file) {
  NRuntime::FileText text = NRuntime::ReadTextFile(file, kLargestScript);
  const auto refuse = [&](const std::string& reason) {
    throw std::runtime_error(NRuntime::PathText(file) + ": " + reason);
  };
  if (text.state == NRuntime::FileState::TooLarge) refuse("too large for a script");
  if (text.state != NRuntime::FileState::Read) refuse(text.reason.empty() ? "cannot be read" : text.reason);
  return std::make_unique<FileSource>(std::move(text.text));
}

}  // namespace NBench
