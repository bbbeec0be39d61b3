#pragma once
// What a document describes, made for use: its paths are absolute.

#include <filesystem>
#include <memory>
#include <vector>

#include "host/buses/bus_factory.h"
#include "host/configuration/document.h"
#include "host/devices/device_on_bus.h"
#include "host/runtime/configuration.h"
#include "host/runtime/measurement.h"

namespace NConfiguration {

/// With closed adapters. Throws std::runtime_error, one line that names the bus at fault.
std::vector<NRuntime::CanChannel> MakeChannels(NBuses::BusFactory& buses,
                                               const std::vector<Channel>& channels);

/// The simulated devices, off. `libraries` is the folder of the host's libraries. Throws std::runtime_error,
/// one line that names the device or bus at fault.
std::vector<std::unique_ptr<NDevices::DeviceOnBus>> MakeDevices(NRuntime::Loop& loop,
                                                                NBuses::BusFactory& buses,
                                                                const Document& document,
                                                                const std::filesystem::path& libraries);

/// Channels and databases as plug-ins ask for them; `file` is that of the document, empty when it has none.
NRuntime::ConfigurationData DataOf(const Document& document, const std::filesystem::path& file);

}  // namespace NConfiguration
