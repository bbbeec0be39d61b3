#pragma once

#include <optional>

#include "com/com_ptr.h"
#include "com/implements.h"
#include "common/event_subscription.h"
#include "plugin/commands.h"
#include "sdk/database_nodes.h"
#include "sdk/plugin.h"

namespace NPlugin {

/// The one object that a host creates from this module and talks to for its whole life. The module keeps it,
/// so that it does not keep the module.
class ZPlugIn final
    : public NCom::ImplementsCached<NSdk::IPlugIn, NSdk::IVersion, NSdk::IPlugInExtensions,
                                    NSdk::IApplicationEvents, NSdk::ICommandEvents, NSdk::IDatabaseNodes> {
 public:
  // For the commands
  void SendNmt(NmtKind kind, std::uint8_t network, std::uint8_t target);
  bool IsMeasuring() const;

  // IPlugIn
  HRESULT STDMETHODCALLTYPE GetName(wchar_t** name) override;
  /// Binds the module to the host. S_OK even where single steps fail. A second call begins anew.
  HRESULT STDMETHODCALLTYPE Initialise(NSdk::IHostApplication* application) override;
  HRESULT STDMETHODCALLTYPE ShutDown() override;

  // IVersion
  HRESULT STDMETHODCALLTYPE GetVersion(std::uint32_t* majorNumber, std::uint32_t* minorNumber,
                                       std::uint32_t* build) override;
  HRESULT STDMETHODCALLTYPE GetProductName(wchar_t** name) override;
  HRESULT STDMETHODCALLTYPE GetDescription(wchar_t** description) override;
  HRESULT STDMETHODCALLTYPE GetReleaseNotes(wchar_t** text) override;

  // IPlugInExtensions
  HRESULT STDMETHODCALLTYPE AddPages(IUnknown* container) override;
  HRESULT STDMETHODCALLTYPE AddContextCommands(REFIID iid, NSdk::ICommandList* list,
                                               NSdk::ISelectionContext* selection) override;

  // IApplicationEvents, ICommandEvents
  HRESULT STDMETHODCALLTYPE OnConfigurationOpened() override;
  HRESULT STDMETHODCALLTYPE OnConfigurationChanged() override;
  HRESULT STDMETHODCALLTYPE OnCommandsShown() override;

  // IDatabaseNodes
  HRESULT STDMETHODCALLTYPE GetChannelCount(std::uint32_t* count) override;
  HRESULT STDMETHODCALLTYPE GetChannelAt(std::uint32_t position, std::uint32_t* number,
                                         std::uint32_t* protocols, wchar_t** name) override;
  HRESULT STDMETHODCALLTYPE GetNodes(std::uint32_t channel, NSdk::IArray** nodes) override;

 private:
  void AddCommands();
  void Unbind();

  std::optional<CommandSet> mCommands;
  NCom::ComPtr<NSdk::ICommandRegistry> mRegistry;
  NCommon::EventSubscription mHostEvents;
  std::uint32_t mRegistryCookie = 0;
};

}  // namespace NPlugin
