#pragma once
// The interactive generator without its COM face: lists of message items that are sent once as a sequence or
// periodically.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "com/com_ptr.h"
#include "ig/cyclic_transmission.h"
#include "ig/generator_window.h"
#include "ig/sdo_transfer.h"
#include "ig/settings.h"
#include "ig/snapshot.h"
#include "sdk/generator.h"
#include "sdk/runtime.h"

namespace NIg {

/// An item of one of the block's lists.
struct ItemPlace {
  NSdk::GeneratorList list = NSdk::kSequenceList;
  std::size_t position = 0;
};

/// Hears of single items as they are sent.
class TransmissionObserver {
 public:
  virtual ~TransmissionObserver() = default;
  virtual void ItemSent(const ItemPlace& place) = 0;
  virtual void ItemFailed(const ItemPlace& place) = 0;
  /// The SDO transfer of an item is over.
  virtual void TransferEnded(const ItemPlace& place, const SdoTransferResult& result) = 0;
};

/// One generator block. All calls arrive on the host's thread: user commands from the window or the host,
/// expiries from the host's timers, which are bound to `sink` and come back through OnTimer.
///
///   sequence:  idle -> running -> finished, stopped or failed -> idle; an item per tick of its timer
///   cyclic:    idle -> requested -> running (with the next expiry of any timer) -> idle
class Generator {
 public:
  Generator(NSdk::ITimerSink& sink, TransmissionObserver& observer);
  ~Generator();
  Generator(const Generator&) = delete;
  Generator& operator=(const Generator&) = delete;

  /// Makes the block's timers. The sequence timer ticks from now on, until a first sequence ends; that is
  /// what carries out a request for cyclic transmission.
  HRESULT StartMeasurement(NSdk::IRuntime& runtime);
  void StopMeasurement();
  bool IsMeasuring() const { return static_cast<bool>(mRuntime); }

  void OnTimer(NSdk::ITimer* timer);
  /// A frame that was received on the block's channel.
  void OnFrame(const NSdk::CanFrame& frame);

  /// The button "Execute": starts the sequence, or lets the next tick end it.
  void ToggleSequence();
  /// The button "Start": asks for cyclic transmission, or stops it.
  void ToggleCyclic();

  /// GeneratorActivity bits.
  std::uint32_t Activity() const;

  /// Window that follows the block from its present state on; null: none.
  void SetWindow(GeneratorWindow* window);
  /// Whether the items of a list are being sent, or are about to be: nobody changes the list then.
  bool IsLocked(NSdk::GeneratorList list) const;

  NCanopen::ItemList& List(NSdk::GeneratorList list) {
    return list == NSdk::kSequenceList ? mSequence : mCyclic;
  }
  GeneratorNumbers& Numbers() { return mNumbers; }
  const GeneratorNumbers& Numbers() const { return mNumbers; }
  /// The user has set others. A measurement that runs keeps its channel; the rest counts from the next
  /// sequence or transfer on.
  void SetNumbers(const GeneratorNumbers& numbers);
  /// Empty outside a measurement.
  const NCom::ComPtr<NSdk::ICANOutput>& Output() const { return mOutput; }
  /// Folder that relative "file:" data is resolved against.
  void SetDataFolder(std::filesystem::path folder) { mDataFolder = std::move(folder); }
  const std::filesystem::path& DataFolder() const { return mDataFolder; }

 private:
  // Starting and ending
  bool OtherBlockRunsSequence() const;
  bool OtherBlockRunsCyclic() const;
  void StartSequence();
  void StopSequenceByUser();
  void FinishSequence(bool endsWithCyclicStop);
  void SetSequenceRunning(bool running);
  void BeginCyclic();
  void EndCyclic();
  void ShowCyclicIdle();
  bool IsCyclicHeld() const;
  std::wstring ExecuteLabel() const;

  // Timers
  void SequenceTick();
  void CyclicExpiry(NSdk::ITimer* timer);
  void SequenceItemFailed(const ItemPlace& place);
  void CyclicItemFailed(const ItemPlace& place);
  HRESULT TakeFromHost(NSdk::IRuntime& runtime);
  void ReleaseTimers();

  // Sending
  bool SendItem(NCanopen::ZMsgItemInfo& item, const ItemPlace& place);
  bool StartSdo(NCanopen::SdoRecord& record, const ItemPlace& place);
  void CloseSdo();
  void ReportTransfer();
  void StartPause(std::uint32_t length_ms);
  void SwitchCyclic(bool start);

  NSdk::ITimerSink& mSink;
  TransmissionObserver& mObserver;
  NoWindow mNoWindow;
  GeneratorWindow* mWindow = &mNoWindow;

  GeneratorNumbers mNumbers;
  std::filesystem::path mDataFolder;
  NCanopen::ItemList mSequence;
  NCanopen::ItemList mCyclic;

  NCom::ComPtr<NSdk::IRuntime> mRuntime;
  NCom::ComPtr<NSdk::ICANOutput> mOutput;
  NCom::ComPtr<NSdk::ITimer> mSequenceTimer;
  NCom::ComPtr<NSdk::ITimer> mSdoPollTimer;
  NCom::ComPtr<NSdk::ITimer> mPauseTimer;
  SdoTransfer mSdo;
  std::optional<ItemPlace> mTransferring;  // whose transfer nobody was told the end of
  CyclicTransmission mCyclicTimers;

  Snapshot mSequenceSnapshot;
  Snapshot mCyclicSnapshot;
  std::size_t mSequenceIndex = 0;
  std::wstring mExecuteLabel;  // of the sequence button while it reads "Stop"
  bool mSequenceRunning = false;
  bool mCyclicRunning = false;
  bool mCyclicRequested = false;
  bool mCyclicBySequence = false;
  bool mPauseOver = true;
};

}  // namespace NIg
