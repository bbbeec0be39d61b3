#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "sdk/description_loader.h"

namespace NDescriptions {

/// Something that was wrong with a file, and what was assumed.
struct Finding {
  CODESCRLDR::Result code = CODESCRLDR::kLoaded;
  std::uint32_t line = 0;  ///< 0: the file as a whole
  std::string text;        ///< without file and line
};

/// Collects findings, no more than somebody would read.
class Findings {
 public:
  void Add(CODESCRLDR::Result code, std::uint32_t line, std::string text);
  /// In the order of their lines.
  std::vector<Finding> Take();

 private:
  std::vector<Finding> mFindings;
};

}  // namespace NDescriptions
