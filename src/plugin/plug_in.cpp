#include "plugin/plug_in.h"

#include "com/entry.h"
#include "com/task_text.h"
#include "common/host_application.h"
#include "resources/resource_ids.h"
#include "resources/text.h"
#include "sdk/class_ids.h"

namespace NPlugin {
namespace {

constexpr wchar_t kName[] = L"HarlowPlugIn";
constexpr std::uint32_t kGeneratorImage = 15;
constexpr std::uint32_t kOfferedToUser = 1;

bool HasSimulationSetup(NSdk::IHostApplication* application) {
  std::uint32_t variant = 0;
  return SUCCEEDED(application->GetVariant(&variant)) && variant == NSdk::kHostHalvard;
}

// Generators belong into a simulation setup; a host without one does not offer them for insertion.
void RegisterBlockTypes(NSdk::IHostApplication* application) {
  const auto registry = NCommon::HostService<NSdk::IBlockTypeRegistry>();
  if (!registry || !HasSimulationSetup(application)) return;
  const std::string progId = NSdk::kProgIdCANopenIG;
  const std::wstring wideProgId(progId.begin(), progId.end());
  const std::wstring displayName = NResources::LoadText(IDS_IG_BLOCK_NAME);
  const NSdk::BlockType type = {NSdk::kBlockCategorySimulation, kGeneratorImage, kOfferedToUser,
                                wideProgId.c_str(), displayName.c_str()};
  registry->AddBlockType(&type);
}

}  // namespace

HRESULT ZPlugIn::GetName(wchar_t** name) {
  return NCom::Entry([&] { return NCom::HandOut(kName, name); });
}

HRESULT ZPlugIn::Initialise(NSdk::IHostApplication* application) {
  return NCom::Entry([&] {
    NCommon::SetHostApplication(application);
    if (application) RegisterBlockTypes(application);
  });
}

HRESULT ZPlugIn::ShutDown() {
  return NCom::Entry([] { NCommon::SetHostApplication(nullptr); });
}

}  // namespace NPlugin
