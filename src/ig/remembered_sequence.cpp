#include "ig/remembered_sequence.h"

#include <algorithm>

#include "common/text.h"

namespace NIg {
namespace {

// Configurations travel between systems with different separators.
std::filesystem::path ResolveFrom(const std::filesystem::path& folder, std::wstring relative) {
  const std::filesystem::path asItStands = folder / NCommon::WideToPath(relative);
  std::error_code ignored;
  if (std::filesystem::exists(asItStands, ignored)) return asItStands.lexically_normal();
  std::replace(relative.begin(), relative.end(), L'\\', L'/');
  return (folder / NCommon::WideToPath(relative)).lexically_normal();
}

}  // namespace

void RememberedSequence::Remember(const std::filesystem::path& file,
                                  const std::filesystem::path& configuration) {
  absolute = NCommon::PathToWide(std::filesystem::absolute(file).lexically_normal());
  ConfigurationMoved(configuration);
}

void RememberedSequence::ConfigurationMoved(const std::filesystem::path& configuration) {
  if (configuration.empty() || absolute.empty()) return;
  const std::filesystem::path folder =
      std::filesystem::absolute(configuration).lexically_normal().parent_path();
  relative = NCommon::PathToWide(NCommon::WideToPath(absolute).lexically_relative(folder));
}

std::filesystem::path RememberedSequence::Resolve(const std::filesystem::path& configuration) const {
  if (relative.empty() || configuration.empty()) return NCommon::WideToPath(absolute);
  return ResolveFrom(configuration.parent_path(), relative);
}

}  // namespace NIg
