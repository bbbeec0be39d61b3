#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "host/configuration/replace_file.h"

namespace NConfiguration {
namespace {

std::error_code LastError() { return {errno, std::generic_category()}; }

std::error_code WriteAll(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(file, bytes.data(), bytes.size());
    if (written >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno != EINTR) {
      return LastError();
    }
  }
  return ::fsync(file) == 0 ? std::error_code() : LastError();
}

}  // namespace

std::error_code WriteNewFile(const std::filesystem::path& file, std::string_view bytes,
                             const std::filesystem::path& model) {
  const int opened = ::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (opened < 0) return LastError();
  struct stat status = {};
  std::error_code error;
  if (::stat(model.c_str(), &status) == 0 && ::fchmod(opened, status.st_mode & 07777) != 0)
    error = LastError();
  if (!error) error = WriteAll(opened, bytes);
  if (::close(opened) != 0 && !error) error = LastError();
  return error;
}

std::error_code RenameOver(const std::filesystem::path& file, const std::filesystem::path& target) {
  if (::rename(file.c_str(), target.c_str()) != 0) return LastError();
  // The name is in the folder; some file systems cannot be asked to write that, and the file is safe then
  // too.
  const std::filesystem::path folder = target.has_parent_path() ? target.parent_path() : ".";
  const int opened = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (opened < 0) return {};
  ::fsync(opened);
  ::close(opened);
  return {};
}

std::error_code CheckWritable(const std::filesystem::path& file) {
  return ::access(file.c_str(), W_OK) == 0 || errno == ENOENT ? std::error_code() : LastError();
}

}  // namespace NConfiguration
