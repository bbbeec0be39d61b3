#pragma once
// Channels and simulated devices as the user writes them in a dialog.

#include <string>
#include <vector>

#include "host/configuration/document.h"

namespace NWorkbench {

/// A channel as it is added: on a virtual bus of its own, with 125 kbit/s.
NConfiguration::Channel NewChannel(std::uint32_t number);

/// "03 1C"; empty without a timing.
std::string TimingText(const std::optional<NConfiguration::BitTiming>& timing);
/// Throws std::runtime_error: it is neither empty nor two bytes in hexadecimal.
std::optional<NConfiguration::BitTiming> ParseTiming(const std::string& text);

/// One path per line.
std::string PathLines(const std::vector<std::filesystem::path>& paths);
std::vector<std::filesystem::path> ParsePathLines(const std::string& text);

/// "CHANNEL=DEVICE" per line, the device in the form of the command line.
std::string DeviceLines(const std::vector<NConfiguration::Device>& devices);
/// Throws std::runtime_error, one line that names the one at fault: no such form, a channel that is not in
/// the list, a node-ID that is there twice.
std::vector<NConfiguration::Device> ParseDeviceLines(const std::string& text,
                                                     const std::vector<NConfiguration::Channel>& channels);

}  // namespace NWorkbench
