#pragma once

#include <filesystem>
#include <string>

namespace NIg {

/// The sequence file that a block opened or saved last, as the configuration keeps it. Whoever moves the
/// configuration and the file together still finds it by the relative path.
struct RememberedSequence {
  std::wstring relative;  ///< to the configuration's folder; empty: there is no way from there
  std::wstring absolute;

  /// `configuration` is the configuration's file, empty when it was never saved.
  void Remember(const std::filesystem::path& file, const std::filesystem::path& configuration);
  /// Tells the way from a configuration that may have been saved elsewhere since.
  void ConfigurationMoved(const std::filesystem::path& configuration);
  /// Where the file is to be found; empty: none is remembered.
  std::filesystem::path Resolve(const std::filesystem::path& configuration) const;
};

}  // namespace NIg
