#pragma once
// One section of an object, or of a sub-object, as an object.

#include <optional>

#include "host/codescrldr/description.h"
#include "host/codescrldr/ini_text.h"

namespace NDescriptions {

class ObjectReader {
 public:
  ObjectReader(Findings& findings, std::optional<std::uint32_t> nodeId)
      : mFindings(findings), mNodeId(nodeId) {}

  /// `isWhole`: it has no sub-objects, so that it must have a data type and an access of its own.
  SubObject Read(const IniSection& section, std::uint16_t index, std::uint8_t subindex, bool isWhole);
  /// A number, with a finding when the text is none. Empty: no such key, no value or no number.
  std::optional<std::uint64_t> ReadNumber(const IniSection& section, std::string_view key,
                                          std::uint64_t most);
  /// Says what is wrong with a value of this type, if anything is.
  void CheckValue(const IniKey& key, std::uint32_t dataType);

 private:
  void ReadType(const IniSection& section, bool isWhole, SubObject& object);
  void ReadAccess(const IniSection& section, bool isWhole, SubObject& object);
  std::string ReadValue(const IniSection& section, std::string_view key, std::uint32_t dataType);

  Findings& mFindings;
  std::optional<std::uint32_t> mNodeId;
};

}  // namespace NDescriptions
