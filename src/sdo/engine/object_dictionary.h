#pragma once
// Local object dictionary: entries that callbacks serve. It holds the SDO client parameters 1280h.. of the
// channels (CiA 301, 7.5.2.33) and whatever the owner registers.

#include <cstdint>

#include "sdo/engine/list.h"
#include "sdo/engine/status.h"

namespace NSdo {

struct SdoEngine;

inline constexpr std::uint8_t kOdReadable = 1;
inline constexpr std::uint8_t kOdWritable = 2;
inline constexpr std::uint16_t kClientParameterIndex = 0x1280;

/// Serves one access. `indexLow` is the low byte of the index. `size` in: bytes at `data` (reading: room for
/// them); out, when reading: bytes given. Values are little-endian. Returns 0 or a place in kSdoAbortCodes.
using SdoOdReadCallback = std::uint8_t (*)(SdoEngine& engine, std::uint8_t indexLow, std::uint8_t subindex,
                                           std::uint32_t& size, std::uint8_t* data);
using SdoOdWriteCallback = std::uint8_t (*)(SdoEngine& engine, std::uint8_t indexLow, std::uint8_t subindex,
                                            std::uint32_t& size, const std::uint8_t* data);

struct SdoOdEntry {
  SdoOdReadCallback read = nullptr;
  SdoOdWriteCallback write = nullptr;
  std::uint16_t index = 0;
  std::uint8_t access = 0;  ///< kOdReadable, kOdWritable
};

struct SdoObjectDictionary {
  static constexpr std::uint32_t KeyOf(SdoOdEntry* const& entry) { return entry->index; }

  SdoObjectDictionary() = default;
  SdoObjectDictionary(const SdoObjectDictionary&) = delete;
  SdoObjectDictionary& operator=(const SdoObjectDictionary&) = delete;
  ~SdoObjectDictionary();

  SdoList<SdoOdEntry*, &KeyOf> entries;  ///< owned
  std::uint32_t runningCallbacks = 0;
};

/// Makes an empty dictionary unless there is one. SDO_E_NOMEM. Creating a channel does it too.
SdoStatus SdoOdCreate(SdoEngine& engine);
/// SDO_E_OD_MISSING; SDO_E_OD_FREE from inside a callback.
SdoStatus SdoOdFree(SdoEngine& engine);

/// Copies `entry` in and returns the copy; an index that is there already is not added again, its entry is
/// returned. Null without dictionary or memory.
const SdoOdEntry* SdoOdRegister(SdoEngine& engine, const SdoOdEntry& entry);
/// An entry serves all its sub-indices and goes as a whole. SDO_E_OD_MISSING, SDO_E_OD_NO_ENTRY.
SdoStatus SdoOdRemove(SdoEngine& engine, std::uint16_t index, std::uint8_t subindex);

/// `size` in: room at `data`; out: bytes read. SDO_E_OD_MISSING, SDO_E_OD_NO_ENTRY, or SDO_E_OD_READ with the
/// reason in `abortIndex`.
SdoStatus SdoOdRead(SdoEngine& engine, std::uint16_t index, std::uint8_t subindex, std::uint32_t& size,
                    std::uint8_t* data, std::uint8_t& abortIndex);
/// SDO_E_OD_MISSING, SDO_E_OD_NO_ENTRY, or SDO_E_OD_WRITE with the reason in `abortIndex`.
SdoStatus SdoOdWrite(SdoEngine& engine, std::uint16_t index, std::uint8_t subindex, std::uint32_t size,
                     const std::uint8_t* data, std::uint8_t& abortIndex);

}  // namespace NSdo
