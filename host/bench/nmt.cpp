#include "host/bench/nmt.h"

#include <algorithm>

#include "host/bench/console.h"
#include "host/bench/frame_words.h"
#include "host/bench/generator_block.h"
#include "host/bench/nmt_order.h"
#include "host/bench/stop_request.h"
#include "host/buses/candump.h"

namespace NBench {
namespace {

constexpr char kNmtHelp[] = R"(Sends an NMT command to all nodes of a network or to some of them, through a
generator block of the module and by the module's own commands.

Usage: ostrel-bench nmt COMMAND (all | NODE...) [OPTIONS]

  COMMAND            operational, preoperational, stop or reset
  NODE               Node-ID, 1 to 127

Options:
  --network NUMBER   Network to send to, 1 to 4, among those that a generator block
                     serves (default: 1)
)";

constexpr char kNmtFooter[] = R"(
Exit status: 0 sent, 1 not sent, 2 bad input, 130 stopped by Ctrl+C.

Examples:
  ostrel-bench nmt operational all --can 1=socketcan:can0
  ostrel-bench nmt reset 5 9 --device 5 --device 9
)";

constexpr NRuntime::Time kPatience = std::chrono::seconds(1);
constexpr NRuntime::Time kEcho = std::chrono::milliseconds(50);

struct NmtOptions {
  HostOptions host;
  NmtOrder order;
};

// Sends the command and shows what is on the bus until everything has left and the nodes had time to answer.
class Sender final : private NRuntime::MeasurementObserver, private GeneratorListener {
 public:
  explicit Sender(const NmtOptions& options);
  ~Sender() override { mHost.Measurement().Stop(); }
  ExitStatus Run();

 private:
  void OnFrame(const NRuntime::SeenFrame& seen) override;
  void OnTrouble(std::uint32_t channel, const std::string& text) override;
  void OnItemSent(NSdk::GeneratorList, std::uint32_t) override {}
  void OnItemFailed(NSdk::GeneratorList, std::uint32_t) override {}
  void OnTransferEnded(NSdk::GeneratorList, std::uint32_t, std::uint32_t) override {}
  void OnActivityChanged() override {}
  void AddError(std::string text);

  void SendAll();

  const NmtOptions mOptions;
  bool mFailed = false;
  bool mStopped = false;
  Output mOutput;
  Host mHost;
  GeneratorBlock mGenerator;
  std::unique_ptr<NRuntime::Alarm> mEnd;
  std::size_t mToSend;
};

Sender::Sender(const NmtOptions& options)
    : mOptions(options),
      mHost(options.host, *this, [this](const std::string& text) { AddError(text); }),
      mGenerator(mHost.Application(), mHost.Setup(), GeneratorSettings(options.host), *this),
      mEnd(mHost.Loop().MakeAlarm([this] { mHost.Loop().Stop(); })),
      mToSend(std::max<std::size_t>(options.order.nodeIds.size(), 1)) {}

ExitStatus Sender::Run() {
  const StopRequest stopRequest(mHost.Loop(), [this] {
    mStopped = true;
    mHost.Loop().Stop();
  });
  mHost.Measurement().Start({mGenerator.Object()});
  mHost.PowerOnDevices();
  mHost.Loop().Post([this] { SendAll(); });
  mEnd->SetFor(mHost.Loop().Now() + kPatience);
  mHost.Loop().Run();
  mHost.Measurement().Stop();
  if (mToSend != 0 && !mFailed && !mStopped) AddError("not sent");
  if (!mOutput.End() || mFailed) return kFailed;
  return mStopped ? kInterrupted : kOk;
}

void Sender::SendAll() {
  if (!Execute(mHost, mOptions.order)) AddError("the module refuses the command");
  if (mFailed) mHost.Loop().Stop();
}

void Sender::OnFrame(const NRuntime::SeenFrame& seen) {
  const std::string line = NBuses::ConsoleLine(seen.channel, seen.frame);
  mOutput.Write(NBuses::ConsoleTime(seen.time) + WithWords(line, seen.frame) + '\n');
  if (seen.direction != NSdk::kCanTransmitted || mToSend == 0) return;
  if (--mToSend == 0) mEnd->SetFor(mHost.Loop().Now() + kEcho);
}

void Sender::OnTrouble(std::uint32_t channel, const std::string& text) {
  AddError("CAN channel " + std::to_string(channel) + ": " + text);
}

void Sender::AddError(std::string text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  mFailed = true;
  Complain(text);
}

class NmtCommand final : public Command {
 public:
  void AddOptions(OptionList& options) override;
  std::string Help() const override { return kNmtHelp + DescribeHostOptions() + kNmtFooter; }
  HostTexts* Texts() override { return &mHost; }
  ExitStatus Run() const override { return Sender(Check()).Run(); }

 private:
  NmtOptions Check() const;

  HostTexts mHost;
  std::string mKind, mNetwork = "1";
  std::vector<std::string> mTargets;
};

void NmtCommand::AddOptions(OptionList& options) {
  mHost.AddOptions(options);
  options.Required("COMMAND", mKind);
  options.Required("NODE", mTargets);
  options.Value("--network", mNetwork);
}

NmtOptions NmtCommand::Check() const {
  constexpr std::uint32_t kLastNetwork = 4;
  NmtOptions options;
  options.host = CheckHost(mHost);
  const auto network = ParseNumber(mNetwork, 1, kLastNetwork);
  if (!network) Refuse("--network", mNetwork, "a number from " + Range(1, kLastNetwork) + " is wanted");
  options.order = ParseNmtOrder(mKind, mTargets, *network);
  return options;
}

}  // namespace

std::unique_ptr<Command> MakeNmtCommand() { return std::make_unique<NmtCommand>(); }

}  // namespace NBench
