#include "host/workbench/session.h"

#include <algorithm>
#include <stdexcept>

namespace NWorkbench {
namespace {

std::vector<NRuntime::CanChannel> MakeChannels(NBuses::BusFactory& buses,
                                               const NConfiguration::Document& document) {
  std::vector<NRuntime::CanChannel> channels;
  for (const auto& channel : document.channels) channels.push_back({channel.number, buses.Make(channel.bus)});
  return channels;
}

std::vector<std::unique_ptr<NDevices::DeviceOnBus>> MakeDevices(NRuntime::Loop& loop,
                                                                NBuses::BusFactory& buses,
                                                                const NConfiguration::Document& document,
                                                                const std::filesystem::path& libraries) {
  std::vector<std::unique_ptr<NDevices::DeviceOnBus>> devices;
  for (const auto& device : document.devices) {
    const auto channel =
        std::find_if(document.channels.begin(), document.channels.end(),
                     [&](const NConfiguration::Channel& each) { return each.number == device.channel; });
    if (channel == document.channels.end()) {
      throw std::runtime_error("device " + std::to_string(device.device.nodeId) +
                               ": there is no CAN channel " + std::to_string(device.channel));
    }
    devices.push_back(NDevices::AttachDevice(loop, buses.Make(channel->bus), device.device, libraries));
  }
  return devices;
}

}  // namespace

Session::Session(std::unique_ptr<NRuntime::IoLoop> loop, const NConfiguration::Document& document,
                 const std::filesystem::path& libraries, NRuntime::MeasurementObserver& observer)
    : mLoop(std::move(loop)),
      mBuses(*mLoop),
      mDevices(MakeDevices(*mLoop, mBuses, document, libraries)),
      mMeasurement(*mLoop, MakeChannels(mBuses, document), observer) {}

void Session::Start(const std::vector<NRuntime::ComPtr<IUnknown>>& blocks) {
  try {
    mMeasurement.Start(blocks);
    for (const auto& device : mDevices) device->PowerOn();
  } catch (...) {
    Stop();
    throw;
  }
}

void Session::Stop() {
  mMeasurement.Stop();
  for (const auto& device : mDevices) device->PowerOff();
}

}  // namespace NWorkbench
