#include "host/bench/host_texts.h"

#include <algorithm>
#include <stdexcept>

#include "host/bench/options.h"
#include "host/configuration/document_paths.h"
#include "host/configuration/variant_name.h"
#include "host/runtime/text.h"
#include "sdk/class_ids.h"

namespace NBench {
namespace {

constexpr std::uint32_t kLastChannel = 255;

constexpr char kHostHelp[] = R"(  --config FILE.json Take channels, devices, databases and generators from a
                     configuration; options replace what it says, --device and
                     --db add to it
  --can NUMBER=BUS   Put CAN channel NUMBER on a bus; may be given several times
                     (default: 1=virtual)
  --channel NUMBER   Channel of the first generator and of what --device and --db
                     add (default: the configuration's, else the lowest)
  --device NODE[:FILE]
                     Put a simulated CANopen device on that bus, an I/O device or
                     the one that an EDS or DCF describes; may be given several times
  --db FILE.dbc      CAN database of that channel
  --variant NAME     Kind of host to be, halvard or tesmond (default: halvard)
  --module PATH      Module to load (default: Ostrel.hpi beside this program)

Buses:
)";

void TakeConfiguration(const std::string& text, HostOptions& options) {
  const std::filesystem::path file = std::filesystem::absolute(NRuntime::ToPath(text));
  NConfiguration::Document& document = options;
  document =
      NConfiguration::Resolved(NConfiguration::Load(NRuntime::ToPath(text)), NConfiguration::FolderOf(file));
  options.configuration = file.lexically_normal();
}

NSdk::HostVariant ParseVariant(const std::string& text) {
  const auto variant = NConfiguration::FindVariant(text);
  if (!variant) Refuse("--variant", text, "halvard or tesmond is wanted");
  return *variant;
}

ChannelOption ParseChannel(const std::string& text) {
  const std::size_t equals = text.find('=');
  const auto number = ParseNumber(text.substr(0, equals), 1, kLastChannel);
  if (equals == std::string::npos || !number) {
    Refuse("--can", text, "NUMBER=BUS is wanted, with a channel number from " + Range(1, kLastChannel));
  }
  return {*number, text.substr(equals + 1)};
}

ChannelOption* FindChannel(std::vector<ChannelOption>& channels, std::uint32_t number) {
  const auto found = std::find_if(channels.begin(), channels.end(),
                                  [&](const ChannelOption& channel) { return channel.number == number; });
  return found == channels.end() ? nullptr : &*found;
}

// A channel of the configuration keeps its databases and gets another bus, which has a timing of its own.
void TakeChannels(const std::vector<std::string>& texts, std::vector<ChannelOption>& channels) {
  std::vector<ChannelOption> given;
  for (const std::string& text : texts) {
    ChannelOption channel = ParseChannel(text);
    if (FindChannel(given, channel.number)) {
      Refuse("--can", text, "channel " + std::to_string(channel.number) + " is given twice");
    }
    given.push_back(std::move(channel));
  }
  for (ChannelOption& channel : given) {
    ChannelOption* const old = FindChannel(channels, channel.number);
    if (old) channel.databases = std::move(old->databases);
    (old ? *old : channels.emplace_back()) = std::move(channel);
  }
  if (channels.empty()) channels.push_back({1, "virtual"});
}

std::string NumbersOf(const std::vector<ChannelOption>& channels) {
  std::string text = channels.size() > 1 ? "channels: " : "channel: ";
  for (const ChannelOption& channel : channels) {
    text += (&channel == &channels.front() ? "" : ", ") + std::to_string(channel.number);
  }
  return "there is no such CAN channel (" + text + ")";
}

// The channel that is asked for, else the generator's of the configuration, else the lowest.
std::uint32_t ChooseChannel(const std::optional<std::string>& text, HostOptions& options) {
  std::vector<ChannelOption>& channels = options.channels;
  const NConfiguration::Block* const generator = options.FindBlock(NSdk::kProgIdCANopenIG);
  const std::string* const set = generator ? generator->Find("CANChannel") : nullptr;
  if (text || set) {
    const std::string& wanted = text ? *text : *set;
    const auto number = ParseNumber(wanted, 1, kLastChannel);
    if (number && FindChannel(channels, *number)) return *number;
    Refuse(text ? "--channel" : NRuntime::PathText(options.configuration) + ": CANChannel of the generator",
           wanted, NumbersOf(channels));
  }
  const auto lowest = std::min_element(
      channels.begin(), channels.end(),
      [](const ChannelOption& left, const ChannelOption& right) { return left.number < right.number; });
  return lowest->number;
}

// Two devices of one node-ID would answer each other's requests.
void TakeDevices(const std::vector<std::string>& texts, HostOptions& options) {
  std::vector<DeviceOption> given;
  for (const std::string& text : texts) {
    NDevices::DeviceWord word = NDevices::ParseDeviceWord(text);
    const auto isSame = [&](const DeviceOption& other) {
      return other.channel == options.channel && other.device.nodeId == word.nodeId;
    };
    if (std::any_of(given.begin(), given.end(), isSame))
      Refuse("--device", text, "this node-ID is given twice");
    std::erase_if(options.devices, isSame);
    given.push_back({options.channel, std::move(word)});
  }
  options.devices.insert(options.devices.end(), given.begin(), given.end());
}

bool IsSameFile(const std::filesystem::path& left, const std::filesystem::path& right) {
  std::error_code ignored;
  return std::filesystem::equivalent(left, right, ignored);
}

// Every file that the host reads.
std::vector<std::filesystem::path> FilesOf(const HostOptions& host) {
  std::vector<std::filesystem::path> files = {host.configuration};
  for (const ChannelOption& channel : host.channels) {
    files.insert(files.end(), channel.databases.begin(), channel.databases.end());
    const NBuses::BusName bus = NBuses::ParseBusName(channel.bus);
    if (bus.kind == "replay") files.push_back(NRuntime::ToPath(bus.address));
  }
  for (const DeviceOption& device : host.devices) {
    files.push_back(NRuntime::ToPath(device.device.description));
  }
  return files;
}

}  // namespace

void HostTexts::AddBusOptions(OptionList& options) {
  options.Value("--config", configuration);
  options.Values("--can", channels);
  options.Values("--device", devices);
  options.Value("--channel", channel);
}

void HostTexts::AddOptions(OptionList& options) {
  AddBusOptions(options);
  options.Values("--db", databases);
  options.Value("--variant", variant);
  options.Value("--module", module);
}

std::string DescribeHostOptions() { return kHostHelp + NBuses::DescribeBusKinds(); }

HostOptions CheckHost(const HostTexts& texts) {
  HostOptions options;
  if (texts.configuration) TakeConfiguration(*texts.configuration, options);
  TakeChannels(texts.channels, options.channels);
  options.channel = ChooseChannel(texts.channel, options);
  TakeDevices(texts.devices, options);
  for (const std::string& text : texts.databases) {
    FindChannel(options.channels, options.channel)->databases.push_back(NRuntime::ToPath(text));
  }
  if (texts.variant) options.variant = ParseVariant(*texts.variant);
  if (texts.module) options.module = NRuntime::ToPath(*texts.module);
  return options;
}

std::filesystem::path CheckLog(const std::string& text, const HostOptions& host) {
  std::filesystem::path log = NRuntime::ToPath(text);
  for (const std::filesystem::path& file : FilesOf(host)) {
    if (IsSameFile(log, file)) {
      throw std::runtime_error("log " + text + ": this file is a part of what the host is set up with");
    }
  }
  return log;
}

}  // namespace NBench
