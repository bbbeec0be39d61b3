#include "host/configuration/document_text.h"

#include <nlohmann/json.hpp>

#include <cstdio>
#include <stdexcept>

#include "host/configuration/document_reader.h"
#include "host/configuration/json_tree.h"
#include "host/configuration/variant_name.h"
#include "host/devices/fault_option.h"
#include "host/runtime/text.h"

namespace NConfiguration {
namespace {

using Json = nlohmann::ordered_json;

std::string Hex(std::uint32_t number, int digits) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%0*X", digits, static_cast<unsigned>(number));
  return text;
}

Json WindowJson(const Window& window) {
  Json json = {{"x", window.x},           {"y", window.y},       {"width", window.width},
               {"height", window.height}, {"open", window.open}, {"maximized", window.maximized}};
  if (window.minimized) json["minimized"] = true;
  return json;
}

Json ChannelJson(const Channel& channel) {
  Json json = {{"number", channel.number}, {"bus", channel.bus}};
  if (channel.timing) {
    json["timing"] = {{"register0", Hex(channel.timing->register0, 2)},
                      {"register1", Hex(channel.timing->register1, 2)}};
  }
  json["databases"] = Json::array();
  for (const auto& database : channel.databases) json["databases"].push_back(NRuntime::PathText(database));
  return json;
}

// What differs from a device without faults. Codes are read in hexadecimal.
Json FaultsJson(const NDevices::Misbehaviour& faults) {
  Json json = Json::object();
  for (const NDevices::FaultOption& option : NDevices::FaultOptions()) {
    const std::uint32_t value = option.get(faults);
    if (value == option.get({})) continue;
    const std::string key(option.name);
    if (option.IsFlag()) {
      json[key] = true;
    } else if (option.value == "CODE") {
      json[key] = Hex(value, 8);
    } else {
      json[key] = value;
    }
  }
  return json;
}

Json DeviceJson(const Device& device) {
  Json json = {{"channel", device.channel}, {"node", device.device.nodeId}};
  if (!device.device.description.empty()) json["description"] = device.device.description;
  Json faults = FaultsJson(device.device.faults);
  if (!faults.empty()) json["faults"] = std::move(faults);
  return json;
}

Json BlockJson(const Block& block) {
  Json json = {{"progId", block.progId}, {"settings", Json::object()}};
  for (const auto& [key, value] : block.settings) json["settings"][key] = value;
  if (block.window) json["window"] = WindowJson(*block.window);
  return json;
}

template <class Element>
Json ListJson(const std::vector<Element>& elements, Json (*make)(const Element&)) {
  Json json = Json::array();
  for (const Element& element : elements) json.push_back(make(element));
  return json;
}

}  // namespace

ParsedDocument ParseDocument(std::string_view text) {
  const JsonTree tree = ReadJson(text);
  if (tree.fault) return {{}, {*tree.fault}};
  ParsedDocument parsed;
  parsed.document = ReadDocument(tree.root, parsed.faults);
  return parsed;
}

std::string DocumentText(const Document& document) {
  Json json = {{"format", kFormat},
               {"variant", VariantName(document.variant)},
               {"language", document.language},
               {"numberBase", document.numberBase},
               {"channels", ListJson(document.channels, ChannelJson)},
               {"devices", ListJson(document.devices, DeviceJson)},
               {"blocks", ListJson(document.blocks, BlockJson)}};
  if (document.window) json["window"] = WindowJson(*document.window);
  for (const auto& [name, window] : document.windows) json["windows"][name] = WindowJson(window);
  if (document.largeIcons) json["largeIcons"] = true;
  try {
    return json.dump(2) + '\n';
  } catch (const Json::type_error&) {
    throw std::runtime_error("a path or setting is no UTF-8 text");
  }
}

}  // namespace NConfiguration
