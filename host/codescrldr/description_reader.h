#pragma once

#include <optional>
#include <string_view>

#include "host/codescrldr/description.h"

namespace NDescriptions {

/// Reads the text of an EDS or DCF file, UTF-8. `nodeId` goes before that of the file.
Description ReadDescription(std::string_view text, std::optional<std::uint32_t> nodeId);

/// The key under which a description keeps a text about the device.
std::string InformationKey(std::string_view section, std::string_view key);

}  // namespace NDescriptions
