#include "host/bench/nodes.h"

#include "host/bench/console.h"
#include "host/bench/node_document.h"
#include "host/bench/node_list.h"
#include "host/bench/node_words.h"
#include "host/bench/text_table.h"
#include "host/bench/unobserved.h"
#include "host/runtime/text.h"

namespace NBench {
namespace {

constexpr char kNodesHelp[] =
    R"(Lists the CANopen nodes that the databases of the CAN channels describe, as the
module finds them: the objects and TPDOs of each come from its description.

Usage: ostrel-bench nodes --db FILE.dbc [OPTIONS]
       ostrel-bench nodes --config FILE.json [OPTIONS]

A node of a database is a CANopen node when its attribute CO_ID is a node-ID;
CO_DCF names its description, an EDS or DCF file beside the database or at a
path relative to it. What is wrong with these files is told on standard error,
FILE:LINE and what was assumed in each line.

Options:
  --config FILE.json Take variant, channels and databases from a configuration
  --db FILE.dbc      CAN database of the network; one more than the configuration's
  --channel NUMBER   Channel of the database (default: that of the configuration's
                     generator, else the lowest)
  --can NUMBER=BUS   A CAN channel of the host (default: 1=virtual)
  --json             One JSON document, nothing else
  --variant NAME     Kind of host to be, halvard or tesmond (default: halvard)
  --module PATH      Module to load (default: Ostrel.hpi beside this program)

Columns: index and sub-index in hexadecimal, size in bytes (var: it varies),
access and name, value that the description gives.

Exit status: 0 listed, 1 trouble with the output or the module, 2 bad input.

Examples:
  ostrel-bench nodes --db plant.dbc
  ostrel-bench nodes --db plant.dbc --json > nodes.json
)";

using Json = nlohmann::ordered_json;

Json Document(const NodeList& list) {
  Json document = {{"channels", Json::array()}, {"nodes", Json::array()}};
  for (const ListedChannel& channel : list.channels) {
    document["channels"].push_back(
        {{"channel", channel.number}, {"name", channel.name}, {"protocols", channel.protocols}});
  }
  for (const ListedNode& node : list.nodes) {
    Json objects = Json::array(), tpdos = Json::array();
    for (const ListedObject& object : node.objects) {
      objects.push_back({{"index", object.index},
                         {"subindex", object.subindex},
                         {"size", object.size},
                         {"variable", object.variableLength},
                         {"writable", object.writable},
                         {"label", object.label},
                         {"value", object.value}});
    }
    for (const ListedTpdo& tpdo : node.tpdos) {
      tpdos.push_back({{"cobId", tpdo.cobId}, {"number", tpdo.number}});
    }
    document["nodes"].push_back({{"id", node.id},
                                 {"name", node.name},
                                 {"description", node.description ? Json(*node.description) : Json(nullptr)},
                                 {"objects", std::move(objects)},
                                 {"tpdos", std::move(tpdos)}});
  }
  return document;
}

std::string OnScreen(const std::string& text) { return NRuntime::ToUtf8(Printable(text)); }

std::string ChannelText(const ListedChannel& channel) {
  std::string text = OnScreen(channel.name);
  for (const std::string& protocol : channel.protocols) {
    if (protocol != "CANopen") text += ", " + protocol;  // the name says so itself
  }
  return text + '\n';
}

std::wstring SizeText(const ListedObject& object) {
  return object.variableLength ? L"var" : std::to_wstring(object.size);
}

std::string NodeText(const ListedNode& node) {
  std::string text = "\nNode " + std::to_string(node.id) + ", " + OnScreen(node.name) + ": " +
                     (node.description ? OnScreen(*node.description) : "no description") + '\n';
  if (node.objects.empty()) return text;
  std::vector<std::vector<std::wstring>> rows = {{L"Index", L"Sub", L"Size", L"Object", L"Value"}};
  for (const ListedObject& object : node.objects) {
    rows.push_back({HexDigits(object.index, 4), HexDigits(object.subindex, 2), SizeText(object),
                    Printable(object.label), Printable(object.value)});
  }
  text += ColumnsText(rows, 2);
  for (const ListedTpdo& tpdo : node.tpdos) {
    text += "  TPDO " + std::to_string(tpdo.number + 1) + ": COB-ID " + Hexadecimal(tpdo.cobId) + '\n';
  }
  return text;
}

std::string ListText(const NodeList& list) {
  std::string text;
  for (const ListedChannel& channel : list.channels) {
    text += (text.empty() ? "" : "\n") + ChannelText(channel);
    for (const ListedNode& node : list.nodes) {
      if (node.channel == channel.number) text += NodeText(node);
    }
  }
  return text + '\n' + NodeCount(list.nodes.size()) + '\n';
}

class NodesCommand final : public Command {
 public:
  void AddOptions(OptionList& options) override;
  std::string Help() const override { return kNodesHelp; }
  HostTexts* Texts() override { return &mHost; }
  ExitStatus Run() const override;

 private:
  HostTexts mHost;
  bool mJson = false;
};

void NodesCommand::AddOptions(OptionList& options) {
  mHost.AddOptions(options);
  options.Flag("--json", mJson);
}

ExitStatus NodesCommand::Run() const {
  Unobserved observer;
  bool quiet = true;
  Host host(CheckHost(mHost), observer, [&](const std::string& text) {
    quiet = false;
    Complain(text);
  });
  const NodeList list = ReadNodeList(host);
  const auto faults = FindFaults(host, list);
  Output output;
  output.Write(mJson ? DocumentText(Document(list)) : ListText(list));
  const bool whole = output.End();
  for (const std::string& line : faults) WriteError(OnScreen(line));
  return quiet && whole ? kOk : kFailed;
}

}  // namespace

std::unique_ptr<Command> MakeNodesCommand() { return std::make_unique<NodesCommand>(); }

}  // namespace NBench
