#include "host/configuration/document_reader.h"

#include <algorithm>
#include <stdexcept>

#include "host/buses/bus_name.h"
#include "host/configuration/document_text.h"
#include "host/configuration/fields.h"
#include "host/configuration/variant_name.h"
#include "host/devices/fault_option.h"
#include "host/runtime/text.h"

namespace NConfiguration {
namespace {

constexpr std::int64_t kLastChannel = 255;
constexpr std::int64_t kLastNode = 127;
constexpr std::int64_t kLastLanguage = 99;
constexpr std::int64_t kFarthestPixel = 32767;
constexpr std::size_t kLongestPath = 4096;
constexpr std::size_t kLongestName = 255;

using Faults = std::vector<Fault>;

void AddFault(const JsonPlace& place, Faults& faults, std::string text) {
  faults.push_back({place.value->line, 0, place.place, std::move(text)});
}

// ---- channels

void ReadBus(Fields& fields, std::string& bus) {
  std::string word;
  fields.ReadText("bus", kLongestPath, word);
  if (word.empty()) return;
  try {
    NBuses::ParseBusName(word);
    bus = word;
  } catch (const std::runtime_error& error) {
    fields.Complain("bus", error.what());
  }
}

void ReadTiming(Fields& channel, Faults& faults, std::optional<BitTiming>& timing) {
  const JsonPlace place = channel.TakeObject("timing");
  if (!place.value) return;
  Fields fields(place, faults);
  timing.emplace();
  fields.ReadHexNumber("register0", 0, 0xFF, timing->register0);
  fields.ReadHexNumber("register1", 0, 0xFF, timing->register1);
  fields.Finish();
}

void ReadDatabases(Fields& channel, Faults& faults, std::vector<std::filesystem::path>& databases) {
  for (const JsonPlace& entry : channel.TakeList("databases")) {
    const std::string& text = entry.value->text;
    if (entry.value->kind != JsonKind::Text || text.empty() || text.size() > kLongestPath) {
      AddFault(entry, faults, "the path of a file is expected");
      continue;
    }
    databases.push_back(NRuntime::ToPath(text));
  }
}

void ReadChannel(const JsonPlace& place, Faults& faults, std::vector<Channel>& channels) {
  Fields fields(place, faults);
  if (!fields.IsObject()) return;
  Channel channel;
  fields.ReadNumber("number", 1, kLastChannel, channel.number);
  ReadBus(fields, channel.bus);
  ReadTiming(fields, faults, channel.timing);
  ReadDatabases(fields, faults, channel.databases);
  fields.Finish();
  const auto same = [&](const Channel& other) { return other.number == channel.number; };
  if (channel.number != 0 && std::any_of(channels.begin(), channels.end(), same)) {
    fields.Complain("number", "channel " + std::to_string(channel.number) + " stands in the list twice");
  }
  channels.push_back(std::move(channel));
}

// ---- devices

void ReadFaultOption(Fields& fields, const NDevices::FaultOption& option, NDevices::Misbehaviour& faults) {
  std::uint32_t value = option.get(faults);
  if (option.IsFlag()) {
    bool set = false;
    fields.ReadFlag(option.name, set, Need::Optional);
    value = set ? 1 : 0;
  } else {
    fields.ReadHexNumber(option.name, option.low, option.high, value, Need::Optional);
  }
  option.set(faults, value);
}

void ReadMisbehaviour(Fields& device, Faults& faults, NDevices::Misbehaviour& misbehaviour) {
  const JsonPlace place = device.TakeObject("faults");
  if (!place.value) return;
  Fields fields(place, faults);
  std::vector<std::string_view> given;
  for (const NDevices::FaultOption& option : NDevices::FaultOptions()) {
    ReadFaultOption(fields, option, misbehaviour);
    if (fields.Take(option.name).value) given.push_back(option.name);
  }
  fields.Finish();
  const std::string contradiction = NDevices::FindContradiction(given, misbehaviour);
  if (!contradiction.empty()) fields.Complain({}, contradiction);
}

void CheckPlaceOfDevice(Fields& fields, const Device& device, const Document& document) {
  // A channel without a number, which is a fault by itself, may be the one.
  const auto isItsChannel = [&](const Channel& channel) {
    return channel.number == device.channel || channel.number == 0;
  };
  if (device.channel != 0 && std::none_of(document.channels.begin(), document.channels.end(), isItsChannel)) {
    fields.Complain("channel", "there is no channel " + std::to_string(device.channel) + " in /channels");
  }
  const auto isSame = [&](const Device& other) {
    return other.channel == device.channel && other.device.nodeId == device.device.nodeId;
  };
  if (device.device.nodeId != 0 && std::any_of(document.devices.begin(), document.devices.end(), isSame)) {
    fields.Complain("node", "another device on channel " + std::to_string(device.channel) + " is node " +
                                std::to_string(device.device.nodeId));
  }
}

void ReadDevice(const JsonPlace& place, Faults& faults, Document& document) {
  Fields fields(place, faults);
  if (!fields.IsObject()) return;
  Device device;
  fields.ReadNumber("channel", 1, kLastChannel, device.channel);
  fields.ReadNumber("node", 1, kLastNode, device.device.nodeId);
  fields.ReadText("description", kLongestPath, device.device.description, Need::Optional);
  ReadMisbehaviour(fields, faults, device.device.faults);
  fields.Finish();
  CheckPlaceOfDevice(fields, device, document);
  document.devices.push_back(std::move(device));
}

// ---- blocks and windows

void ReadWindow(Fields& owner, Faults& faults, std::optional<Window>& window,
                std::string_view key = "window") {
  const JsonPlace place = owner.TakeObject(key);
  if (!place.value) return;
  Fields fields(place, faults);
  window.emplace();
  fields.ReadNumber("x", -kFarthestPixel, kFarthestPixel, window->x);
  fields.ReadNumber("y", -kFarthestPixel, kFarthestPixel, window->y);
  fields.ReadNumber("width", 0, kFarthestPixel, window->width);
  fields.ReadNumber("height", 0, kFarthestPixel, window->height);
  fields.ReadFlag("open", window->open, Need::Optional);
  fields.ReadFlag("maximized", window->maximized, Need::Optional);
  fields.ReadFlag("minimized", window->minimized, Need::Optional);
  fields.Finish();
}

void ReadInnerWindows(Fields& owner, Faults& faults, std::map<std::string, Window>& windows) {
  const JsonPlace place = owner.TakeObject("windows");
  if (!place.value) return;
  Fields fields(place, faults);
  for (const char* const name : kInnerWindows) {
    std::optional<Window> window;
    ReadWindow(fields, faults, window, name);
    if (window) windows[name] = *window;
  }
  fields.Finish();
}

// Keys and values are the block's own: any text will do.
void ReadSettings(Fields& owner, Faults& faults, std::vector<Block::Setting>& settings) {
  const JsonPlace place = owner.TakeObject("settings");
  if (!place.value) return;
  const JsonValue& object = *place.value;
  for (std::size_t position = 0; position < object.keys.size(); ++position) {
    const JsonPlace entry = {&object.values[position], place.place + '/' + object.keys[position]};
    if (entry.value->kind != JsonKind::Text) {
      AddFault(entry, faults, Expected("a text, with quotation marks around numbers too,", *entry.value));
    } else if (object.keys[position].empty() || object.keys[position].size() > kLongestName) {
      AddFault(entry, faults, "a key has 1 to " + std::to_string(kLongestName) + " bytes");
    } else {
      settings.emplace_back(object.keys[position], entry.value->text);
    }
  }
}

void ReadBlock(const JsonPlace& place, Faults& faults, std::vector<Block>& blocks) {
  Fields fields(place, faults);
  if (!fields.IsObject()) return;
  Block block;
  fields.ReadText("progId", kLongestName, block.progId);
  ReadSettings(fields, faults, block.settings);
  ReadWindow(fields, faults, block.window);
  fields.Finish();
  blocks.push_back(std::move(block));
}

// ---- the whole

// What a newer program has written may mean something else everywhere.
bool CheckFormat(Fields& fields, Faults& faults) {
  constexpr std::int64_t kAnyFormat = 1000000;
  std::uint32_t format = 0;
  fields.ReadNumber("format", 1, kAnyFormat, format);
  if (format <= kFormat) return true;
  faults.clear();
  fields.Complain("format", "the file has format " + std::to_string(format) +
                                " and comes from a newer version; this one reads formats up to " +
                                std::to_string(kFormat));
  return false;
}

void ReadVariant(Fields& fields, NSdk::HostVariant& variant) {
  std::string name;
  fields.ReadText("variant", kLongestName, name);
  const auto known = FindVariant(name);
  if (known) variant = *known;
  if (!known && !name.empty())
    fields.Complain("variant", "halvard or tesmond is expected, not \"" + name + '"');
}

void ReadNumberBase(Fields& fields, std::uint32_t& numberBase) {
  const JsonPlace place = fields.Take("numberBase", Need::Required);
  if (!place.value) return;
  const std::optional<std::int64_t> base = place.value->number;
  if (base == 10 || base == 16) {
    numberBase = static_cast<std::uint32_t>(*base);
  } else {
    fields.Complain("numberBase", "10 or 16 is expected");
  }
}

}  // namespace

Document ReadDocument(const JsonValue& root, Faults& faults) {
  Document document;
  Fields fields({&root, {}}, faults);
  if (!fields.IsObject() || !CheckFormat(fields, faults)) return document;
  ReadVariant(fields, document.variant);
  fields.ReadNumber("language", 1, kLastLanguage, document.language);
  ReadNumberBase(fields, document.numberBase);
  for (const JsonPlace& place : fields.TakeList("channels", Need::Required)) {
    ReadChannel(place, faults, document.channels);
  }
  for (const JsonPlace& place : fields.TakeList("devices")) ReadDevice(place, faults, document);
  for (const JsonPlace& place : fields.TakeList("blocks")) ReadBlock(place, faults, document.blocks);
  ReadWindow(fields, faults, document.window);
  ReadInnerWindows(fields, faults, document.windows);
  fields.ReadFlag("largeIcons", document.largeIcons, Need::Optional);
  fields.Finish();
  return document;
}

}  // namespace NConfiguration
