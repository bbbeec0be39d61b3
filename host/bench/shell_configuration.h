#pragma once

#include <filesystem>
#include <optional>

#include "host/bench/shell_session.h"

namespace NBench {

/// What a shell saves: the configuration that it was started with, or one of the host that its options made,
/// with the settings that the generators have now.
class ShellConfiguration {
 public:
  /// Throws as NConfiguration::Load does.
  explicit ShellConfiguration(const HostOptions& options);

  /// Saves to another file, or to its own; that is the configuration from now on. Throws ShellFailure when it
  /// has none or the file cannot be written.
  void Save(ShellSession& session, const std::optional<std::filesystem::path>& file);

 private:
  NConfiguration::Document mDocument;  // its paths are relative to mFolder
  std::filesystem::path mFolder;
  std::filesystem::path mFile;  // empty: never saved
};

}  // namespace NBench
