#pragma once
// The SDO transfer of a generator block: one at a time, for its sequence and its cyclic messages alike.

#include <cstdint>
#include <filesystem>
#include <vector>

#include "canopen/records.h"
#include "ig/settings.h"
#include "sdk/can_message.h"
#include "sdk/generator.h"
#include "sdo/engine/engine.h"

namespace NIg {

struct SdoTransferResult {
  NSdk::GeneratorTransferResult result = NSdk::kTransferDropped;
  std::uint32_t bytes = 0;
  std::uint32_t abortCode = 0;  ///< of an aborted transfer
};

class SdoTransfer {
 public:
  SdoTransfer();

  /// Where the requests go; null: nowhere, and no transfer starts.
  void SetOutput(NSdk::ICANOutput* output);

  /// Starts the transfer of an item; one that is under way is dropped. A download's data text without a type
  /// prefix holds the same text behind "bytearr:" afterwards. False: the data cannot be encoded; no transfer
  /// runs then. True does not say that the engine has taken it: a start that it refuses (COB-IDs that are
  /// equal or invalid, a node-ID outside 1..127) is a transfer that has ended already.
  bool Start(NCanopen::SdoRecord& record, const GeneratorNumbers& numbers,
             const std::filesystem::path& dataFolder);

  /// A transfer was started and End was not called since.
  bool IsRunning() const { return mRunning; }
  /// The transfer that was started will not go on: it is done, has failed, was refused, or the engine was
  /// closed under it.
  bool HasEnded() const;
  /// How it ended; to be asked for before End.
  SdoTransferResult Result() const;
  /// Closes the engine and frees the buffer. Who waits for the transfer finds it ended.
  void Close();
  /// The same, and nobody waits any more.
  void End();
  /// The sequence does not wait for what was started before it.
  void Forget() { mRunning = false; }

  void Feed(const NSdk::CanFrame& frame);
  /// To be called every 20 ms while a transfer runs.
  void Tick();

 private:
  static NSdo::SdoSent Transmit(void* owner, const NSdo::SdoFrame& frame);
  bool FillBuffer(NCanopen::SdoRecord& record, const std::filesystem::path& dataFolder);

  NSdk::ICANOutput* mOutput = nullptr;  // held by the block from start to stop of a measurement
  bool mRunning = false;
  // Declared before the engine, which may still point into it when it is destroyed.
  std::vector<std::uint8_t> mBuffer;
  NSdo::SdoEngine mEngine;
};

}  // namespace NIg
