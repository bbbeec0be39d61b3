#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/buses/bus_factory.h"
#include "host/configuration/document.h"
#include "host/devices/device_on_bus.h"
#include "host/runtime/io_loop.h"
#include "host/runtime/measurement.h"

namespace NWorkbench {

/// The channels and simulated devices of a configuration for one measurement, on a loop of their own.
class Session {
 public:
  /// `document` has absolute paths; `libraries` is the folder of the host's libraries. Throws
  /// std::runtime_error, one line that names the bus or device at fault.
  Session(std::unique_ptr<NRuntime::IoLoop> loop, const NConfiguration::Document& document,
          const std::filesystem::path& libraries, NRuntime::MeasurementObserver& observer);

  /// Reaches the buses while the loop goes on. `done` is called once, from inside the call or later, with
  /// what is wrong in words for the user or nothing; not after Stop().
  void Prepare(std::function<void(const std::string& fault)> done);
  /// Once it is prepared: starts the measurement, then lets the devices boot. Throws std::runtime_error in
  /// words for the user; everything is then stopped again.
  void Start(const std::vector<NRuntime::ComPtr<IUnknown>>& blocks);
  void Stop();

  bool IsRunning() const { return mMeasurement.IsRunning(); }
  /// Does the system still look for a bus? To destroy the session would wait for that.
  bool IsSearching() const { return mSearches.use_count() > 1; }
  NRuntime::Time Elapsed() const { return mMeasurement.Elapsed(); }
  NRuntime::IoLoop& Loop() { return *mLoop; }

 private:
  std::vector<NRuntime::CanChannel> MakeChannels(const NConfiguration::Document& document);
  void OnPrepared(const std::string& fault);

  std::unique_ptr<NRuntime::IoLoop> mLoop;
  NBuses::BusFactory mBuses;
  std::vector<NRuntime::CanAdapter*> mAdapters;  // of the channels and of the devices
  std::vector<std::unique_ptr<NDevices::DeviceOnBus>> mDevices;
  NRuntime::Measurement mMeasurement;
  std::function<void(const std::string&)> mDone;
  std::size_t mAwaited = 0;  // adapters that are being prepared
  std::shared_ptr<int> mSearches = std::make_shared<int>();
};

}  // namespace NWorkbench
