#pragma once
// What an NMT command of the menus does, and to whom.

#include <cstdint>

namespace NPlugin {

enum class NmtKind : std::uint8_t { Operational = 1, Preoperational = 2, Stop = 3, Reset = 4 };
inline constexpr NmtKind kNmtKinds[] = {NmtKind::Operational, NmtKind::Preoperational, NmtKind::Stop,
                                        NmtKind::Reset};

// Targets of an NMT command beside the node-IDs 1 to 127.
inline constexpr std::uint8_t kTargetAllNodes = 0;
inline constexpr std::uint8_t kTargetChosenNodes = 255;

inline constexpr std::uint8_t kNoNetwork = 0;

struct NmtTarget {
  NmtKind kind = NmtKind::Operational;
  std::uint8_t network = kNoNetwork;  ///< from 1
  std::uint8_t target = kTargetAllNodes;
};

}  // namespace NPlugin
