#include "host/bench/play.h"

#include <algorithm>
#include <stdexcept>

#include "host/bench/console.h"
#include "host/bench/generator_block.h"
#include "host/bench/node_scan.h"
#include "host/bench/node_table.h"
#include "host/bench/report.h"
#include "host/bench/sdo_observer.h"
#include "host/bench/stop_request.h"
#include "host/buses/log_writer.h"
#include "host/runtime/text.h"

namespace NBench {
namespace {

constexpr NRuntime::Time kStatusPeriod = std::chrono::milliseconds(200);

NRuntime::Settings BlockSettings(const PlayOptions& options) {
  NRuntime::Settings settings = GeneratorSettings(options.host);
  if (options.delay_ms) settings.Set(L"SvcDelay", std::to_wstring(*options.delay_ms));
  return settings;
}

std::string OneLine(std::string text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  return text;
}

// One run. Whatever ends it is posted to the loop, so that the module is never stopped from inside one of its
// calls.
class Player final : private NRuntime::MeasurementObserver, private GeneratorListener {
 public:
  explicit Player(const PlayOptions& options);
  ~Player() override { mHost.Measurement().Stop(); }
  ExitStatus Run();

 private:
  void OnFrame(const NRuntime::SeenFrame& seen) override;
  void OnTrouble(std::uint32_t channel, const std::string& text) override;
  void OnItemSent(NSdk::GeneratorList list, std::uint32_t position) override;
  void OnItemFailed(NSdk::GeneratorList list, std::uint32_t position) override;
  void OnTransferEnded(NSdk::GeneratorList list, std::uint32_t position, std::uint32_t result) override;
  void OnActivityChanged() override { EndWhenIdle(); }
  void OnNodesChanged(NRuntime::Time time);
  void OnModuleMessage(const std::string& text);

  void LoadSequence();
  void OpenLog();
  void Start();
  std::vector<NRuntime::ComPtr<IUnknown>> Blocks() const;
  void StartTransmission();
  void WaitForEnd();
  void EndWhenIdle();
  bool IsIdle() const;
  void OnEnd() override;
  void EndByUser();
  ExitStatus Finish();
  void TakeNodes();

  void AddTransfers(const std::vector<SdoTransfer>& ended);
  void WriteLog(const NRuntime::SeenFrame& seen);
  void AddError(const std::string& text);
  void Remark(const std::string& text);
  void ShowStatus();

