#include "host/runtime/measurement.h"

#include <algorithm>
#include <stdexcept>

namespace NRuntime {
namespace {

constexpr std::size_t kMostAtOnce = 200;  // frames, in one task

struct RunningBlock {
  ComPtr<NSdk::IRTClient> client;
  ComPtr<NSdk::ICANEvents> canEvents;      // empty: the block does not want frames
  ComPtr<NSdk::IMSTransferNode> transfer;  // empty: whatever comes to the block goes on behind it
};

// A block of a line says which events it takes; any other takes what it implements.
ComPtr<NSdk::ICANEvents> WantedCanEvents(const ComPtr<IUnknown>& block) {
  std::uint32_t events = NSdk::kBlockTakesCan;
  if (const auto node = Query<NSdk::IMSFinalNode>(block)) node->GetEvents(&events);
  return (events & NSdk::kBlockTakesCan) != 0 ? Query<NSdk::ICANEvents>(block) : nullptr;
}

}  // namespace

// A channel of the measurement: hears what its adapter reports.
class Measurement::Port final : public CanAdapterEvents {
 public:
  Port(Measurement& measurement, CanChannel channel)
      : mMeasurement(measurement), mChannel(std::move(channel)) {}

  std::uint32_t Number() const { return mChannel.number; }
  CanAdapter& Adapter() const { return *mChannel.adapter; }

  void OnReceived(const NSdk::CanFrame& frame, Time time) override {
    mMeasurement.Seen(Number(), frame, time, NSdk::kCanReceived);
  }
  void OnSent(const NSdk::CanFrame& frame, Time time) override {
    mMeasurement.Seen(Number(), frame, time, NSdk::kCanTransmitted);
  }
  void OnTrouble(const std::string& text) override { mMeasurement.mObserver.OnTrouble(Number(), text); }
  void OnEnd() override {
    mHasEnded = true;
    mMeasurement.EndWhenAllHaveEnded();
  }

  void Open() {
    mHasEnded = false;
    mChannel.adapter->Open(*this);
  }
  bool HasEnded() const { return mHasEnded; }

 private:
  Measurement& mMeasurement;
  CanChannel mChannel;
  bool mHasEnded = false;
};

// One measurement from start to stop.
struct Measurement::Run {
  explicit Run(Measurement& measurement)
      : owner(&measurement), start(measurement.mLoop.Now()), timers(measurement.mLoop) {}

  Measurement* owner;  // null once it has ended
  const Time start;
  TimerQueue timers;
  std::vector<RunningBlock> blocks;
  ComPtr<RunTime> runTime;
  ComPtr<CanMessage> message;         // used again for every frame that no block has kept
  std::vector<SeenFrame> waiting;     // seen, not yet delivered
  std::vector<SeenFrame> delivering;  // kept for its memory
  std::size_t delivered = 0;          // of them
  bool deliveryPosted = false;
};

class Measurement::Output final : public Implements<NSdk::ICANOutput> {
 public:
  Output(std::shared_ptr<Run> run, Port& port) : mRun(std::move(run)), mPort(port) {}

  HRESULT STDMETHODCALLTYPE Transmit(const NSdk::CanFrame* frame) override {
    if (!frame) return E_POINTER;
    if (!IsValidFrame(*frame)) return E_INVALIDARG;
    if (!mRun->owner) return E_FAIL;
    mPort.Adapter().Send(*frame);
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE TransmitMessage(NSdk::ICANMessage* message) override {
    if (!message) return E_POINTER;
    NSdk::CanFrame frame;
    std::uint32_t channel = 0;
    if (!mRun->owner) return E_FAIL;
    if (FAILED(message->GetChannel(&channel)) || channel != mPort.Number() || !ReadMessage(*message, frame)) {
      return E_INVALIDARG;
    }
    return Transmit(&frame);
  }

 private:
  std::shared_ptr<Run> mRun;
  Port& mPort;  // touched only while the run goes on
};

class Measurement::RunTime final : public Implements<NSdk::IRuntime> {
 public:
  explicit RunTime(std::shared_ptr<Run> run) : mRun(std::move(run)) {}

  HRESULT STDMETHODCALLTYPE CreateTimer(NSdk::ITimerSink* sink, NSdk::ITimer** timer) override {
    if (!sink || !timer) return E_POINTER;
    if (!mRun->owner) return E_FAIL;
    return mRun->timers.CreateTimer(sink).MoveTo(timer);
  }

  HRESULT STDMETHODCALLTYPE GetCanOutput(std::uint32_t channel, NSdk::ICANOutput** output) override {
    if (!output) return E_POINTER;
    if (!mRun->owner) return E_FAIL;
    for (const auto& port : mRun->owner->mPorts) {
      if (port->Number() != channel) continue;
      return ComPtr<NSdk::ICANOutput>::Own(new Output(mRun, *port)).MoveTo(output);
    }
    return E_INVALIDARG;
  }

  HRESULT STDMETHODCALLTYPE GetTime(std::int64_t* time_ns) override {
    if (!mRun->owner) return E_FAIL;
    return HandOut<std::int64_t>(mRun->owner->Elapsed().count(), time_ns);
  }

