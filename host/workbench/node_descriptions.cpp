#include "host/workbench/node_descriptions.h"

#include "host/runtime/text.h"
#include "sdk/database_nodes.h"

namespace NWorkbench {
namespace {

using NRuntime::ComPtr;

void AddDescriptions(NSdk::IDatabaseNodes& source, std::uint32_t channel,
                     std::vector<std::filesystem::path>& descriptions) {
  ComPtr<NSdk::IArray> nodes;
  std::uint32_t count = 0;
  if (source.GetNodes(channel, nodes.Out()) != S_OK || FAILED(nodes->GetCount(&count))) return;
  for (std::uint32_t position = 0; position < count; ++position) {
    void* found = nullptr;
    if (FAILED(nodes->GetElement(position, NSdk::IidOf<NSdk::IDatabaseNode>(), &found))) continue;
    const auto node = ComPtr<NSdk::IDatabaseNode>::Own(static_cast<NSdk::IDatabaseNode*>(found));
    NRuntime::ReceivedText path;
    if (node->GetDescription(path.Out()) == S_OK)
      descriptions.push_back(NRuntime::ToPath(NRuntime::ToUtf8(path.Text())));
  }
}

}  // namespace

std::vector<std::filesystem::path> ReadNodeDescriptions(IUnknown& plugIn) {
  std::vector<std::filesystem::path> descriptions;
  const auto source = NRuntime::Query<NSdk::IDatabaseNodes>(ComPtr<IUnknown>(&plugIn));
  std::uint32_t count = 0;
  if (!source || source->GetChannelCount(&count) != S_OK) return descriptions;
  for (std::uint32_t position = 0; position < count; ++position) {
    std::uint32_t channel = 0, protocols = 0;
    NRuntime::ReceivedText name;
    if (source->GetChannelAt(position, &channel, &protocols, name.Out()) == S_OK)
      AddDescriptions(*source, channel, descriptions);
  }
  return descriptions;
}

}  // namespace NWorkbench
