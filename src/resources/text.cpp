#include "resources/text.h"

#include "com/assertion.h"
#include "resources/find_text.h"

namespace NResources {
namespace {

void* gLanguageLibrary = nullptr;

}  // namespace

std::wstring LoadText(std::uint32_t id) {
  std::wstring text;
  if (gLanguageLibrary) text = FindLanguageText(gLanguageLibrary, id);
  if (text.empty()) text = FindOwnText(id);
  if (text.empty()) NCom::RaiseAssertion("noOfChar");
  return text;
}

void SetLanguageLibrary(void* library) { gLanguageLibrary = library; }
void* LanguageLibrary() { return gLanguageLibrary; }

}  // namespace NResources
