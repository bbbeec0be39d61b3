#include "host/buses/log_writer.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>

#include "host/buses/candump.h"
#include "host/buses/open_file.h"
#include "host/runtime/text.h"

namespace NBuses {
namespace {

std::runtime_error Problem(const std::filesystem::path& path, const char* what, int error) {
  return std::runtime_error("log " + NRuntime::PathText(path) + ": " + what + ": " + std::strerror(error));
}

}  // namespace

LogWriter::LogWriter(const std::filesystem::path& path) : mPath(path) {
  std::error_code ignored;
  if (std::filesystem::is_directory(path, ignored)) throw Problem(path, "cannot be created", EISDIR);
  mFile.reset(OpenForWriting(path));
  if (!mFile) throw Problem(path, "cannot be created", errno);
}

void LogWriter::Write(std::chrono::nanoseconds time, std::uint32_t channel, const NSdk::CanFrame& frame) {
  if (!mFile) return;
  const std::string line = LogLine(time, channel, frame) + '\n';
  errno = 0;
  std::fwrite(line.data(), 1, line.size(), mFile.get());
  if (std::fflush(mFile.get()) != 0 || std::ferror(mFile.get())) Fail(errno ? errno : EIO);
  mSize += line.size();
}

void LogWriter::Discard() {
  mFile.reset();
  std::error_code ignored;
  if (mSize == 0 && std::filesystem::is_regular_file(mPath, ignored)) {
    std::filesystem::remove(mPath, ignored);
  }
}

void LogWriter::Fail(int error) {
  mFile.reset();
  std::error_code ignored;
  if (std::filesystem::is_regular_file(mPath, ignored)) {
    std::filesystem::resize_file(mPath, mSize, ignored);
  }
  throw Problem(mPath, "cannot be written", error);
}

}  // namespace NBuses
