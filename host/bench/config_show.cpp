#include <cstdio>

#include "host/bench/config.h"
#include "host/bench/console.h"
#include "host/bench/node_document.h"
#include "host/bench/node_words.h"
#include "host/configuration/document_text.h"
#include "host/configuration/variant_name.h"
#include "host/devices/fault_option.h"
#include "host/runtime/text.h"

namespace NBench {
namespace {

// Without what a terminal acts on.
std::string Line(const std::string& text) { return NRuntime::ToUtf8(Printable(text)) + '\n'; }

std::string TimingText(const NConfiguration::BitTiming& timing) {
  char text[32];
  std::snprintf(text, sizeof text, ", bit timing %02X %02X", timing.register0, timing.register1);
  return text;
}

std::string ChannelText(const ChannelOption& channel) {
  const std::string timing = channel.timing ? TimingText(*channel.timing) : "";
  std::string text = '\n' + Line("Channel " + std::to_string(channel.number) + ": " + channel.bus + timing);
  for (const auto& database : channel.databases) text += Line("  database " + NRuntime::PathText(database));
  return text;
}

std::string DeviceText(const DeviceOption& device) {
  const NDevices::Misbehaviour& faults = device.device.faults;
  const std::string& description = device.device.description;
  std::string text = "  device " + std::to_string(device.device.nodeId) + ": " +
                     (description.empty() ? "built-in I/O device" : description);
  for (const NDevices::FaultOption& option : NDevices::FaultOptions()) {
    const std::uint32_t value = option.get(faults);
    if (value == option.get({})) continue;
    text += ", " + std::string(option.name);
    if (option.IsFlag()) continue;
    text += '=' + (option.value == "CODE" ? Hexadecimal(value) : std::to_string(value));
  }
  return Line(text);
}

std::string WindowText(const NConfiguration::Window& window) {
  std::string text = std::to_string(window.width) + " x " + std::to_string(window.height) + " at " +
                     std::to_string(window.x) + ", " + std::to_string(window.y);
  if (window.maximized) text += ", maximized";
  if (!window.open) text += ", closed";
  return text;
}

std::string BlockText(const NConfiguration::Block& block) {
  std::string text = '\n' + Line("Block " + block.progId);
  for (const auto& [key, value] : block.settings)
    text += Line(std::string("  ").append(key).append(" = ").append(value));
  if (block.window) text += "  window " + WindowText(*block.window) + '\n';
  return text;
}

std::string Text(const NConfiguration::Document& document) {
  std::string text = "Variant " + std::string(NConfiguration::VariantName(document.variant)) + ", language " +
                     std::to_string(document.language) + ", numbers in base " +
                     std::to_string(document.numberBase) + '\n';
  if (document.window) text += "Window " + WindowText(*document.window) + '\n';
  for (const ChannelOption& channel : document.channels) {
    text += ChannelText(channel);
    for (const DeviceOption& device : document.devices) {
      if (device.channel == channel.number) text += DeviceText(device);
    }
  }
  for (const NConfiguration::Block& block : document.blocks) text += BlockText(block);
  return text;
}

}  // namespace

ExitStatus ShowConfig(const std::filesystem::path& file, bool json) {
  const NConfiguration::Document document = NConfiguration::Load(file);
  Output output;
  output.Write(json ? DocumentText(nlohmann::ordered_json::parse(NConfiguration::DocumentText(document)))
                    : Text(document));
  return output.End() ? kOk : kFailed;
}

}  // namespace NBench