  const PlayOptions mOptions;
  Host mHost;
  GeneratorBlock mGenerator;
  std::unique_ptr<NodeScan> mScan;  // when it is asked for
  Foot mFoot;
  std::unique_ptr<Report> mReport;
  Tally mTally;
  SdoObserver mTransfers;
  std::optional<NBuses::LogWriter> mLog;
  std::chrono::nanoseconds mStart_utc{};
  std::string mFailedItem;            // until the message comes that says why
  std::string* mLoadFault = nullptr;  // where the message goes that a sequence cannot be loaded
  bool mCyclicAsked = false;          // by the user, and there is something to send
  bool mLogsEnded = false;
  bool mEndedByUser = false;
  bool mWaitsForFrames = false;  // nothing more is sent, but a slow bus has not taken all of it
};

Player::Player(const PlayOptions& options)
    : mOptions(options),
      mHost(options.host, *this, [this](const std::string& text) { OnModuleMessage(text); }),
      mGenerator(mHost.Application(), mHost.Setup(), BlockSettings(options), *this),
      mScan(options.scan
                ? std::make_unique<NodeScan>(mHost, [this](NRuntime::Time time) { OnNodesChanged(time); })
                : nullptr),
      mFoot(options.liveTable ? stdout : stderr),
      mReport(options.json ? MakeJsonReport() : MakeTextReport(options.view)) {
  LoadSequence();
  mTally.itemsToSend = mGenerator.CountEnabled(NSdk::kSequenceList);
}

void Player::LoadSequence() {
  if (mOptions.sequence) return mGenerator.LoadSequence(*mOptions.sequence);
  std::string fault = "its generator remembers no sequence file";
  mLoadFault = &fault;
  const bool loaded = mGenerator.ReloadSequence();
  mLoadFault = nullptr;
  if (loaded) return;
  const std::string reason = mGenerator.WhyNotLoaded(mOptions.host.configuration);
  throw std::runtime_error(NRuntime::PathText(mOptions.host.configuration) + ": " + OneLine(fault) +
                           (reason.empty() ? "" : ": " + reason));
}

ExitStatus Player::Run() {
  // Before anything starts: from here on a request to stop leaves everything in order.
  const StopRequest stopRequest(mHost.Loop(), [this] { EndByUser(); });
  OpenLog();
  Start();
  WaitForEnd();
  return Finish();
}

// A log may replace an older one, but never the file that is played.
void Player::OpenLog() {
  if (!mOptions.log) return;
  std::error_code ignored;
  if (std::filesystem::equivalent(*mOptions.log, mGenerator.SequenceFile(), ignored)) {
    throw std::runtime_error("log " + NRuntime::PathText(*mOptions.log) + ": this is the file to be played");
  }
  mLog.emplace(*mOptions.log);
}

void Player::Start() {
  mStart_utc = std::chrono::system_clock::now().time_since_epoch();
  try {
    mHost.Measurement().Start(Blocks());
    mHost.PowerOnDevices();
    StartTransmission();
  } catch (...) {
    mHost.Measurement().Stop();
    if (mLog) mLog->Discard();
    throw;
  }
}

std::vector<NRuntime::ComPtr<IUnknown>> Player::Blocks() const {
  std::vector<NRuntime::ComPtr<IUnknown>> blocks = {mGenerator.Object()};
  if (!mScan) return blocks;
  for (const auto& block : mScan->Blocks()) blocks.push_back(block);
  return blocks;
}

// Cyclic transmission is asked for first: a request that comes after a sequence has ended waits for the next
// one.
void Player::StartTransmission() {
  const std::uint32_t cyclicItems = mGenerator.CountEnabled(NSdk::kCyclicList);
  mCyclicAsked = mOptions.cyclic && cyclicItems != 0;
  if (mCyclicAsked) {
    mGenerator.ToggleCyclic();
  } else if (mOptions.cyclic) {
    Remark("the cyclic list has no enabled items");
  } else if (mTally.itemsToSend == 0) {
    Remark(cyclicItems == 0 ? "nothing to send: no item is enabled"
                            : "the sequence has no enabled items; --cyclic sends the cyclic list");
  }
  mGenerator.ToggleSequence();
  EndWhenIdle();
}

void Player::WaitForEnd() {
  NRuntime::AsioLoop& loop = mHost.Loop();
  const auto end = loop.MakeAlarm([&] { loop.Stop(); });
  if (mOptions.duration) end->SetFor(loop.Now() - mHost.Measurement().Elapsed() + *mOptions.duration);
  std::unique_ptr<NRuntime::Alarm> status;
  status = loop.MakeAlarm([&] {
    if (mScan) mScan->CheckTime();
    ShowStatus();
    status->SetFor(loop.Now() + kStatusPeriod);
  });
  if (mFoot.IsShown() || mScan) status->SetFor(loop.Now());
  loop.Run();
}

void Player::EndWhenIdle() {
  mHost.Loop().Post([this] {
    if (!IsIdle()) return;
    mWaitsForFrames = mHost.Measurement().IsSending();
    if (!mWaitsForFrames) mHost.Loop().Stop();
  });
}

// The logs that are replayed are over: cyclic messages would go on for nobody.
void Player::OnEnd() {
  mLogsEnded = true;
  EndWhenIdle();
}

// Whether the run is over before its time. One with a duration lasts that long, unless it has failed.
bool Player::IsIdle() const {
  const std::uint32_t activity = mGenerator.Activity();
  if (mOptions.duration && mTally.errors.empty()) return false;
  const bool untilStopped = mOptions.duration || (mCyclicAsked && !mLogsEnded);
  if (untilStopped) return activity == 0;
  return (activity & NSdk::kSequenceRunning) == 0;
}

void Player::EndByUser() {
  mEndedByUser = true;
  mHost.Loop().Stop();
}

ExitStatus Player::Finish() {
  const std::uint32_t activity = mGenerator.Activity();
  mTally.elapsed = mHost.Measurement().Elapsed();
  TakeNodes();
  mHost.Measurement().Stop();
  const bool cutShort = (activity & NSdk::kSequenceRunning) != 0;
  if (cutShort) {
    Remark("stopped before the end of the sequence");
  } else if ((activity & NSdk::kCyclicRunning) != 0 && !mOptions.duration && !mEndedByUser) {
    Remark(
        "cyclic transmission was still running at the end of the sequence and was stopped; --for or --cyclic "
        "lets it go on");
  }
  if (!mFailedItem.empty()) AddError("not transmitted");
  mFoot.Clear();
  AddTransfers(mTransfers.Finish(mTally.elapsed));
  mReport->Finish(mTally);
  if (!mReport->Fault().empty()) Complain(mReport->Fault());
  if (!mTally.errors.empty() || mReport->IsUnread()) return kFailed;
  return cutShort && mEndedByUser ? kInterrupted : kOk;
}

void Player::TakeNodes() {
  if (!mScan) return;
  mScan->CheckTime();
  mTally.nodes = mScan->Scanner().Table();
}

void Player::OnFrame(const NRuntime::SeenFrame& seen) {
  if (mWaitsForFrames) EndWhenIdle();
  WriteLog(seen);
  if (seen.direction == NSdk::kCanTransmitted) ++mTally.framesSent;
  if (!mOptions.liveTable) mFoot.Clear();  // nothing is written above a table
  mReport->Seen(seen);
  AddTransfers(mTransfers.OnFrame(seen.channel, seen.frame, seen.time));
  if (!mOptions.liveTable) ShowStatus();
  if (mReport->IsUnread()) mHost.Loop().Stop();
}

void Player::OnNodesChanged(NRuntime::Time time) {
  if (!mOptions.view.changes) return;
  mFoot.Clear();
  for (const NodeChange& change : mScan->TakeChanges()) mReport->Changed(time, change);
  ShowStatus();
}

void Player::AddTransfers(const std::vector<SdoTransfer>& ended) {
  for (const SdoTransfer& transfer : ended) {
    ++mTally.transfers;
    if (transfer.outcome != SdoOutcome::Ok) ++mTally.transfersFailed;
    mReport->Transferred(transfer);
  }
}

void Player::OnTrouble(std::uint32_t channel, const std::string& text) {
  AddError("CAN channel " + std::to_string(channel) + ": " + text);
}

void Player::OnItemSent(NSdk::GeneratorList list, std::uint32_t) {
  if (list == NSdk::kSequenceList) ++mTally.itemsSent;
}

void Player::OnItemFailed(NSdk::GeneratorList list, std::uint32_t position) {
  mFailedItem = mGenerator.DescribeItem(list, position);
}

// How a transfer went is seen on the bus; one that never started is not.
void Player::OnTransferEnded(NSdk::GeneratorList list, std::uint32_t position, std::uint32_t result) {
  if (result != NSdk::kTransferRefused) return;
  AddError("SDO transfer not started, its node-ID or COB-IDs cannot be used (" +
           mGenerator.DescribeItem(list, position) + ")");
}

void Player::OnModuleMessage(const std::string& text) {
  if (mLoadFault) {
    *mLoadFault = text;
    return;
  }
  AddError(text);
  EndWhenIdle();
}

void Player::WriteLog(const NRuntime::SeenFrame& seen) {
  if (!mLog) return;
  try {
    mLog->Write(mStart_utc + seen.time, seen.channel, seen.frame);
  } catch (const std::runtime_error& error) {
    mLog.reset();
    AddError(error.what());
    mHost.Loop().Stop();
  }
}

// The module's message says that an item failed, but not which one.
void Player::AddError(const std::string& text) {
  const std::string item = std::exchange(mFailedItem, {});
  const std::string line = OneLine(text) + (item.empty() ? "" : " (" + item + ")");
  mTally.errors.push_back(line);
  Remark(line);
}

void Player::Remark(const std::string& text) {
  mFoot.Clear();
  Complain(text);
}

void Player::ShowStatus() {
  if (!mFoot.IsShown()) return;
  const auto tenths =
      std::chrono::duration_cast<std::chrono::milliseconds>(mHost.Measurement().Elapsed()) / 100;
  const std::string seconds = std::to_string(tenths.count() / 10) + '.' + std::to_string(tenths.count() % 10);
  const std::string text = ProgressText(mTally) + ", " + seconds + " s";
  mFoot.Show(mOptions.liveTable ? LiveLines(mScan->Scanner().Table(), SizeOfTerminal(stdout), text)
                                : std::vector<std::string>{text});
}

}  // namespace

ExitStatus Play(const PlayOptions& options) { return Player(options).Run(); }

}  // namespace NBench
