#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/configuration/document_objects.h"
#include "host/runtime/application.h"
#include "host/runtime/module.h"
#include "host/runtime/setup.h"
#include "host/workbench/bus_load.h"
#include "host/workbench/flood_watch.h"
#include "host/workbench/session.h"
#include "host/workbench/trace_store.h"

namespace NWorkbench {

/// What the windows hear of. All calls come on the one thread.
class WorkbenchEvents {
 public:
  virtual ~WorkbenchEvents() = default;
  /// Blocks, channels or settings have changed: whatever shows them is brought up to date.
  virtual void OnSetupChanged() = 0;
  /// This block is about to go: its window goes first.
  virtual void OnBlockLeaving(IUnknown& block) = 0;
  virtual void OnMeasurementChanged() = 0;
  /// A measurement that was to start does not, in words.
  virtual void OnCannotStart(const std::string& text) = 0;
  /// Something that the user should know but need not answer, in words.
  virtual void OnTrouble(const std::string& text) = 0;
};

/// A block of the configuration.
struct PlacedBlock {
  NRuntime::ComPtr<IUnknown> object;  ///< empty: it could not be made; its settings are kept as they were
  NConfiguration::Block stored;       ///< settings as they were read or saved last; its window
};

struct WorkbenchOptions {
  std::filesystem::path module;     ///< of the plug-in
  std::filesystem::path libraries;  ///< folder of the host's libraries
  std::function<std::unique_ptr<NRuntime::IoLoop>()> makeLoop;
};

/// The host behind the windows: a configuration, the module with its blocks, the measurement.
class Workbench final : private NRuntime::MeasurementObserver {
 public:
  Workbench(WorkbenchOptions options, WorkbenchEvents& events);
  ~Workbench() override;

  // ---- configuration

  /// A new one with a virtual bus on channel 1.
  void New(const NConfiguration::Document& settings);
  /// Throws std::runtime_error, one line: the file cannot be used. What was open before then stays open.
  void Open(const std::filesystem::path& file);
  /// Opens a document that was not saved, which belongs into this file; empty: into none yet.
  void TakeUp(const NConfiguration::Document& document, const std::filesystem::path& file, bool isModified);
  /// Throws std::runtime_error, one line: the old file is as it was.
  void Save(const std::filesystem::path& file);
  /// Empty: never saved.
  const std::filesystem::path& File() const { return mFile; }
  /// Differs after each time at which it was read or written.
  std::uint32_t FileTurn() const { return mFileTurn; }
  /// The configuration with the settings that blocks have now.
  NConfiguration::Document Capture() const;
  bool IsModified() const { return !mSaved || Capture() != *mSaved; }
  /// What blocks have changed of themselves since it was opened, as the places of their windows, is no
  /// change.
  void SettleOpened() {
    if (mSaved) mSaved->blocks = CaptureBlocks();
  }
  /// Replaces what is set up beside the blocks. The module is loaded anew where variant or language change.
  /// Not while a measurement runs.
  void Change(const NConfiguration::Document& document);
  void SetNumberBase(std::uint32_t base);
  void SetLargeIcons(bool large);
  /// Databases and descriptions may have other contents: whoever has read them hears of it.
  void ReadDatabasesAgain();
  /// Device descriptions of the nodes that the databases name, as the module last read them.
  const std::vector<std::filesystem::path>& NodeDescriptions() const;
  void SetWindows(const NConfiguration::Window& own, std::map<std::string, NConfiguration::Window> inner);
  /// Without blocks and with absolute paths.
  NConfiguration::Document ForUse() const;
  /// As it is in the file, without blocks.
  const NConfiguration::Document& Settings() const { return mDocument; }

  /// The module is loaded or let go, or the measurement starts or stops: the module may show a message box
  /// in it, behind which nothing else may be asked for.
  bool IsChanging() const { return mIsChanging; }

  // ---- module and blocks

