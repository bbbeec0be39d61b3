#include "plugin/plug_in.h"

#include "channels/channel_manager.h"
#include "com/entry.h"
#include "com/task_text.h"
#include "common/help_manager.h"
#include "common/host_application.h"
#include "common/host_library.h"
#include "common/text.h"
#include "plugin/database_nodes.h"
#include "plugin/language.h"
#include "plugin/nmt_dispatch.h"
#include "plugin/pages.h"
#include "plugin/version.h"
#include "resources/resource_ids.h"
#include "resources/text.h"
#include "sdk/class_ids.h"

namespace NPlugin {
namespace {

constexpr wchar_t kName[] = L"HarlowPlugIn";
constexpr std::uint32_t kOfferedToUser = 1;
constexpr std::uint32_t kGeneratorImage = 15;
constexpr std::uint32_t kScannerImage = 14;

void RegisterBlockType(NSdk::IBlockTypeRegistry& registry, NSdk::BlockCategory category, std::uint32_t image,
                       const char* progId, std::uint32_t nameId) {
  const std::wstring wideProgId = NCommon::ToWide(progId);
  const std::wstring name = NResources::LoadText(nameId);
  const NSdk::BlockType type = {category, image, kOfferedToUser, wideProgId.c_str(), name.c_str()};
  registry.AddBlockType(&type);
}

// Generators belong into a simulation setup; a host without one does not offer them for insertion.
void RegisterBlockTypes() {
  const auto registry = NCommon::HostService<NSdk::IBlockTypeRegistry>();
  if (!registry) return;
  if (NCommon::HasSimulationSetup()) {
    RegisterBlockType(*registry, NSdk::kBlockCategorySimulation, kGeneratorImage, NSdk::kProgIdCANopenIG,
                      IDS_IG_BLOCK_NAME);
  }
  RegisterBlockType(*registry, NSdk::kBlockCategoryMeasurement, kScannerImage, NSdk::kProgIdCANopenScanner,
                    IDS_SCAN_BLOCK_NAME);
}

bool HasCanChannels() {
  std::uint32_t count = 0;
  const auto configuration = NCommon::HostService<NSdk::IConfigurationService>();
  return configuration && SUCCEEDED(configuration->GetItemCount(NSdk::kConfigurationCanChannel, &count)) &&
         count >= 1;
}

// The command that inserts a block where this item of the setup is; null: none.
const wchar_t* InsertCommandFor(IUnknown* item) {
  const auto sendItem = NCom::QueryFor<NSdk::ISendLineItem>(item);
  if (!sendItem) {
    return NCom::QueryFor<NSdk::ISimulationItem>(item) ? nullptr : ZActionInsertScanner::kName;
  }
  std::uint32_t type = 0;
  const bool fits = !NCommon::HasSimulationSetup() && SUCCEEDED(sendItem->GetItemType(&type)) &&
                    (type == NSdk::kSetupItemHotSpot || type == NSdk::kSetupItemBlock);
  return fits ? ZActionInsertSeqGenerator::kName : nullptr;
}

}  // namespace

// ---- for the commands

void ZPlugIn::SendNmt(NmtKind kind, std::uint8_t network, std::uint8_t target) {
  DispatchNmt(kind, network, target);
}

bool ZPlugIn::IsMeasuring() const {
  std::uint32_t measuring = 0;
  const auto application = NCommon::HostApplication();
  return application && SUCCEEDED(application->IsMeasuring(&measuring)) && measuring != 0;
}

// ---- life

HRESULT ZPlugIn::GetName(wchar_t** name) {
  return NCom::Entry([&] { return NCom::HandOut(kName, name); });
}

HRESULT ZPlugIn::Initialise(NSdk::IHostApplication* application) {
  return NCom::Entry([&] {
    Unbind();
    NCommon::SetHostApplication(application);
    if (!application) return;
    const std::uint32_t language = NCommon::HostLanguage();
    UseLanguage(language);
    NCommon::SetHelpFile(FindHelpFile(NCommon::ModuleFile(), language));
    AddCommands();
    mHostEvents.Begin<NSdk::IApplicationEvents>(Identity());
    RegisterBlockTypes();
  });
}

void ZPlugIn::AddCommands() {
  mRegistry = NCommon::HostService<NSdk::ICommandRegistry>();
  if (!mRegistry) return;
  mRegistry->Advise(this, &mRegistryCookie);
  mCommands.emplace(*this);
  mCommands->Register(*mRegistry);
}

HRESULT ZPlugIn::ShutDown() {
  return NCom::Entry([&] { Unbind(); });
}

// What was not set up is passed over.
void ZPlugIn::Unbind() {
  if (mCommands) mCommands->Withdraw(*mRegistry);
  mCommands.reset();
  mHostEvents.End();
  if (mRegistry) mRegistry->Unadvise(mRegistryCookie);
  mRegistry.Reset();
  NChannels::ReleaseChannelManager();
  ReleaseLanguage();
  NCommon::SetHelpFile({});
  NCommon::SetHostApplication(nullptr);
}

// ---- version

HRESULT ZPlugIn::GetVersion(std::uint32_t* majorNumber, std::uint32_t* minorNumber, std::uint32_t* build) {
  return NCom::Entry([&]() -> HRESULT {
    if (!majorNumber || !minorNumber || !build) return E_POINTER;
    const Version version = ReadVersion();
    *majorNumber = version.majorNumber;
    *minorNumber = version.minorNumber;
    *build = version.build;
    return S_OK;
  });
}

HRESULT ZPlugIn::GetProductName(wchar_t** name) {
  return NCom::Entry([&] { return NCom::HandOut(ReadVersion().productName, name); });
}

HRESULT ZPlugIn::GetDescription(wchar_t** description) {
  return NCom::Entry([&] { return NCom::HandOut(ReadVersion().description, description); });
}

HRESULT ZPlugIn::GetReleaseNotes(wchar_t**) {
  NCom::ModuleScope scope;
  return E_NOTIMPL;
}

// ---- what the host shows

// S_FALSE: no page is added.
HRESULT ZPlugIn::AddPages(IUnknown* container) {
  return NCom::Entry([&]() -> HRESULT {
    if (!container) return E_POINTER;
    const auto pages = NCom::QueryFor<NSdk::IPageContainer>(container);
    const auto page = MakeBaudratePage();
    return pages && page ? pages->AddPage(page.Get()) : S_FALSE;
  });
}

HRESULT ZPlugIn::AddContextCommands(REFIID, NSdk::ICommandList* list, NSdk::ISelectionContext* selection) {
  return NCom::Entry([&]() -> HRESULT {
    if (!list || !selection) return E_POINTER;
    std::uint32_t count = 0;
    NCom::ComPtr<IUnknown> item;
    if (!HasCanChannels() || FAILED(selection->GetSelectedCount(&count)) || count != 1 ||
        selection->GetSelected(0, item.Receive()) != S_OK || !item) {
      return S_OK;
    }
    const wchar_t* command = InsertCommandFor(item.Get());
    return command ? list->AppendCommand(command) : S_OK;
  });
}

HRESULT ZPlugIn::OnConfigurationOpened() {
  NCom::ModuleScope scope;
  return S_OK;
}

HRESULT ZPlugIn::OnConfigurationChanged() {
  return NCom::Entry([&] {
    if (mCommands) mCommands->ShowNetworkManagement(HasCanChannels());
  });
}

HRESULT ZPlugIn::OnCommandsShown() {
  return NCom::Entry([&] {
    if (!mCommands) return;
    const std::vector<ZCONetworkEntry> entries = NetworkEntries();
    mCommands->ShowNetworks(entries.size());
    mCommands->ShowNodes(MenuNodes(entries));
  });
}

// ---- databases

HRESULT ZPlugIn::GetChannelCount(std::uint32_t* count) {
  return NCom::Entry([&]() -> HRESULT {
    if (!count) return E_POINTER;
    NChannels::TheChannelManager().Refresh();
    *count = NChannels::TheChannelManager().ChannelCount();
    return S_OK;
  });
}

HRESULT ZPlugIn::GetChannelAt(std::uint32_t position, std::uint32_t* number, std::uint32_t* protocols,
                              wchar_t** name) {
  return NCom::Entry([&]() -> HRESULT {
    if (!number || !protocols || !name) return E_POINTER;
    NChannels::ZChannelManager& channels = NChannels::TheChannelManager();
    channels.Refresh();
    if (position >= channels.ChannelCount()) return E_INVALIDARG;
    const NChannels::Channel& channel = channels.At(position);
    NCom::HandOut(NChannels::DisplayName(channel), name);
    *number = channel.number;
    *protocols = ProtocolsOf(channel);
    return S_OK;
  });
}

HRESULT ZPlugIn::GetNodes(std::uint32_t channel, NSdk::IArray** nodes) {
  return NCom::Entry([&]() -> HRESULT {
    if (!nodes) return E_POINTER;
    std::vector<NSdo::DatabaseNode> found;
    const HRESULT result = NSdo::BuildDatabaseNodeList(channel, found);
    return FAILED(result) ? result : MakeNodeArray(std::move(found)).CopyTo(nodes);
  });
}

}  // namespace NPlugin
