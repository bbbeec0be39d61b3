#include "ig/live_blocks.h"

#include <algorithm>
#include <vector>

#include "ig/generator_node.h"

namespace NIg {
namespace {

std::vector<ZCANopenIGNode*>& Blocks() {
  static std::vector<ZCANopenIGNode*> blocks;
  return blocks;
}

}  // namespace

void BlockCreated(ZCANopenIGNode& block) { Blocks().push_back(&block); }
void BlockDestroyed(ZCANopenIGNode& block) { std::erase(Blocks(), &block); }

NCom::ComPtr<ZCANopenIGNode> FindSender(std::uint32_t channel) {
  const auto& blocks = Blocks();
  const auto found = std::find_if(blocks.begin(), blocks.end(), [&](const ZCANopenIGNode* block) {
    return block->CanSend() && block->Channel() == channel;
  });
  return found == blocks.end() ? nullptr : *found;
}

}  // namespace NIg
