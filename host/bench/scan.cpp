#include "host/bench/scan.h"

#include <algorithm>

#include "host/bench/console.h"
#include "host/bench/node_scan.h"
#include "host/bench/scan_view.h"
#include "host/bench/stop_request.h"
#include "host/buses/log_writer.h"

namespace NBench {
namespace {

constexpr NRuntime::Time kRefreshPeriod = std::chrono::milliseconds(200);

std::unique_ptr<ScanView> MakeView(const ScanOptions& options, NodeScan& scan) {
  if (options.json) return MakeScanDocument();
  return IsTerminal(stdout) ? MakeLiveTable(scan.Scanner()) : MakeChangeLines(scan);
}

// One run. Whatever ends it stops the loop, so that the module is never stopped from inside one of its calls.
class Listener final : private NRuntime::MeasurementObserver {
 public:
  explicit Listener(const ScanOptions& options);
  ~Listener() override { mHost.Measurement().Stop(); }
  ExitStatus Run();

 private:
  void OnFrame(const NRuntime::SeenFrame& seen) override;
  void OnTrouble(std::uint32_t channel, const std::string& text) override;
  void OnEnd() override;

  void Start();
  void WaitForEnd();
  ExitStatus Finish();
  void OnChanged(NRuntime::Time time);
  void AddError(std::string text);

  const ScanOptions mOptions;
  std::vector<std::string> mErrors;
  std::unique_ptr<ScanView> mView;  // empty at first: the module may have a message while it is loaded
  Host mHost;
  NodeScan mScan;
  std::optional<NBuses::LogWriter> mLog;
  std::chrono::nanoseconds mStart_utc{};
  bool mEndedByUser = false;
};

Listener::Listener(const ScanOptions& options)
    : mOptions(options),
      mHost(options.host, *this, [this](const std::string& text) { AddError(text); }),
      mScan(mHost, [this](NRuntime::Time time) { OnChanged(time); }) {
  mView = MakeView(options, mScan);
}

ExitStatus Listener::Run() {
  // Before anything starts: from here on a request to stop leaves everything in order.
  const StopRequest stopRequest(mHost.Loop(), [this] {
    mEndedByUser = true;
    mHost.Loop().Stop();
  });
  if (mOptions.log) mLog.emplace(*mOptions.log);
  Start();
  WaitForEnd();
  return Finish();
}

void Listener::Start() {
  mStart_utc = std::chrono::system_clock::now().time_since_epoch();
  try {
    mHost.Measurement().Start(mScan.Blocks());
    mHost.PowerOnDevices();
  } catch (...) {
    mHost.Measurement().Stop();
    if (mLog) mLog->Discard();
    throw;
  }
}

void Listener::WaitForEnd() {
  NRuntime::AsioLoop& loop = mHost.Loop();
  const auto end = loop.MakeAlarm([&] { loop.Stop(); });
  if (mOptions.duration) end->SetFor(loop.Now() - mHost.Measurement().Elapsed() + *mOptions.duration);
  std::unique_ptr<NRuntime::Alarm> refresh;
  refresh = loop.MakeAlarm([&] {
    mScan.CheckTime();
    mView->Refresh();
    refresh->SetFor(loop.Now() + kRefreshPeriod);
  });
  refresh->SetFor(loop.Now());
  loop.Run();
}

ExitStatus Listener::Finish() {
  mScan.CheckTime();
  ScanResult result = {mScan.Scanner().Table(), mHost.Measurement().Elapsed(), {}};
  mHost.Measurement().Stop();
  result.errors = mErrors;
  mView->Finish(result);
  if (!mView->Fault().empty()) Complain(mView->Fault());
  if (!mErrors.empty() || mView->IsUnread()) return kFailed;
  return mEndedByUser && mOptions.duration ? kInterrupted : kOk;
}

void Listener::OnChanged(NRuntime::Time time) {
  mView->Changed(time);
  if (mView->IsUnread()) mHost.Loop().Stop();
}

void Listener::OnFrame(const NRuntime::SeenFrame& seen) {
  if (!mLog) return;
  try {
    mLog->Write(mStart_utc + seen.time, seen.channel, seen.frame);
  } catch (const std::runtime_error& error) {
    mLog.reset();
    AddError(error.what());
    mHost.Loop().Stop();
  }
}

void Listener::OnTrouble(std::uint32_t channel, const std::string& text) {
  AddError("CAN channel " + std::to_string(channel) + ": " + text);
}

void Listener::OnEnd() {
  if (!mOptions.duration) mHost.Loop().Stop();
}

void Listener::AddError(std::string text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  mErrors.push_back(text);
  if (mView) mView->MakeRoom();
  Complain(text);
}

}  // namespace

ExitStatus Scan(const ScanOptions& options) { return Listener(options).Run(); }

}  // namespace NBench
