#include "host/bench/scan_options.h"

#include "host/bench/scan.h"
#include "host/buses/bus_factory.h"

namespace NBench {
namespace {

constexpr char kScanHelp[] = R"(Lists the CANopen nodes that the module's scanner hears on a CAN bus. It only
listens: nothing is sent.

Usage: ostrel-bench scan [OPTIONS]

On a terminal the table is drawn in its place and stays there at the end;
elsewhere each change is one line, with the seconds since the start in front of
it. A node is listed once it has sent something of its own. Its name, profile,
vendor-ID and serial number are shown once somebody on the bus has read them.

What is heard, and for how long:
  --config FILE.json Take channels, devices and databases from a configuration;
                     options replace what it says, --device and --db add to it
  --can NUMBER=BUS   Put CAN channel NUMBER on a bus; may be given several times
                     (default: 1=virtual)
  --for SECONDS      Listen for this long (default: until Ctrl+C, or until the
                     logs that are replayed have ended)
  --device NODE[:FILE]
                     Put a simulated CANopen device on a bus, an I/O device or the
                     one that an EDS or DCF describes; may be given several times
  --db FILE.dbc      CAN database of the network: it names nodes that have not told
                     their own name (attribute CO_ID)
  --channel NUMBER   Channel of what --device and --db add (default: that of the
                     configuration's generator, else the lowest)
  --variant NAME     Kind of host to be, halvard or tesmond (default: halvard)
  --module PATH      Module to load (default: Ostrel.hpi beside this program)

What is shown:
  --json             One JSON document at the end, nothing else
  --log OUT.log      Write the frames of all channels to a candump log; channel 1
                     is called can1 there

Buses:
)";

constexpr char kScanFooter[] = R"(
Exit status: 0 listened as asked, 1 trouble with a bus or file, 2 bad input,
130 stopped by Ctrl+C before the time of --for was over. Without --for Ctrl+C is
the end that is wanted, and the status is 0.

Examples:
  ostrel-bench scan --device 5 --device 9
      Two simulated devices that boot, until Ctrl+C.
  ostrel-bench scan --can 1=replay:out.log,speed=max
      The nodes that a log tells of, at once.
  ostrel-bench scan --device 5 --for 2 --json > nodes.json
      For a script.
)";

class ScanCommand final : public Command {
 public:
  void AddOptions(OptionList& options) override;
  std::string Help() const override { return kScanHelp + NBuses::DescribeBusKinds() + kScanFooter; }
  HostTexts* Texts() override { return &mHost; }
  ExitStatus Run() const override { return Scan(Check()); }

 private:
  ScanOptions Check() const;

  // The options as text, before anything is checked.
  HostTexts mHost;
  std::optional<std::string> mDuration, mLog;
  bool mJson = false;
};

void ScanCommand::AddOptions(OptionList& options) {
  mHost.AddOptions(options);
  options.Value("--for", mDuration);
  options.Value("--log", mLog);
  options.Flag("--json", mJson);
}

ScanOptions ScanCommand::Check() const {
  ScanOptions options;
  options.host = CheckHost(mHost);
  options.json = mJson;
  if (mDuration) options.duration = ParseSeconds(*mDuration);
  if (mLog) options.log = CheckLog(*mLog, options.host);
  return options;
}

}  // namespace

std::unique_ptr<Command> MakeScanCommand() { return std::make_unique<ScanCommand>(); }

}  // namespace NBench
