#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/bench/node_names.h"
#include "host/buses/bus_factory.h"
#include "host/configuration/document.h"
#include "host/devices/device_on_bus.h"
#include "host/runtime/application.h"
#include "host/runtime/asio_loop.h"
#include "host/runtime/measurement.h"
#include "host/runtime/module.h"
#include "host/runtime/setup.h"

namespace NBench {

using ChannelOption = NConfiguration::Channel;
using DeviceOption = NConfiguration::Device;

/// What a host is set up with. Paths are for use as they are.
struct HostOptions : NConfiguration::Document {
  std::uint32_t channel = 0;  ///< one of the list: the generator's, and that of devices of the command line
  std::optional<std::filesystem::path> module;  ///< empty: the one beside the program
  std::filesystem::path configuration;          ///< file of the configuration, absolute; empty: there is none
};

/// A host without windows: the loop, the channels, the application object and the module, ready for blocks.
/// Blocks are let go before the host is, and the measurement is stopped before them.
class Host {
 public:
  /// `showMessage` gets each message of the module as one text. Throws std::runtime_error, one line that
  /// names the channel, bus or module at fault.
  Host(const HostOptions& options, NRuntime::MeasurementObserver& observer,
       std::function<void(const std::string&)> showMessage);

  /// Nodes that are picked whenever the module asks for some; none at first.
  void PickNodes(std::vector<std::uint8_t> nodeIds);

  /// Lets the simulated devices boot. Throws std::runtime_error when one cannot join its bus.
  void PowerOnDevices();
  void PowerOffDevices();

  /// Of the databases.
  const NodeNames& Names() const { return mNames; }

  NRuntime::AsioLoop& Loop() { return mLoop; }
  NRuntime::Application& Application() { return *mApplication; }
  NRuntime::Module& Module() { return mModule; }
  /// Where blocks are inserted; a host without windows has one setup for all of them.
  NRuntime::Setup& Setup() { return *mSetup; }
  NRuntime::Measurement& Measurement() { return mMeasurement; }

 private:
  NodeNames mNames;
  NRuntime::AsioLoop mLoop;
  NBuses::BusFactory mBuses{mLoop};
  std::vector<std::unique_ptr<NDevices::DeviceOnBus>> mDevices;
  NRuntime::Measurement mMeasurement;
  NRuntime::ComPtr<NRuntime::Application> mApplication;
  NRuntime::ComPtr<NRuntime::Setup> mSetup;
  std::shared_ptr<std::vector<std::uint8_t>> mPicked = std::make_shared<std::vector<std::uint8_t>>();
  NRuntime::Module mModule;
};

}  // namespace NBench
