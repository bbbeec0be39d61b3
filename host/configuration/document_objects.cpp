#include "host/configuration/document_objects.h"

#include <algorithm>
#include <stdexcept>

#include "host/configuration/bit_rate.h"

namespace NConfiguration {

std::vector<NRuntime::CanChannel> MakeChannels(NBuses::BusFactory& buses,
                                               const std::vector<Channel>& channels) {
  std::vector<NRuntime::CanChannel> made;
  made.reserve(channels.size());
  for (const Channel& channel : channels) {
    made.push_back({channel.number, buses.Make(BusForUse(channel))});
  }
  return made;
}

std::vector<std::unique_ptr<NDevices::DeviceOnBus>> MakeDevices(NRuntime::Loop& loop,
                                                                NBuses::BusFactory& buses,
                                                                const Document& document,
                                                                const std::filesystem::path& libraries) {
  std::vector<std::unique_ptr<NDevices::DeviceOnBus>> devices;
  devices.reserve(document.devices.size());
  for (const Device& device : document.devices) {
    const auto channel = std::find_if(document.channels.begin(), document.channels.end(),
                                      [&](const Channel& each) { return each.number == device.channel; });
    if (channel == document.channels.end()) {
      throw std::runtime_error("device " + std::to_string(device.device.nodeId) +
                               ": there is no CAN channel " + std::to_string(device.channel));
    }
    devices.push_back(
        NDevices::AttachDevice(loop, buses.Make(BusForUse(*channel)), device.device, libraries));
  }
  return devices;
}

NRuntime::ConfigurationData DataOf(const Document& document, const std::filesystem::path& file) {
  NRuntime::ConfigurationData data;
  data.path = file;
  for (const Channel& channel : document.channels) {
    data.canChannels.push_back(channel.number);
    for (const auto& database : channel.databases) data.databases.push_back({database, channel.number});
  }
  return data;
}

}  // namespace NConfiguration
