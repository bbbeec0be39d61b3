#include "host/bench/serve.h"

#include <algorithm>
#include <stdexcept>

#include "host/bench/console.h"
#include "host/bench/stop_request.h"
#include "host/buses/bus_factory.h"
#include "host/buses/candump.h"
#include "host/buses/socketcand_server.h"
#include "host/configuration/bit_rate.h"
#include "host/configuration/document_objects.h"

namespace NBench {
namespace {

// A client may call a bus as the command line does, by its word or its address, or by the interface alone
// that the address ends with.
std::vector<std::string> NamesOf(const ChannelOption& channel) {
  const std::string address = NBuses::ParseBusName(channel.bus).address;
  std::vector<std::string> names = {NBuses::InterfaceName(channel.number), channel.bus};
  if (!address.empty()) names.push_back(address);
  const std::size_t slash = address.rfind('/');
  if (slash != std::string::npos) names.push_back(address.substr(slash + 1));
  return names;
}

// Channel 2 is can2, whatever interface of the system another channel stands for.
void DropAliasesThatAreNames(std::vector<NBuses::ServedBus>& buses) {
  for (NBuses::ServedBus& bus : buses) {
    for (const NBuses::ServedBus& other : buses) {
      if (&other == &bus) continue;
      bus.names.erase(std::remove(bus.names.begin() + 1, bus.names.end(), other.names.front()),
                      bus.names.end());
    }
  }
}

class Service final {
 public:
  explicit Service(const ServeOptions& options);
  ExitStatus Run();

 private:
  std::vector<NBuses::ServedBus> MakeBuses();
  void Print(const std::string& line);

  const ServeOptions& mOptions;
  NRuntime::AsioLoop mLoop;
  NBuses::BusFactory mFactory{mLoop};
  NBuses::SocketcandServer mServer;
  std::vector<std::unique_ptr<NDevices::DeviceOnBus>> mDevices;
  Output mOutput;
};

Service::Service(const ServeOptions& options)
    : mOptions(options),
      mServer(mLoop, MakeBuses(), {[this](const std::string& line) { Print(line); }, Complain}) {
  mDevices = NConfiguration::MakeDevices(mLoop, mFactory, options.host, ProgramFolder());
}

std::vector<NBuses::ServedBus> Service::MakeBuses() {
  std::vector<NBuses::ServedBus> buses;
  for (const ChannelOption& channel : mOptions.host.channels) {
    buses.push_back({NamesOf(channel), mFactory.Make(NConfiguration::BusForUse(channel))});
    if (mLoop.SkipsWaits()) {
      throw std::runtime_error("bus \"" + channel.bus +
                               "\": clients go by the real clock; leave out speed=max");
    }
  }
  DropAliasesThatAreNames(buses);
  return buses;
}

ExitStatus Service::Run() {
  const StopRequest stop(mLoop, [this] { mLoop.Stop(); });
  mServer.Start(mOptions.address);
  for (const auto& device : mDevices) device->PowerOn();
  Print("listening on " + mServer.Address());
  const auto end = mLoop.MakeAlarm([this] { mLoop.Stop(); });
  if (mOptions.duration) end->SetFor(mLoop.Now() + *mOptions.duration);
  mLoop.Run();
  mOutput.End();
  return kOk;
}

// The server goes on when nobody reads what it prints.
void Service::Print(const std::string& line) { mOutput.Write(line + '\n'); }

}  // namespace

ExitStatus Serve(const ServeOptions& options) { return Service(options).Run(); }

}  // namespace NBench
