#include "host/buses/log_reader.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>

#include "host/buses/open_file.h"
#include "host/runtime/text.h"

namespace NBuses {
namespace {

constexpr std::size_t kBlockSize = std::size_t{256} * 1024;
constexpr std::size_t kLongestLine = std::size_t{8} * 1024;  // a frame of CAN XL has up to 2048 bytes

std::runtime_error Problem(const std::filesystem::path& path, const std::string& what) {
  return std::runtime_error("log " + NRuntime::PathText(path) + ": " + what);
}

}  // namespace

// A pipe is refused: reading from it would hold up the loop.
LogReader::LogReader(const std::filesystem::path& path) : mPath(path), mBlock(kBlockSize) {
  std::error_code error;
  const auto status = std::filesystem::status(path, error);
  if (!std::filesystem::exists(status)) throw Problem(path, "no such file");
  if (!std::filesystem::is_regular_file(status)) throw Problem(path, "not a file");
  mFile.reset(OpenForReading(path));
  if (!mFile) throw Problem(path, std::string("cannot be opened: ") + std::strerror(errno));
}

std::optional<LogReader::Line> LogReader::Next() {
  for (std::size_t searched = 0;;) {
    const char* begin = mBlock.data() + mBegin;
    const std::size_t size = mEnd - mBegin;
    const void* lineEnd = std::memchr(begin + searched, '\n', size - searched);
    if (lineEnd) {
      const auto length = static_cast<std::size_t>(static_cast<const char*>(lineEnd) - begin);
      mBegin += length + 1;
      if (length > kLongestLine) return Line{++mNumber, {}, true};
      return Line{++mNumber, {begin, length}, false};
    }
    if (size > kLongestLine) {
      SkipRestOfLine();
      return Line{++mNumber, {}, true};
    }
    searched = size;
    if (Refill()) continue;
    if (size == 0) return std::nullopt;
    mBegin = mEnd;  // the last line may lack its end
    return Line{++mNumber, {mBlock.data() + mEnd - size, size}, false};
  }
}

// What is not yet read moves to the front. False: the file has ended.
bool LogReader::Refill() {
  std::memmove(mBlock.data(), mBlock.data() + mBegin, mEnd - mBegin);
  mEnd -= mBegin;
  mBegin = 0;
  errno = 0;
  const std::size_t size = std::fread(mBlock.data() + mEnd, 1, mBlock.size() - mEnd, mFile.get());
  if (size == 0 && std::ferror(mFile.get())) {
    throw Problem(mPath, std::string("cannot be read: ") + std::strerror(errno ? errno : EIO));
  }
  mEnd += size;
  return size != 0;
}

void LogReader::SkipRestOfLine() {
  do {
    const void* lineEnd = std::memchr(mBlock.data() + mBegin, '\n', mEnd - mBegin);
    if (lineEnd) {
      mBegin = static_cast<std::size_t>(static_cast<const char*>(lineEnd) - mBlock.data()) + 1;
      return;
    }
    mBegin = mEnd;
  } while (Refill());
}

}  // namespace NBuses