 private:
  std::shared_ptr<Run> mRun;
};

Measurement::Measurement(Loop& loop, std::vector<CanChannel> channels, MeasurementObserver& observer)
    : mLoop(loop), mObserver(observer) {
  for (CanChannel& channel : channels) mPorts.push_back(std::make_unique<Port>(*this, std::move(channel)));
}

Measurement::~Measurement() { Stop(); }

void Measurement::Start(const std::vector<ComPtr<IUnknown>>& blocks) {
  mRun = std::make_shared<Run>(*this);
  mRun->runTime = Make<RunTime>(mRun);
  try {
    for (const auto& port : mPorts) port->Open();
    StartBlocks(blocks);
  } catch (...) {
    Stop();
    throw;
  }
}

// Only blocks that run are noted, for those are stopped when a later one refuses.
void Measurement::StartBlocks(const std::vector<ComPtr<IUnknown>>& blocks) {
  for (std::size_t position = 0; position < blocks.size(); ++position) {
    const auto client = Query<NSdk::IRTClient>(blocks[position]);
    if (!client) continue;
    if (FAILED(client->StartMeasurement(mRun->runTime.Get()))) {
      throw std::runtime_error("block " + std::to_string(position + 1) + " refuses to start the measurement");
    }
    mRun->blocks.push_back(
        {client, WantedCanEvents(blocks[position]), Query<NSdk::IMSTransferNode>(blocks[position])});
  }
}

void Measurement::Stop() {
  if (!mRun) return;
  const std::shared_ptr<Run> run = mRun;
  StopBlocks();
  run->timers.Close();
  Deliver(kAll);
  CloseChannels();
  run->owner = nullptr;
  run->runTime.Reset();  // it holds the run in turn
  run->message.Reset();
  mRun.reset();
}

// Blocks get no more frames from here on.
void Measurement::StopBlocks() {
  const std::vector<RunningBlock> blocks = std::move(mRun->blocks);
  mRun->blocks.clear();
  for (const RunningBlock& block : blocks) block.client->StopMeasurement();
}

void Measurement::CloseChannels() {
  for (const auto& port : mPorts) port->Adapter().Close();
}

bool Measurement::IsSending() const {
  return std::any_of(mPorts.begin(), mPorts.end(),
                     [](const auto& port) { return port->Adapter().IsSending(); });
}

Time Measurement::Elapsed() const { return mRun ? mLoop.Now() - mRun->start : Time::zero(); }

void Measurement::Seen(std::uint32_t channel, const NSdk::CanFrame& frame, Time time,
                       NSdk::CanDirection direction) {
  if (!mRun) return;
  mRun->waiting.push_back({channel, direction, time - mRun->start, frame});
  DeliverSoon();
}

// The frames that came before wait for a delivery that is posted already.
void Measurement::EndWhenAllHaveEnded() {
  const auto hasEnded = [](const auto& port) { return port->HasEnded(); };
  if (!mRun || !std::all_of(mPorts.begin(), mPorts.end(), hasEnded)) return;
  mLoop.Post([run = std::weak_ptr<Run>(mRun)] {
    const auto kept = run.lock();
    if (kept && kept->owner) kept->owner->mObserver.OnEnd();
  });
}

void Measurement::DeliverSoon() {
  if (mRun->deliveryPosted) return;
  mRun->deliveryPosted = true;
  mLoop.Post([this, run = std::weak_ptr<Run>(mRun)] {
    const auto kept = run.lock();
    if (!kept || !kept->owner) return;
    kept->deliveryPosted = false;
    Deliver(kMostAtOnce);
  });
}

// Frames that blocks send meanwhile wait for the next delivery. A block may show a message box, in which the
// loop goes on: frames that come there are delivered behind those that are waiting here, and this delivery
// then finds its own delivered. After `most` frames whatever else the loop has to do gets its turn.
void Measurement::Deliver(std::size_t most) {
  const std::shared_ptr<Run> run = mRun;
  if (!run) return;
  auto& frames = run->delivering;
  if (run->delivered > frames.size() / 2) {
    frames.erase(frames.begin(), frames.begin() + static_cast<std::ptrdiff_t>(run->delivered));
    run->delivered = 0;
  }
  if (frames.empty()) {
    frames.swap(run->waiting);
  } else {
    frames.insert(frames.end(), run->waiting.begin(), run->waiting.end());
    run->waiting.clear();
  }
  for (std::size_t count = 0; run->delivered < frames.size(); ++count) {
    if (count == most) return DeliverSoon();
    const SeenFrame seen = frames[run->delivered++];
    mObserver.OnFrame(seen);
    DeliverToBlocks(*run, seen);
  }
  frames.clear();
  run->delivered = 0;
}

void Measurement::DeliverToBlocks(Run& run, const SeenFrame& seen) {
  if (run.blocks.empty()) return;
  if (!run.message || !run.message->IsFree()) {
    run.message = Make<CanMessage>(seen);
  } else {
    run.message->Refill(seen);
  }
  const ComPtr<CanMessage> message = std::move(run.message);
  // By position: a block may stop the measurement from inside the call.
  for (std::size_t position = 0; position < run.blocks.size(); ++position) {
    const auto events = run.blocks[position].canEvents;
    const auto transfer = run.blocks[position].transfer;
    if (events) events->OnCanMessage(message.Get());
    if (transfer && transfer->Passes(NSdk::kBlockTakesCan) == S_FALSE) break;
  }
  if (run.owner) run.message = message;
}

}  // namespace NRuntime
