// The one export of a language library where there are no resources: FindLanguageText asks for it.
#include "resources/string_table.h"

extern "C" __attribute__((visibility("default"))) const wchar_t* OstrelLanguageText(std::uint32_t id) {
  return NResources::FindInStringTable(id);
}
