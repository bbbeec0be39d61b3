#pragma once
// A configuration as the text of its file: JSON in UTF-8.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/configuration/document.h"
#include "host/configuration/fault.h"

namespace NConfiguration {

/// Number of the format that is read and written. Files of a newer one are refused.
inline constexpr std::uint32_t kFormat = 1;

struct ParsedDocument {
  Document document;
  std::vector<Fault> faults;  ///< empty: the document is whole
};

/// Any bytes are taken; what is wrong with them is told.
ParsedDocument ParseDocument(std::string_view text);

/// Ends with a line end. Throws std::runtime_error, one line, for a text that is no UTF-8.
std::string DocumentText(const Document& document);

}  // namespace NConfiguration
