#pragma once
// What an EDS or DCF file says of a device.

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/codescrldr/finding.h"
#include "sdk/description_loader.h"

namespace NDescriptions {

/// A value, or an object with several.
struct SubObject {
  std::uint16_t index = 0;
  std::uint8_t subindex = 0;
  std::string name;
  std::uint32_t objectType = CODESCRLDR::kObjectVar;
  std::uint32_t dataType = 0;
  CODESCRLDR::AccessType access = CODESCRLDR::kReadWrite;
  bool isMappable = false;
  std::uint32_t flags = 0;
  std::string value, defaultValue, lowLimit, highLimit;  ///< as in the file; empty: none
};

struct Object : SubObject {
  std::vector<SubObject> subObjects;  ///< in the order of their sub-indices
};

struct Description {
  std::vector<Object> objects;  ///< in the order of their indices
  std::optional<std::uint32_t> nodeId;
  std::optional<std::uint32_t> bitRate;  ///< in bit/s
  /// By section and key in lower case, "deviceinfo/productname".
  std::map<std::string, std::string, std::less<>> information;
  std::vector<Finding> findings;
  bool isRecognised = false;  ///< it has an object or a list of objects
};

}  // namespace NDescriptions
