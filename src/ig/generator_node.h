#pragma once
// The generator block as the host knows it.

#include <string>

#include "com/com_ptr.h"
#include "com/implements.h"
#include "common/event_subscription.h"
#include "ig/generator.h"
#include "ig/generator_view.h"
#include "ig/list_editing.h"
#include "ig/transmission_results.h"
#include "sdk/blocks.h"
#include "sdk/generator.h"
#include "sdk/host_application.h"
#include "sdk/persistence.h"
#include "sdk/unsaved_work.h"
#include "sdk/views.h"
#include "sdk/work_file.h"
#include "sdo/node_list.h"

namespace NIg {

using GeneratorInterfaces =
    NCom::Implements<NSdk::IPlugInBlock, NSdk::IMSFinalNode, NSdk::IMSTransferNode, NSdk::IRTClient,
                     NSdk::ICANEvents, NSdk::ITimerSink, NSdk::IPersistentObject, NSdk::IGenerator,
                     NSdk::IUIEventsEx, NSdk::IUnsavedWork, NSdk::IWorkCopy, NSdk::IWorkFile,
                     NSdk::ISettingEvents>;

/// ProgID "HarlowPlugIn.CANopenIG": composes CANopen messages and sends them on one CAN channel.
class ZCANopenIGNode final : public GeneratorInterfaces, private TransmissionObserver {
 public:
  ZCANopenIGNode();
  ~ZCANopenIGNode() override;

  /// Whether the block has its place in the host and takes part in a running measurement.
  bool CanSend() const { return mSite != nullptr && mGenerator.IsMeasuring(); }
  /// CAN channel of the running measurement, else the one that is set.
  std::uint32_t Channel() const;
  /// Output on that channel; empty outside a measurement.
  NCom::ComPtr<NSdk::ICANOutput> Output() const { return mGenerator.Output(); }
  /// Nodes that the databases of that channel describe, read again when the assignment of databases has
  /// changed.
  const std::vector<NSdo::DatabaseNode>& DatabaseNodes();

  // What its window works with

  const NCanopen::ItemList& Items(NSdk::GeneratorList list) { return mGenerator.List(list); }
  /// Changes the lists; not while the list is locked.
  ListEditing& Editing() { return mEditing; }
  /// A list whose items are being sent must stay as it is.
  bool IsLocked(NSdk::GeneratorList list) const { return mGenerator.IsLocked(list); }
  TransmissionResults& Results() { return mResults; }
  const bool* HexDisplay() const { return &mHexDisplay; }
  /// Lets the user edit an item in the dialog of its kind. True: it was changed.
  bool EditItem(NCanopen::ZMsgItemInfo& item, NSdk::GeneratorList list, void* parentWindow);
  /// The buttons "Open" and "Save as". False: cancelled or failed, which the user was told.
  bool OpenSequence(void* parentWindow);
  bool SaveSequenceAs(void* parentWindow);
  /// ReloadSequence, unless the lists were filled or a file was loaded before.
  void ReloadOnce();
  /// The generator starts to tell this window and puts it into the present state; null: it stops.
  void ShowIn(GeneratorWindow* window) { mGenerator.SetWindow(window); }

  /// Where the module has no windows, the block has no IUIEventsEx.
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;

  // IPlugInBlock
  HRESULT STDMETHODCALLTYPE Attach(NSdk::IBlockSite* site) override;
  HRESULT STDMETHODCALLTYPE Detach() override;
  HRESULT STDMETHODCALLTYPE GetName(wchar_t** name) override;
  HRESULT STDMETHODCALLTYPE SetName(const wchar_t* name) override;
  HRESULT STDMETHODCALLTYPE GetCaption(wchar_t** caption) override;

  // IMSFinalNode, IMSTransferNode
  HRESULT STDMETHODCALLTYPE GetEvents(std::uint32_t* events) override;
  HRESULT STDMETHODCALLTYPE Passes(std::uint32_t event) override;

  // IRTClient, ICANEvents, ITimerSink
  HRESULT STDMETHODCALLTYPE StartMeasurement(NSdk::IRuntime* runtime) override;
  HRESULT STDMETHODCALLTYPE StopMeasurement() override;
  HRESULT STDMETHODCALLTYPE OnCanMessage(NSdk::ICANMessage* message) override;
  HRESULT STDMETHODCALLTYPE OnTimer(NSdk::ITimer* timer) override;

  // IPersistentObject
  HRESULT STDMETHODCALLTYPE GetProgId(wchar_t** progId) override;
  HRESULT STDMETHODCALLTYPE Load(NSdk::IPersistReader* reader) override;
  HRESULT STDMETHODCALLTYPE Save(NSdk::IPersistWriter* writer) override;

