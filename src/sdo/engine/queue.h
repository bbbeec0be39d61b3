#pragma once

#include <cstdint>

#include "sdo/engine/frames.h"

namespace NSdo {

/// Ring of 50 slots, one of which stays free to tell full from empty. A slot is taken, filled or read in
/// place, and then committed or abandoned; meanwhile nobody else gets one in the same direction, so a hook
/// that comes back into the engine finds nothing to take instead of the same slot twice.
struct SdoQueue {
  static constexpr std::uint8_t kCapacity = 50;

  std::uint8_t taken = 0;  ///< kRead, kWrite, kPassing
  std::uint8_t readIndex = 0;
  std::uint8_t writeIndex = 0;
  SdoFrame slots[kCapacity];

  bool IsEmpty() const { return readIndex == writeIndex; }
  bool IsFull() const { return Next(writeIndex) == readIndex; }

  /// The oldest frame, or null if there is none or one is taken.
  const SdoFrame* TakeRead() {
    if ((taken & (kRead | kPassing)) != 0 || IsEmpty()) return nullptr;
    taken |= kRead;
    return &slots[readIndex];
  }
  void CommitRead() {
    readIndex = Next(readIndex);
    AbandonRead();
  }
  void AbandonRead() { taken &= kWrite; }

  /// A slot to fill, or null if the ring is full or one is taken.
  SdoFrame* TakeWrite() {
    if ((taken & kWrite) != 0 || IsFull()) return nullptr;
    taken |= kWrite;
    return &slots[writeIndex];
  }
  void CommitWrite() {
    writeIndex = Next(writeIndex);
    AbandonWrite();
  }
  void AbandonWrite() { taken &= kRead | kPassing; }

  /// Copies the frame in, in one go. false: no slot.
  bool Push(const SdoFrame& frame) {
    const std::uint8_t next = Next(writeIndex);
    if ((taken & kWrite) != 0 || next == readIndex) return false;
    if ((taken & kPassing) != 0 && Next(next) == readIndex) return false;
    slots[writeIndex] = frame;
    writeIndex = next;
    return true;
  }

  /// Takes one frame after the other, those that come meanwhile too, until `handle` leaves one where it is by
  /// returning false. Nothing happens while a frame is taken.
  template <class Handle>
  void ReadAll(const Handle& handle) {
    while (const SdoFrame* frame = TakeRead()) {
      if (!handle(*frame)) return AbandonRead();
      CommitRead();
    }
  }

  /// Nothing waits and no slot is taken: a frame that comes now needs none, it is handled where it is.
  /// Between BeginPassing and EndPassing it counts as the one at the head.
  bool IsIdle() const { return taken == 0 && IsEmpty(); }
  void BeginPassing() { taken = kPassing; }
  void EndPassing() { taken &= kWrite; }
  /// The frame that has passed stays, before those that have come meanwhile; there is room for it.
  void PutBack(const SdoFrame& frame) {
    readIndex = readIndex == 0 ? std::uint8_t{kCapacity - 1} : static_cast<std::uint8_t>(readIndex - 1);
    slots[readIndex] = frame;
  }

 private:
  static constexpr std::uint8_t kRead = 1, kWrite = 2, kPassing = 4;

  static std::uint8_t Next(std::uint8_t position) {
    return position + 1 == kCapacity ? std::uint8_t{0} : static_cast<std::uint8_t>(position + 1);
  }
};

}  // namespace NSdo
