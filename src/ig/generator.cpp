#include "ig/generator.h"

#include "canopen/flow_items.h"
#include "canopen/message_items.h"
#include "common/user_messages.h"
#include "ig/item_sender.h"
#include "ig/shared_state.h"
#include "resources/resource_ids.h"
#include "resources/text.h"

namespace NIg {
namespace {

constexpr std::uint32_t kSdoPollPeriod_ms = 20;

void ShowMessage(int text, NSdk::MessageIcon icon = NSdk::kMessageExclamation) {
  NCommon::ShowUserMessage(NResources::LoadText(text), icon);
}

}  // namespace

Generator::Generator(NSdk::ITimerSink& sink, TransmissionObserver& observer)
    : mSink(sink), mObserver(observer) {}

Generator::~Generator() {
  StopMeasurement();
  Generator* self = this;
  Shared().activeBlock.compare_exchange_strong(self, nullptr);
}

void Generator::SetWindow(GeneratorWindow* window) {
  mWindow = window ? window : &mNoWindow;
  mWindow->EnableControl(kControlExecute, IsMeasuring());
  mWindow->EnableControl(kControlStart, IsMeasuring() && !IsCyclicHeld());
  mWindow->EnableControl(kControlSequenceList, !IsLocked(NSdk::kSequenceList));
  mWindow->EnableControl(kControlCyclicList, !IsLocked(NSdk::kCyclicList));
  mWindow->SetText(kControlExecute, mSequenceRunning ? NResources::LoadText(IDS_IG_STOP)
                                                     : NResources::LoadText(IDS_IG_EXECUTE));
  mWindow->SetText(kControlStart,
                   NResources::LoadText(IsLocked(NSdk::kCyclicList) ? IDS_IG_STOP : IDS_IG_START_CYCLIC));
}

// A sequence that is to start cyclic transmission has its hand on the list.
bool Generator::IsCyclicHeld() const { return mSequenceRunning && mCyclicBySequence; }

bool Generator::IsLocked(NSdk::GeneratorList list) const {
  if (list == NSdk::kSequenceList) return mSequenceRunning;
  return mCyclicRunning || mCyclicRequested || IsCyclicHeld();
}

// As it was when the measurement started; there may have been no window then.
std::wstring Generator::ExecuteLabel() const {
  return mExecuteLabel.empty() ? NResources::LoadText(IDS_IG_EXECUTE) : mExecuteLabel;
}

std::uint32_t Generator::Activity() const {
  return (mSequenceRunning ? NSdk::kSequenceRunning : 0u) | (mCyclicRunning ? NSdk::kCyclicRunning : 0u) |
         (mCyclicRequested ? NSdk::kCyclicRequested : 0u);
}

void Generator::SetNumbers(const GeneratorNumbers& numbers) {
  const std::uint32_t channel = IsMeasuring() ? mNumbers.channel : numbers.channel;
  mNumbers = numbers;
  mNumbers.channel = channel;
}

// ---- measurement

HRESULT Generator::StartMeasurement(NSdk::IRuntime& runtime) {
  StopMeasurement();  // one that the host did not stop
  const HRESULT result = TakeFromHost(runtime);
  if (FAILED(result)) {
    ReleaseTimers();
    mOutput.Reset();
    return result;
  }
  mRuntime = &runtime;
  mSdo.SetOutput(mOutput.Get());
  mExecuteLabel = mWindow->Text(kControlExecute);
  mSequenceTimer->Start(mNumbers.serviceDelay, /*periodic=*/1);
  mWindow->EnableControl(kControlExecute, true);
  mWindow->EnableControl(kControlStart, true);
  return S_OK;
}

// A host that succeeds and hands out nothing has failed all the same.
HRESULT Generator::TakeFromHost(NSdk::IRuntime& runtime) {
  const HRESULT output = runtime.GetCanOutput(mNumbers.channel, mOutput.Receive());
  if (FAILED(output) || !mOutput) return FAILED(output) ? output : E_FAIL;
  for (auto* timer : {&mSequenceTimer, &mSdoPollTimer, &mPauseTimer}) {
    const HRESULT result = runtime.CreateTimer(&mSink, timer->Receive());
    if (FAILED(result) || !*timer) return FAILED(result) ? result : E_FAIL;
  }
  return S_OK;
}

void Generator::StopMeasurement() {
  if (!mRuntime) return;
  mCyclicRequested = false;
  EndCyclic();
  // A sequence that was under way ends here: left as running, it would keep every other block from sending.
  if (mSequenceRunning) SetSequenceRunning(false);
  ReleaseTimers();
  CloseSdo();
  mSdo.Forget();
  mSdo.SetOutput(nullptr);
  mOutput.Reset();
  mRuntime.Reset();
  mWindow->EnableControl(kControlStart, false);
  mWindow->EnableControl(kControlExecute, false);
  mWindow->EnableControl(kControlSequenceList, true);
  mWindow->EnableControl(kControlCyclicList, true);
  mWindow->EnableControl(kControlStart, false);
  mWindow->SetText(kControlStart, NResources::LoadText(IDS_IG_START_CYCLIC));
  mWindow->SetText(kControlExecute, ExecuteLabel());
}

void Generator::ReleaseTimers() {
  for (auto* timer : {&mSequenceTimer, &mSdoPollTimer, &mPauseTimer}) {
    if (*timer) (*timer)->Stop();
    timer->Reset();
  }
}

// ---- sequence

bool Generator::OtherBlockRunsSequence() const { return Shared().sequenceRunning && !mSequenceRunning; }

bool Generator::OtherBlockRunsCyclic() const { return Shared().cyclicRunning && !mCyclicRunning; }

void Generator::SetSequenceRunning(bool running) {
  mSequenceRunning = running;
  Shared().sequenceRunning = running;
}

void Generator::ToggleSequence() {
  if (!IsMeasuring()) return;
  if (mSequenceRunning) return StopSequenceByUser();
  if (OtherBlockRunsSequence() || OtherBlockRunsCyclic()) return ShowMessage(IDS_IG_ONLY_ONE_BLOCK);
  StartSequence();
}

void Generator::StopSequenceByUser() {
  mSequenceIndex = mSequenceSnapshot.size() + 1;
  if (mCyclicRunning && mCyclicBySequence) EndCyclic();
}

void Generator::StartSequence() {
  Shared().activeBlock = this;
  mSequenceSnapshot = EnabledItems(mSequence);
  mCyclicSnapshot = EnabledItems(mCyclic);
  mCyclicBySequence = !mCyclicSnapshot.empty() && StartsCyclicTransmission(mSequenceSnapshot);
  if (mCyclicBySequence) {
    mWindow->EnableControl(kControlCyclicList, false);
    mWindow->EnableControl(kControlStart, false);
    mWindow->SetText(kControlStart, NResources::LoadText(IDS_IG_STOP));
  }
  // The list counts here, not the snapshot: one whose items are all disabled starts, and ends with the first
  // tick.
  if (mSequence.empty()) return;
  mWindow->SetText(kControlExecute, NResources::LoadText(IDS_IG_STOP));
  SetSequenceRunning(true);
  mWindow->EnableControl(kControlSequenceList, false);
  mSequenceTimer->Stop();
  mSequenceTimer->Start(mNumbers.serviceDelay, /*periodic=*/1);
  mSdo.Forget();
  mPauseOver = true;
  mSequenceIndex = 0;
}

// One item leaves per tick; the tick after the last one ends the sequence, so that a transfer or a pause at
// its end is held too. How a transfer ended is not looked at: the sequence goes on.
void Generator::SequenceTick() {
  if (mSdo.IsRunning()) {
    if (!mSdo.HasEnded()) return;
    mSdoPollTimer->Stop();
    ReportTransfer();  // who hears of it may stop the measurement
    mSdo.End();
    return;
  }
  if (!mPauseOver || !mSequenceRunning) return;
  if (mSequenceIndex < mSequenceSnapshot.size()) {
    const SnapshotEntry entry = mSequenceSnapshot[mSequenceIndex];
    if (entry.item->IsEnabled()) {
      const ItemPlace place = {NSdk::kSequenceList, entry.listPosition};
      if (!SendItem(*entry.item, place)) return SequenceItemFailed(place);
      mObserver.ItemSent(place);
      if (!mSequenceRunning) return;  // who heard of it has stopped the measurement
    }
  }
  ++mSequenceIndex;
  if (mSequenceIndex > mSequenceSnapshot.size()) FinishSequence(EndsWithCyclicStop(mSequenceSnapshot));
}

void Generator::FinishSequence(bool endsWithCyclicStop) {
  mWindow->EnableControl(kControlSequenceList, true);
  mWindow->EnableControl(kControlExecute, true);
  mWindow->EnableControl(kControlStart, true);
  mWindow->SetText(kControlExecute, ExecuteLabel());
  mSequenceTimer->Stop();
  SetSequenceRunning(false);
  if (endsWithCyclicStop || !mCyclicRunning) ShowCyclicIdle();
}

// The message box lets other callbacks in, so the sequence is over before it opens, and its items may be gone
// afterwards.
void Generator::SequenceItemFailed(const ItemPlace& place) {
  if (!mRuntime) return;  // it failed because the measurement was stopped under it
  const bool endsWithCyclicStop = EndsWithCyclicStop(mSequenceSnapshot);
  mSequenceSnapshot.clear();
  mSequenceIndex = 1;
  SetSequenceRunning(false);
  mObserver.ItemFailed(place);
  ShowMessage(IDS_IG_SEQUENCE_FAILED);
  if (!mRuntime || mSequenceRunning) return;  // stopped, or started anew, while the message was shown
  mWindow->EnableControl(kControlSequenceList, true);
  mWindow->EnableControl(kControlExecute, true);
  mWindow->SelectItem(kControlSequenceList, place.position);
  mWindow->StopTimer(mSequenceTimer);
  FinishSequence(endsWithCyclicStop);
}

// ---- cyclic transmission

void Generator::ToggleCyclic() {
  if (!IsMeasuring()) return;
  if (mCyclicRunning) return EndCyclic();
  if (OtherBlockRunsSequence()) return ShowMessage(IDS_IG_ONLY_ONE_BLOCK);
  if (OtherBlockRunsCyclic()) return;
  Shared().activeBlock = this;
  if (SharesSdoChannel(mCyclic)) return ShowMessage(IDS_IG_CYCLIC_SDO_CHANNEL, NSdk::kMessagePlain);
  mCyclicSnapshot = EnabledItems(mCyclic);
  mWindow->EnableControl(kControlCyclicList, false);
  mWindow->SetText(kControlStart, NResources::LoadText(IDS_IG_STOP));
  mCyclicRequested = true;
}

void Generator::BeginCyclic() {
  mCyclicTimers.Start(*mRuntime, mSink, mCyclicSnapshot);
  mCyclicRunning = true;
  Shared().cyclicRunning = true;
}

void Generator::EndCyclic() {
  if (!mCyclicRunning) return;
  mCyclicTimers.Stop();
  CloseSdo();
  mCyclicRunning = false;
  Shared().cyclicRunning = false;
  ShowCyclicIdle();
}

void Generator::ShowCyclicIdle() {
  if (mCyclicRequested) return;
  mWindow->EnableControl(kControlCyclicList, true);
  mWindow->SetText(kControlStart, NResources::LoadText(IDS_IG_START_CYCLIC));
}

void Generator::CyclicExpiry(NSdk::ITimer* timer) {
  ZTimerInfo* message = mCyclicTimers.Find(timer);
  if (!message) return;
  if (message->item->IsEnabled()) {
    const ItemPlace place = {NSdk::kCyclicList, message->listPosition};
    if (!SendItem(*message->item, place)) return CyclicItemFailed(place);
    mObserver.ItemSent(place);
    message = mCyclicTimers.Find(timer);
  }
  if (message) CyclicTransmission::Expired(*message);
}

void Generator::CyclicItemFailed(const ItemPlace& place) {
  if (!mRuntime) return;  // as above
  EndCyclic();
  mObserver.ItemFailed(place);
  ShowMessage(IDS_IG_CYCLIC_FAILED);
  mWindow->SelectItem(kControlCyclicList, place.position);
}

// ---- timers and sending

void Generator::OnTimer(NSdk::ITimer* timer) {
  if (!mRuntime) return;
  // Whichever timer it is: a request for cyclic transmission is carried out first.
  if (mCyclicRequested) {
    mCyclicRequested = false;
    BeginCyclic();
  }
  if (timer == mSequenceTimer.Get()) {
    SequenceTick();
  } else if (timer == mSdoPollTimer.Get()) {
    mSdo.Tick();
    ReportTransfer();
  } else if (timer == mPauseTimer.Get()) {
    mPauseTimer->Stop();
    mPauseOver = true;
  } else {
    CyclicExpiry(timer);
  }
}

bool Generator::SendItem(NCanopen::ZMsgItemInfo& item, const ItemPlace& place) {
  if (const auto* pause = dynamic_cast<const NCanopen::ZPauseItemInfo*>(&item)) {
    StartPause(pause->record.length_ms);
    return true;
  }
  if (const auto* state = dynamic_cast<const NCanopen::ZCycSendStateItemInfo*>(&item)) {
    SwitchCyclic(state->record.start != 0);
    return true;
  }
  if (auto* sdo = dynamic_cast<NCanopen::ZSDOItemInfo*>(&item)) return StartSdo(sdo->record, place);
  return SendFrameItem(item, *mOutput, mDataFolder);
}

bool Generator::StartSdo(NCanopen::SdoRecord& record, const ItemPlace& place) {
  CloseSdo();
  if (!mSdo.Start(record, mNumbers, mDataFolder)) return false;
  mTransferring = place;
  mSdoPollTimer->Stop();
  mSdoPollTimer->Start(kSdoPollPeriod_ms, /*periodic=*/1);
  return true;
}

void Generator::CloseSdo() {
  ReportTransfer();
  mSdo.Close();
  ReportTransfer();  // as cut off, where it was still under way
}

void Generator::ReportTransfer() {
  if (!mTransferring || !mSdo.HasEnded()) return;
  const ItemPlace place = *mTransferring;
  mTransferring.reset();
  mObserver.TransferEnded(place, mSdo.Result());
}

void Generator::OnFrame(const NSdk::CanFrame& frame) {
  mSdo.Feed(frame);
  ReportTransfer();
}

void Generator::StartPause(std::uint32_t length_ms) {
  mPauseOver = false;
  mPauseTimer->Stop();
  mPauseTimer->Start(length_ms, /*periodic=*/0);
}

void Generator::SwitchCyclic(bool start) {
  if (start && !mCyclicRunning) BeginCyclic();
  if (!start && mCyclicRunning) EndCyclic();
}

}  // namespace NIg
