#include "host/bench/node_names.h"

#include <stdexcept>

#include "host/bench/console.h"
#include "host/runtime/library_objects.h"
#include "host/runtime/text.h"

namespace NBench {
namespace {

NRuntime::ComPtr<NSdk::ICanDatabase> Open(NSdk::IDatabaseManager& manager,
                                          const std::filesystem::path& database) {
  NRuntime::ComPtr<NSdk::ICanDatabase> opened;
  if (manager.OpenFile(NRuntime::WidePathText(database).c_str(), opened.Out()) == S_OK) return opened;
  NRuntime::ReceivedText reason;
  manager.GetFailure(reason.Out());
  throw std::runtime_error(NRuntime::ToUtf8(reason.Text()));
}

}  // namespace

NodeNames ReadNodeNames(const std::filesystem::path& database, std::uint32_t channel) {
  const auto manager = NRuntime::MakeDatabaseManager(ProgramFolder());
  const auto opened = Open(*manager, database);
  NodeNames names;
  std::uint32_t count = 0;
  opened->GetNodeCount(&count);
  for (std::uint32_t position = 0; position < count; ++position) {
    NRuntime::ComPtr<NSdk::ICanDatabaseNode> node;
    NRuntime::ReceivedText name;
    double nodeId = 0;
    if (opened->GetNodeAt(position, node.Out()) != S_OK || node->GetNumber(L"CO_ID", &nodeId) != S_OK)
      continue;
    if (nodeId >= 1 && nodeId <= 127 && SUCCEEDED(node->GetName(name.Out()))) {
      names.emplace(std::pair(channel, static_cast<std::uint32_t>(nodeId)), NRuntime::ToUtf8(name.Text()));
    }
  }
  return names;
}

}  // namespace NBench
