// Any bytes as a configuration: either its faults are told, with a line that is there, or it is whole and
// comes back from its own text as it went.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "host/configuration/document_paths.h"
#include "host/configuration/document_text.h"

namespace {

using namespace NConfiguration;

void Require(bool condition) {
  if (!condition) std::abort();
}

void CheckFaults(std::string_view text, const ParsedDocument& parsed) {
  const auto lines = static_cast<std::uint32_t>(std::count(text.begin(), text.end(), '\n')) + 1;
  for (const Fault& fault : parsed.faults) {
    Require(fault.line >= 1 && fault.line <= lines && fault.column <= text.size() + 1);
    Require(!fault.text.empty());
  }
}

void CheckRoundTrip(const Document& document) {
  const std::string text = DocumentText(document);
  const ParsedDocument again = ParseDocument(text);
  Require(again.faults.empty() && again.document == document);
  Require(DocumentText(again.document) == text);
  // Names of files are changed here, and looked for.
  Resolved(Moved(document, "/one/folder", "/one"), "/nowhere, really");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(data, data + size);
  const ParsedDocument parsed = ParseDocument(text);
  CheckFaults(text, parsed);
  if (parsed.faults.empty()) CheckRoundTrip(parsed.document);
  return 0;
}
