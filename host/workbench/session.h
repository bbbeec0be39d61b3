#pragma once

#include <filesystem>
#include <memory>
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

  /// Starts the measurement, then lets the devices boot. Throws std::runtime_error in words for the user;
  /// everything is then stopped again.
  void Start(const std::vector<NRuntime::ComPtr<IUnknown>>& blocks);
  void Stop();

  bool IsRunning() const { return mMeasurement.IsRunning(); }
  NRuntime::Time Elapsed() const { return mMeasurement.Elapsed(); }
  NRuntime::IoLoop& Loop() { return *mLoop; }

 private:
  std::unique_ptr<NRuntime::IoLoop> mLoop;
  NBuses::BusFactory mBuses;
  std::vector<std::unique_ptr<NDevices::DeviceOnBus>> mDevices;
  NRuntime::Measurement mMeasurement;
};

}  // namespace NWorkbench
