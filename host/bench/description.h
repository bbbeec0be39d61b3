#pragma once
// A device description as the loader gives it, in the host's own types.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace NBench {

struct DescribedSubObject {
  std::uint16_t index = 0;
  std::uint8_t subindex = 0;
  std::string name, type, access;
  std::uint32_t objectType = 0, dataType = 0;
  bool mappable = false;
  std::optional<std::string> value, low, high;
  std::optional<std::int64_t> number;  ///< of the value, where it is one
};

struct DescribedObject : DescribedSubObject {
  std::vector<DescribedSubObject> subObjects;
};

struct DescriptionWarning {
  std::uint32_t code = 0, line = 0;
  std::string text;  ///< "FILE:LINE: what is wrong; what was assumed"
};

struct DeviceDescription {
  std::string vendor, product;  ///< empty: the file does not say
  std::optional<std::uint32_t> nodeId, bitRate;
  std::vector<DescribedObject> objects;
  std::vector<DescriptionWarning> warnings;
};

/// Loads a file with the library beside the program. Throws std::runtime_error, one line, when nothing of it
/// can be used.
DeviceDescription LoadDescription(const std::filesystem::path& file, std::optional<std::uint32_t> nodeId);

}  // namespace NBench
