#pragma once
// The sections and keys of an EDS or DCF file, with their lines.

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/codescrldr/finding.h"

namespace NDescriptions {

struct IniKey {
  std::string_view key, value;
  std::uint32_t line = 0;
};

struct IniSection {
  std::string_view name;
  std::uint32_t line = 0;
  std::vector<IniKey> keys;  ///< all different

  /// Null: there is no such key, in any case of its letters.
  const IniKey* Find(std::string_view key) const;
};

bool IsSameWord(std::string_view a, std::string_view b);
std::string LowerCase(std::string_view text);
std::string_view Trimmed(std::string_view text);
/// Cuts at most `size` bytes, and no character in two.
std::string Shortened(std::string_view text, std::size_t size = 40);

/// Sections and keys are views of `text`, which must outlive them.
class IniText {
 public:
  IniText(std::string_view text, Findings& findings);

  const std::vector<IniSection>& Sections() const { return mSections; }  ///< all different
  const IniSection* Find(std::string_view name) const;

 private:
  void ReadLine(std::string_view line);
  void OpenSection(std::string_view line);
  void ReadKey(std::string_view line);
  void CloseSection();
  void Report(CODESCRLDR::Result code, std::uint32_t line, std::string text);

  Findings& mFindings;
  std::uint32_t mLine = 0;
  std::vector<IniSection> mSections;
  std::unordered_map<std::string, std::size_t> mPositions;  // by names in lower case
  IniSection mOpen;                                         // an empty name: none is open
  bool mIsDuplicate = false;
  bool mSaidNoSection = false;
};

}  // namespace NDescriptions
