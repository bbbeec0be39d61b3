#include "host/bench/node_list.h"

#include <stdexcept>

#include "host/runtime/text.h"
#include "sdk/class_ids.h"
#include "sdk/database_nodes.h"

namespace NBench {
namespace {

using NRuntime::ComPtr;
using NRuntime::ReceivedText;

constexpr struct {
  NSdk::ChannelProtocol bit;
  const char* name;
} kProtocols[] = {{NSdk::kProtocolJ1939, "J1939"},
                  {NSdk::kProtocolCANopen, "CANopen"},
                  {NSdk::kProtocolDeviceNet, "DeviceNet"},
                  {NSdk::kProtocolAerospace, "Aerospace"},
                  {NSdk::kProtocolNmea, "NMEA"}};

std::string Utf8(const ReceivedText& text) { return NRuntime::ToUtf8(text.Text()); }

void Check(HRESULT result) {
  if (FAILED(result)) throw std::runtime_error("the module cannot tell its node list");
}

ListedChannel ReadChannel(NSdk::IDatabaseNodes& source, std::uint32_t position) {
  ListedChannel channel;
  std::uint32_t protocols = 0;
  ReceivedText name;
  Check(source.GetChannelAt(position, &channel.number, &protocols, name.Out()));
  channel.name = Utf8(name);
  for (const auto& [bit, text] : kProtocols) {
    if ((protocols & bit) != 0) channel.protocols.emplace_back(text);
  }
  return channel;
}

ListedObject ReadObject(NSdk::IDatabaseNode& node, std::uint32_t position) {
  NSdk::DatabaseObject object;
  Check(node.GetObjectAt(position, &object));
  ReceivedText label, value;
  *label.Out() = object.label;
  *value.Out() = object.value;
  return {object.index,         object.subindex, object.size, object.variableLength != 0,
          object.writable != 0, Utf8(label),     Utf8(value)};
}

ListedNode ReadNode(NSdk::IDatabaseNode& source, std::uint32_t channel) {
  ListedNode node;
  ReceivedText name, description;
  std::uint32_t count = 0;
  node.channel = channel;
  Check(source.GetNodeId(&node.id));
  Check(source.GetName(name.Out()));
  node.name = Utf8(name);
  if (source.GetDescription(description.Out()) == S_OK) node.description = Utf8(description);
  Check(source.GetObjectCount(&count));
  for (std::uint32_t i = 0; i < count; ++i) node.objects.push_back(ReadObject(source, i));
  Check(source.GetTpdoCount(&count));
  for (std::uint32_t i = 0; i < count; ++i) {
    ListedTpdo& tpdo = node.tpdos.emplace_back();
    Check(source.GetTpdoAt(i, &tpdo.cobId, &tpdo.number));
  }
  return node;
}

void AddNodes(NSdk::IDatabaseNodes& source, std::uint32_t channel, NodeList& list) {
  ComPtr<NSdk::IArray> nodes;
  std::uint32_t count = 0;
  Check(source.GetNodes(channel, nodes.Out()));
  Check(nodes->GetCount(&count));
  for (std::uint32_t position = 0; position < count; ++position) {
    void* node = nullptr;
    Check(nodes->GetElement(position, NSdk::IidOf<NSdk::IDatabaseNode>(), &node));
    list.nodes.push_back(
        ReadNode(*ComPtr<NSdk::IDatabaseNode>::Own(static_cast<NSdk::IDatabaseNode*>(node)), channel));
  }
}

}  // namespace

NodeList ReadNodeList(Host& host) {
  const auto source = NRuntime::Query<NSdk::IDatabaseNodes>(host.Module().Create(NSdk::kProgIdPlugIn));
  if (!source) throw std::runtime_error("the module has no node list");
  NodeList list;
  std::uint32_t count = 0;
  Check(source->GetChannelCount(&count));
  for (std::uint32_t i = 0; i < count; ++i) list.channels.push_back(ReadChannel(*source, i));
  for (const ListedChannel& channel : list.channels) AddNodes(*source, channel.number, list);
  return list;
}

}  // namespace NBench