  // IGenerator
  HRESULT STDMETHODCALLTYPE LoadSequence(const wchar_t* path, wchar_t** reason) override;
  HRESULT STDMETHODCALLTYPE SaveSequence(const wchar_t* path, wchar_t** reason) override;
  HRESULT STDMETHODCALLTYPE ToggleSequence() override;
  HRESULT STDMETHODCALLTYPE ToggleCyclic() override;
  HRESULT STDMETHODCALLTYPE GetActivity(std::uint32_t* activity) override;
  HRESULT STDMETHODCALLTYPE GetItemCount(std::uint32_t list, std::uint32_t* count) override;
  HRESULT STDMETHODCALLTYPE GetItem(std::uint32_t list, std::uint32_t position,
                                    NSdk::GeneratorItem* item) override;
  HRESULT STDMETHODCALLTYPE SetItemEnabled(std::uint32_t list, std::uint32_t position,
                                           std::uint32_t enabled) override;
  HRESULT STDMETHODCALLTYPE SetEvents(NSdk::IGeneratorEvents* events) override;
  HRESULT STDMETHODCALLTYPE ReloadSequence() override;

  // IUIEventsEx
  HRESULT STDMETHODCALLTYPE CreateBlockWindow(NSdk::IWindowSite* site) override;
  HRESULT STDMETHODCALLTYPE DestroyBlockWindow() override;
  HRESULT STDMETHODCALLTYPE GetBlockWindow(void** window) override;
  HRESULT STDMETHODCALLTYPE GetSizes(NSdk::WindowSize* preferred, NSdk::WindowSize* minimum) override;
  HRESULT STDMETHODCALLTYPE Configure(void* parentWindow) override;

  // IUnsavedWork
  HRESULT STDMETHODCALLTYPE ConfirmLeaving(void* parentWindow) override;

  // IWorkCopy
  HRESULT STDMETHODCALLTYPE GetUnsavedState(std::uint32_t* state) override;
  HRESULT STDMETHODCALLTYPE WriteCopy(const wchar_t* path) override;
  HRESULT STDMETHODCALLTYPE TakeCopy(const wchar_t* path) override;

  // IWorkFile
  HRESULT STDMETHODCALLTYPE GetFile(wchar_t** path, std::uint32_t* turn) override;
  HRESULT STDMETHODCALLTYPE ReadAgain(wchar_t** reason) override;

  // ISettingEvents
  HRESULT STDMETHODCALLTYPE OnSettingsChanged() override;

 private:
  void ItemSent(const ItemPlace& place) override;
  void ItemFailed(const ItemPlace& place) override;
  void TransferEnded(const ItemPlace& place, const SdoTransferResult& result) override;

  /// Runs an entry that may change what the block does, and tells the host afterwards if it did.
  template <class Body>
  HRESULT ActivityEntry(Body&& body);
  NCanopen::ZMsgItemInfo* FindItem(std::uint32_t list, std::uint32_t position);
  bool ReadLists(const std::filesystem::path& path, std::string& fault);
  void RememberSequence(const std::filesystem::path& path);
  void UpdateDataFolder();
  void OnActivityChanged(std::uint32_t before, std::uint32_t after);
  std::wstring Caption() const;
  void ShowCaption();
  void TellThatLoadingFailed(const std::wstring& path) const;
  bool ConfirmUnsaved(void* parentWindow);
  void ReadNumberBase();
  void CloseWindow();

  NCom::ComPtr<NSdk::IBlockSite> mSite;
  NCom::ComPtr<NSdk::IGeneratorEvents> mEvents;
  GeneratorSettings mSettings;
  std::filesystem::path mSequencePath;  // last opened or saved; empty: none
  std::uint32_t mSequenceTurn = 0;      // how often it was
  std::vector<NSdo::DatabaseNode> mDatabaseNodes;
  std::uint32_t mNodesRevision = 0;  // of the channel manager; 0: they were never read
  std::uint32_t mNodesChannel = 0;
  bool mHexDisplay = true;    // shared by all items of the block
  bool mReloaded = false;     // the file that the settings remember was asked for
  bool mShowsOutput = false;  // the caption tells the channel: the settings were changed last
  Generator mGenerator;
  ListEditing mEditing{mGenerator.List(NSdk::kSequenceList), mGenerator.List(NSdk::kCyclicList)};
  TransmissionResults mResults;
  NCommon::EventSubscription mHostSettings;  // while there is a window
  std::unique_ptr<GeneratorView> mView;
};

}  // namespace NIg
