#pragma once
// A generator block's settings as the host keeps them.

#include <cstdint>
#include <string>

#include "ig/remembered_sequence.h"
#include "sdk/persistence.h"

namespace NIg {

struct GeneratorNumbers {
  std::uint32_t sdoTimeout = 5000;  ///< ms
  std::uint32_t sdoBlockSize = 10;  ///< segments per sub-block
  std::uint32_t serviceDelay = 10;  ///< ms between two services of a sequence
  std::uint32_t channel = 1;        ///< CAN channel on which the block sends
};

/// One number: its key in the configuration and the range that is accepted.
struct NumberField {
  const wchar_t* key;
  std::uint32_t GeneratorNumbers::*member;
  std::uint32_t minimum;
  std::uint32_t maximum;
};

inline constexpr NumberField kNumberFields[] = {
    {L"SvcDelay", &GeneratorNumbers::serviceDelay, 1, 100000},
    {L"SDOTimeout", &GeneratorNumbers::sdoTimeout, 50, 1000000},
    {L"SDOBlockSize", &GeneratorNumbers::sdoBlockSize, 1, 127},
    {L"CANChannel", &GeneratorNumbers::channel, 1, 0xFFFFFFFE},
};

struct GeneratorSettings {
  std::wstring name;
  GeneratorNumbers numbers;
  RememberedSequence sequence;
};

/// Reads the keys that are there; a missing one, and a number that is none or out of its range, keeps the
/// value.
void LoadSettings(NSdk::IPersistReader& reader, GeneratorSettings& settings);
/// Writes every key. The first failure of the writer ends it and is returned.
HRESULT SaveSettings(NSdk::IPersistWriter& writer, const GeneratorSettings& settings);

}  // namespace NIg
