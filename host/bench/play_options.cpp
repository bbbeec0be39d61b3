#include "host/bench/play_options.h"

#include <stdexcept>

#include "host/bench/console.h"
#include "host/bench/play.h"
#include "host/buses/bus_factory.h"
#include "host/runtime/text.h"
#include "sdk/class_ids.h"

namespace NBench {
namespace {

constexpr std::uint32_t kLongestDelay_ms = 100000;

constexpr char kPlayHelp[] = R"(Plays a sequence file through the module's generator on a CAN bus.

Usage: ostrel-bench play FILE.seq [OPTIONS]
       ostrel-bench play --config FILE.json [FILE.seq] [OPTIONS]

With a configuration alone, the sequence that its first generator block
remembers is played. The run ends with the sequence. With --cyclic it goes on
until Ctrl+C, or until the sequence has stopped the cyclic list. With --for it
lasts the time given.

What is sent, and how:
  --config FILE.json Take channels, devices, databases and the generator's settings
                     from a configuration; options replace what it says, --device
                     and --db add to it
  --can NUMBER=BUS   Put CAN channel NUMBER on a bus; may be given several times
                     (default: 1=virtual)
  --channel NUMBER   Channel on which the generator sends (default: the
                     configuration's, else the lowest)
  --cyclic           Send the cyclic list too, from the beginning
  --for SECONDS      Run for this long
  --delay MS         Pause between two items, 1 to 100000 (default: the
                     configuration's, else 10)
  --device NODE[:FILE]
                     Put a simulated CANopen device on the generator's bus, an I/O
                     device or the one that an EDS or DCF describes; may be given
                     several times
  --db FILE.dbc      CAN database of the generator's channel
  --variant NAME     Kind of host to be, halvard or tesmond (default: halvard)
  --module PATH      Module to load (default: Ostrel.hpi beside this program)

What is shown:
  --frames           The frames on the bus
  --transfers        SDO transfers in words. Without either, a terminal shows both
                     and everything else the frames
  --times            The time of each frame in front of it, in seconds
  --words            What each frame means in CANopen behind it
  --scan             The nodes that are heard: each change as a line, the table at
                     the end; on a terminal, where no frames or transfers are
                     asked for, the table alone, drawn in its place
  --json             One JSON document at the end, nothing else
  --log OUT.log      Write the frames of all channels to a candump log; channel 1
                     is called can1 there

Buses:
)";

constexpr char kPlayFaults[] = R"(
Devices that fail their SDO clients, --device 5,late=300 for instance:
)";

constexpr char kPlayFooter[] = R"(
Exit status: 0 transmitted, 1 not everything was transmitted, 2 bad input,
130 stopped by Ctrl+C before the end of the sequence.

Examples:
  ostrel-bench play first-steps.seq
      Each item of the sequence once, every frame as it leaves.
  ostrel-bench play first-steps.seq --cyclic --for 5 --log out.log
      Five seconds with the cyclic list, into a log for can-utils.
  ostrel-bench play first-steps.seq --device 5 --transfers
      Against a simulated device, its SDO transfers in words.
  ostrel-bench play first-steps.seq --device 5 --transfers --scan
      What becomes of the nodes meanwhile.
  ostrel-bench play --config plant.json
      What a configuration holds.
  ostrel-bench play first-steps.seq --json > frames.json
      For a script.
)";

class PlayCommand final : public Command {
 public:
  void AddOptions(OptionList& options) override;
  std::string Help() const override {
    return kPlayHelp + NBuses::DescribeBusKinds() + kPlayFaults + NDevices::DescribeDeviceOptions() +
           kPlayFooter;
  }
  HostTexts* Texts() override { return &mHost; }
  ExitStatus Run() const override { return Play(Check()); }

 private:
  PlayOptions Check() const;
  std::uint32_t CheckDelay() const;
  void ChooseView(PlayOptions& options) const;

  // The options as text, before anything is checked.
  HostTexts mHost;
  std::optional<std::string> mSequence, mDelay, mDuration, mLog;
  bool mCyclic = false, mJson = false;
  bool mFrames = false, mTransfers = false, mTimes = false, mWords = false, mScan = false;
};

void PlayCommand::AddOptions(OptionList& options) {
  options.Value("FILE.seq", mSequence);
  mHost.AddOptions(options);
  options.Flag("--cyclic", mCyclic);
  options.Value("--for", mDuration);
  options.Value("--delay", mDelay);
  options.Value("--log", mLog);
  options.Flag("--json", mJson);
  options.Flag("--frames", mFrames);
  options.Flag("--transfers", mTransfers);
  options.Flag("--times", mTimes);
  options.Flag("--words", mWords);
  options.Flag("--scan", mScan);
}

PlayOptions PlayCommand::Check() const {
  PlayOptions options;
  if (!mSequence && !mHost.configuration) throw std::runtime_error("FILE.seq is wanted, or --config");
  options.host = CheckHost(mHost);
  if (mSequence) {
    options.sequence = NRuntime::ToPath(*mSequence);
  } else if (!options.host.FindBlock(NSdk::kProgIdCANopenIG)) {
    throw std::runtime_error(*mHost.configuration + ": there is no generator block; FILE.seq is wanted");
  }
  options.cyclic = mCyclic;
  options.json = mJson;
  ChooseView(options);
  if (mDelay) options.delay_ms = CheckDelay();
  if (mDuration) options.duration = ParseSeconds(*mDuration);
  if (mLog) options.log = CheckLog(*mLog, options.host);
  return options;
}

std::uint32_t PlayCommand::CheckDelay() const {
  const auto delay = ParseNumber(*mDelay, 1, kLongestDelay_ms);
  if (!delay) {
    Refuse("--delay", *mDelay, "a number of milliseconds from " + Range(1, kLongestDelay_ms) + " is wanted");
  }
  return *delay;
}

// A program that reads the output expects frames alone; a person sees the transfers as well, or the table of
// nodes in its place, above which nothing scrolls.
void PlayCommand::ChooseView(PlayOptions& options) const {
  const bool chosen = mFrames || mTransfers;
  const bool isTerminal = IsTerminal(stdout);
  options.scan = mScan;
  options.liveTable = mScan && isTerminal && !chosen && !mJson;
  options.view.frames = chosen ? mFrames : !options.liveTable;
  options.view.transfers = chosen ? mTransfers : isTerminal && !options.liveTable;
  options.view.times = mTimes;
  options.view.words = mWords;
  options.view.changes = mScan && !options.liveTable && !mJson;
}

}  // namespace

std::unique_ptr<Command> MakePlayCommand() { return std::make_unique<PlayCommand>(); }

}  // namespace NBench
