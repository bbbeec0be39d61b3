#pragma once
// What all generator blocks of the process share: only one of them may send at a time.

#include <atomic>

namespace NIg {

class Generator;

struct SharedState {
  std::atomic<bool> sequenceRunning{false};      ///< some block runs a sequence
  std::atomic<bool> cyclicRunning{false};        ///< some block runs cyclic transmission
  std::atomic<Generator*> activeBlock{nullptr};  ///< the last block that started either
};

SharedState& Shared();

}  // namespace NIg
