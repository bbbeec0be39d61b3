#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "host/devices/misbehaviour.h"

namespace NDevices {

/// One way of a device to misbehave, by the word that a user has for it. A flag has no range of values; it is
/// set with 1.
struct FaultOption {
  std::string_view name;
  std::string_view value;  ///< what it is called in a help text, empty: a flag
  std::uint32_t low, high;
  void (*set)(Misbehaviour& faults, std::uint32_t value);
  std::uint32_t (*get)(const Misbehaviour& faults);
  std::string_view meaning;

  bool IsFlag() const { return value.empty(); }
  /// "from 1 to 10", "from 1"
  std::string Range() const;
};

/// All of them, in the order of the help text.
std::span<const FaultOption> FaultOptions();
/// Null: no such word.
const FaultOption* FindFaultOption(std::string_view name);

/// What is set, but changes nothing by itself, in words; empty: all is well. `given` are the names of the
/// options that were set.
std::string FindContradiction(std::span<const std::string_view> given, const Misbehaviour& faults);

}  // namespace NDevices
