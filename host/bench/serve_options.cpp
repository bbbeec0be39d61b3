#include "host/bench/serve.h"
#include "host/buses/bus_factory.h"

namespace NBench {
namespace {

constexpr char kServeHelp[] = R"(Lets programs of this and other machines use buses over the network.

Usage: ostrel-bench serve [OPTIONS]

Clients speak the raw mode of socketcand; python-can and ostrel-bench itself do.
CAN channel 1 is called can1 there. The server goes on until Ctrl+C.

  --config FILE.json Take channels and devices from a configuration; --can replaces
                     or adds a channel, --device a device
  --can NUMBER=BUS   Put CAN channel NUMBER on a bus; may be given several times
                     (default: 1=virtual). Clients may also use the name of BUS
  --device NODE[:FILE]
                     Put a simulated CANopen device on a bus, an I/O device or the
                     one that an EDS or DCF describes; may be given several times
  --channel NUMBER   Channel whose bus gets the devices of --device (default: that
                     of the configuration's generator, else the lowest)
  --listen ADDR:PORT Where to listen (default: 127.0.0.1:29536, which only this
                     machine reaches). Whoever reaches it controls the buses
  --for SECONDS      Serve for this long

Buses:
)";

constexpr char kServeFaults[] = R"(
Devices that fail their SDO clients, --device 5,late=300 for instance:
)";

constexpr char kServeFooter[] = R"(
Exit status: 0 ended by Ctrl+C or --for, 2 bad input.

Examples:
  ostrel-bench serve --device 5
      A simulated device for programs that know socketcand.
  ostrel-bench serve --can 1=socketcan:can0 --listen 0.0.0.0:29536
      An interface of this machine for all others of the network.
)";

class ServeCommand final : public Command {
 public:
  void AddOptions(OptionList& options) override;
  std::string Help() const override {
    return kServeHelp + NBuses::DescribeBusKinds() + kServeFaults + NDevices::DescribeDeviceOptions() +
           kServeFooter;
  }
  HostTexts* Texts() override { return &mHost; }
  ExitStatus Run() const override { return Serve(Check()); }

 private:
  ServeOptions Check() const;

  HostTexts mHost;
  std::string mAddress = "127.0.0.1:29536";
  std::optional<std::string> mDuration;
};

// The server has no module, nor what belongs to one.
void ServeCommand::AddOptions(OptionList& options) {
  mHost.AddBusOptions(options);
  options.Value("--listen", mAddress);
  options.Value("--for", mDuration);
}

ServeOptions ServeCommand::Check() const {
  ServeOptions options;
  options.host = CheckHost(mHost);
  const auto address = NBuses::ReadHostAndPort(mAddress);
  if (!address) Refuse("--listen", mAddress, "ADDRESS:PORT is wanted, 127.0.0.1:29536 for example");
  options.address = *address;
  if (mDuration) options.duration = ParseSeconds(*mDuration);
  return options;
}

}  // namespace

std::unique_ptr<Command> MakeServeCommand() { return std::make_unique<ServeCommand>(); }

}  // namespace NBench