  /// Empty while the module works; else why it does not.
  const std::string& ModuleFault() const { return mModuleFault; }
  NRuntime::Application& Application() const { return *mApplication; }
  /// Null when the module does not work.
  NSdk::IPlugInExtensions* Extensions() const { return mExtensions.Get(); }
  std::vector<PlacedBlock>& Blocks() { return mBlocks; }
  const std::vector<PlacedBlock>& Blocks() const { return mBlocks; }
  /// Null: no such block.
  PlacedBlock* Find(const IUnknown* block);
  NSdk::BlockCategory CategoryOf(const PlacedBlock& block) const;
  std::wstring NameOf(const PlacedBlock& block) const;
  /// For the title of its window.
  std::wstring CaptionOf(const PlacedBlock& block) const;
  /// CAN channel of a block that has one, else 0.
  std::uint32_t ChannelOf(const PlacedBlock& block) const;
  /// Executes a command of a plug-in. A generator that it inserts gets this CAN channel, if it is not 0.
  void Execute(NSdk::IAction& action, std::uint32_t channel);
  /// The context of a command, for drop-downs that execute their items themselves.
  NRuntime::ComPtr<IUnknown> CommandContext() const;
  /// Not while a measurement runs.
  void Remove(std::size_t position);

  // ---- measurement

  /// Joins the buses, while the loop goes on, and starts the measurement; or tells why not.
  void Start();
  /// While the measurement starts or stops, it is noted for later.
  void Stop();
  /// From the joining of the buses on.
  bool IsMeasuring() const { return mSession != nullptr; }
  bool IsJoining() const { return mSession && !mSession->IsRunning(); }
  NRuntime::Time Elapsed() const { return mSession ? mSession->Elapsed() : NRuntime::Time::zero(); }
  TraceStore& Trace() { return mTrace; }
  const std::map<std::uint32_t, BusLoad>& Loads() const { return mLoads; }
  /// About once a second while a measurement runs.
  void EndLoadSpan();
  /// Lets go of measurements that have ended, once nothing of them runs any more.
  void Tidy(const std::function<bool(NRuntime::IoLoop&)>& isInTask);

 private:
  void OnFrame(const NRuntime::SeenFrame& seen) override;
  void OnTrouble(std::uint32_t channel, const std::string& text) override;
  void OnEnd() override;

  void OpenDocument(NConfiguration::Document document);
  void OpenHost(const std::vector<NConfiguration::Block>& blocks);
  void CloseHost();
  void LoadModule();
  void TellConfiguration();
  void StartSession(const std::string& fault);
  void EndSession();
  void AddStoredBlock(NConfiguration::Block block);
  void TakeNewBlocks();
  void SetChannel(IUnknown& block, std::uint32_t channel) const;
  std::vector<NConfiguration::Block> CaptureBlocks() const;
  NRuntime::ConfigurationData HostConfiguration() const { return NConfiguration::DataOf(ForUse(), mFile); }

  WorkbenchOptions mOptions;
  WorkbenchEvents& mEvents;
  std::filesystem::path mFile;
  std::uint32_t mFileTurn = 0;
  NConfiguration::Document mDocument;              // its blocks are in mBlocks
  std::optional<NConfiguration::Document> mSaved;  // empty: what is open was never saved as it is

  NRuntime::ComPtr<NRuntime::Application> mApplication;
  std::unique_ptr<NRuntime::Module> mModule;  // null: it does not work
  NRuntime::ComPtr<NSdk::IPlugInExtensions> mExtensions;
  std::string mModuleFault;
  mutable std::optional<std::vector<std::filesystem::path>> mNodeDescriptions;  // empty: to be read
  NRuntime::ComPtr<NRuntime::Setup> mSetup;
  std::vector<PlacedBlock> mBlocks;
  std::uint32_t mInsertChannel = 0;

  std::unique_ptr<Session> mSession;
  bool mIsChanging = false;
  bool mStopIsWanted = false;
  std::vector<std::unique_ptr<Session>> mEnded;
  TraceStore mTrace;
  std::map<std::uint32_t, BusLoad> mLoads;
  FloodWatch mFloodWatch;
};

/// Settings of a block as it has them now; those that are given when it does not answer.
std::vector<NConfiguration::Block::Setting> SettingsOf(IUnknown& block);
/// Of work that the configuration does not keep: differs after each change; 0: nothing is unsaved.
std::uint32_t UnsavedStateOf(const PlacedBlock& block);

}  // namespace NWorkbench
