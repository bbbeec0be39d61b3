#include "plugin/language.h"

#include "common/host_application.h"
#include "common/host_library.h"
#include "common/user_messages.h"
#include "plugin/language_library.h"
#include "resources/print.h"
#include "resources/resource_ids.h"
#include "resources/text.h"

namespace NPlugin {
namespace {

std::filesystem::path HelpFileOf(const std::filesystem::path& folder, std::uint32_t language) {
  return folder / NResources::Print("Help%02d", language) / "HalvardTesmond.chm";
}

}  // namespace

void UseLanguage(std::uint32_t language) {
  ReleaseLanguage();
  if (language == NCommon::kEnglish) return;
  const std::wstring name = NResources::Print(L"Ostrel_%02d.%s", language, NCommon::kLibraryExtension);
  if (void* library = LoadLanguageLibrary(NCommon::ModuleFile().parent_path() / name)) {
    NResources::SetLanguageLibrary(library);
  } else {
    NCommon::ShowUserMessage(NResources::Print(NResources::LoadText(IDS_LANGUAGE_MISSING), name),
                             NSdk::kMessageExclamation);
  }
}

void ReleaseLanguage() {
  void* library = NResources::LanguageLibrary();
  NResources::SetLanguageLibrary(nullptr);
  if (library) FreeLanguageLibrary(library);
}

std::filesystem::path FindHelpFile(const std::filesystem::path& module, std::uint32_t language) {
  const std::filesystem::path folder = module.parent_path().parent_path();
  const std::filesystem::path localised = HelpFileOf(folder, language);
  std::error_code ignored;
  return std::filesystem::is_regular_file(localised, ignored) ? localised
                                                              : HelpFileOf(folder, NCommon::kEnglish);
}

}  // namespace NPlugin
