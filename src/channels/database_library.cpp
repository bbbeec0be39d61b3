#include "channels/database_library.h"

#include <optional>

#include "com/task_text.h"
#include "common/host_application.h"
#include "common/host_library.h"
#include "common/text.h"
#include "common/user_messages.h"
#include "resources/print.h"
#include "resources/resource_ids.h"
#include "resources/text.h"

namespace NChannels {
namespace {

constexpr wchar_t kName[] = L"dbmanager";
constexpr char kExport[] = "DllCreateDBManagerEx";

std::optional<NCommon::HostLibrary>& Library() {
  static std::optional<NCommon::HostLibrary> library;
  return library;
}

bool HasDatabases(NSdk::IConfigurationService& configuration) {
  std::uint32_t channel = 0;
  NCom::TaskText path;
  return configuration.GetDatabase(1, path.Receive(), &channel) == S_OK;
}

// Told at the first attempt; the library is not looked for again before it is released.
NSdk::DllCreateDBManagerExFunction FindFactory() {
  auto& library = Library();
  const bool first = !library;
  if (first) library.emplace(kName);
  const auto factory = library->Find<NSdk::DllCreateDBManagerExFunction>(kExport);
  if (!factory && first) {
    const std::wstring text = NResources::LoadText(IDS_DATABASE_LIBRARY_MISSING);
    NCommon::ShowUserMessage(NResources::Print(text, NCommon::PathToWide(library->File())),
                             NSdk::kMessageExclamation);
  }
  return factory;
}

}  // namespace

NCom::ComPtr<NSdk::IDatabaseManager> MakeDatabaseManager() {
  NCom::ComPtr<NSdk::IDatabaseManager> manager;
  const auto configuration = NCommon::HostService<NSdk::IConfigurationService>();
  if (!configuration || !HasDatabases(*configuration)) return nullptr;
  const auto factory = FindFactory();
  if (!factory || FAILED(factory(NSdk::IidOf<NSdk::IDatabaseManager>(), manager.ReceiveVoid())))
    return nullptr;
  return SUCCEEDED(manager->SetConfiguration(configuration.Get())) ? manager : nullptr;
}

void ReleaseDatabaseLibrary() { Library().reset(); }

}  // namespace NChannels
