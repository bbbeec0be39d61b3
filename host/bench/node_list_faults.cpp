#include <set>
#include <stdexcept>

#include "host/bench/console.h"
#include "host/bench/description.h"
#include "host/bench/node_list.h"
#include "host/runtime/library_objects.h"
#include "host/runtime/text.h"

namespace NBench {
namespace {

using NRuntime::ComPtr;
using NRuntime::ReceivedText;

using Lines = std::vector<std::string>;

std::string Utf8(const ReceivedText& text) { return NRuntime::ToUtf8(text.Text()); }

ComPtr<NSdk::ICanDatabase> Open(NSdk::IDatabaseManager& manager, std::uint32_t index) {
  ComPtr<NSdk::ICanDatabase> database;
  if (manager.OpenDatabase(index, database.Out()) == S_OK) return database;
  ReceivedText reason;
  manager.GetFailure(reason.Out());
  throw std::runtime_error(Utf8(reason));
}

void AddErrors(NSdk::ICanDatabase& database, Lines& lines) {
  std::uint32_t count = 0;
  database.GetErrorCount(&count);
  for (std::uint32_t position = 0; position < count; ++position) {
    ReceivedText text;
    if (SUCCEEDED(database.GetError(position, nullptr, text.Out()))) lines.push_back(Utf8(text));
  }
}

bool HasDescription(const NodeList& list, std::uint32_t channel, const std::string& name) {
  for (const ListedNode& node : list.nodes) {
    if (node.channel == channel && node.name == name) return node.description.has_value();
  }
  return true;  // no CANopen node
}

// A node is listed without objects when its description is not where the database says.
void AddMissing(NSdk::ICanDatabase& database, const std::string& file, std::uint32_t channel,
                const NodeList& list, Lines& lines) {
  std::uint32_t count = 0;
  database.GetNodeCount(&count);
  for (std::uint32_t position = 0; position < count; ++position) {
    ComPtr<NSdk::ICanDatabaseNode> node;
    ReceivedText name, description;
    if (database.GetNodeAt(position, node.Out()) != S_OK || FAILED(node->GetName(name.Out())) ||
        node->GetText(L"CO_DCF", description.Out()) != S_OK || description.Text().empty()) {
      continue;
    }
    if (HasDescription(list, channel, Utf8(name))) continue;
    lines.push_back(file + ": node " + Utf8(name) + ": CO_DCF is \"" + Utf8(description) +
                    "\", there is no such file; the node has no objects");
  }
}

void AddFaultsOfDatabases(Host& host, const NodeList& list, Lines& lines) {
  void* service = nullptr;
  if (FAILED(host.Application().GetService(NSdk::IidOf<NSdk::IConfigurationService>(), &service))) return;
  const auto configuration =
      ComPtr<NSdk::IConfigurationService>::Own(static_cast<NSdk::IConfigurationService*>(service));
  const auto manager = NRuntime::MakeDatabaseManager(ProgramFolder());
  manager->SetConfiguration(configuration.Get());
  for (std::uint32_t index = 1;; ++index) {
    ReceivedText path;
    std::uint32_t channel = 0;
    if (manager->GetDatabaseInfo(index, path.Out(), &channel) != S_OK) return;
    const auto database = Open(*manager, index);
    AddErrors(*database, lines);
    AddMissing(*database, Utf8(path), channel, list, lines);
  }
}

void AddFaultsOfDescription(const ListedNode& node, Lines& lines) {
  try {
    const DeviceDescription description = LoadDescription(NRuntime::ToPath(*node.description), node.id);
    for (const DescriptionWarning& warning : description.warnings) lines.push_back(warning.text);
  } catch (const std::runtime_error& error) {
    lines.emplace_back(error.what());
  }
}

}  // namespace

std::vector<std::string> FindFaults(Host& host, const NodeList& list) {
  Lines lines;
  AddFaultsOfDatabases(host, list, lines);
  std::set<std::string> looked;
  for (const ListedNode& node : list.nodes) {
    if (node.description && looked.insert(*node.description).second) AddFaultsOfDescription(node, lines);
  }
  return lines;
}

}  // namespace NBench
