#pragma once

#include <cstdint>

#include "sdo/engine/frames.h"

namespace NSdo {

/// Ring of 50 slots, one of which stays free to tell full from empty. A slot is taken, filled or read in
/// place, and then committed or abandoned; meanwhile nobody else gets one in the same direction, so a hook
/// that comes back into the engine finds nothing to take instead of the same slot twice.
struct SdoQueue {
  static constexpr std::uint8_t kCapacity = 50;

  std::uint8_t readLocked = 0;
  std::uint8_t writeLocked = 0;
  std::uint8_t readIndex = 0;
  std::uint8_t writeIndex = 0;
  SdoFrame slots[kCapacity];

  bool IsEmpty() const { return readIndex == writeIndex; }
  bool IsFull() const { return Next(writeIndex) == readIndex; }

  /// The oldest frame, or null if there is none or one is taken.
  const SdoFrame* TakeRead() {
    if (readLocked != 0 || IsEmpty()) return nullptr;
    readLocked = 1;
    return &slots[readIndex];
  }
  void CommitRead() {
    readIndex = Next(readIndex);
    readLocked = 0;
  }
  void AbandonRead() { readLocked = 0; }

  /// A slot to fill, or null if the ring is full or one is taken.
  SdoFrame* TakeWrite() {
    if (writeLocked != 0 || IsFull()) return nullptr;
    writeLocked = 1;
    return &slots[writeIndex];
  }
  void CommitWrite() {
    writeIndex = Next(writeIndex);
    writeLocked = 0;
  }
  void AbandonWrite() { writeLocked = 0; }

  /// Copies the frame in, in one go. false: no slot.
  bool Push(const SdoFrame& frame) {
    const std::uint8_t next = Next(writeIndex);
    if (writeLocked != 0 || next == readIndex) return false;
    slots[writeIndex] = frame;
    writeIndex = next;
    return true;
  }

 private:
  static std::uint8_t Next(std::uint8_t position) {
    return position + 1 == kCapacity ? std::uint8_t{0} : static_cast<std::uint8_t>(position + 1);
  }
};

}  // namespace NSdo
