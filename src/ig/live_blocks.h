#pragma once
// The generator blocks that live in this process, for those who send through them.

#include <cstdint>

#include "com/com_ptr.h"

namespace NIg {

class ZCANopenIGNode;

/// Called by a block when it is made and before it goes.
void BlockCreated(ZCANopenIGNode& block);
void BlockDestroyed(ZCANopenIGNode& block);

/// The first block that can send on a CAN channel: it has its place in the host and takes part in a running
/// measurement. Empty: there is none.
NCom::ComPtr<ZCANopenIGNode> FindSender(std::uint32_t channel);

}  // namespace NIg
