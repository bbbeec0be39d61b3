#pragma once

#include <optional>
#include <string_view>

#include "sdk/host_application.h"

namespace NConfiguration {

inline constexpr std::string_view kHalvardName = "halvard";
inline constexpr std::string_view kTesmondName = "tesmond";

inline std::string_view VariantName(NSdk::HostVariant variant) {
  return variant == NSdk::kHostTesmond ? kTesmondName : kHalvardName;
}

/// Empty: there is no such variant.
inline std::optional<NSdk::HostVariant> FindVariant(std::string_view name) {
  if (name == kHalvardName) return NSdk::kHostHalvard;
  if (name == kTesmondName) return NSdk::kHostTesmond;
  return std::nullopt;
}

}  // namespace NConfiguration
