#pragma once

#include <cstdint>

namespace NWorkbench {

/// What a frame is for, by the identifiers of the pre-defined connection set (CiA 301, 7.3.3).
enum class Service : std::uint8_t { Nmt, Sync, Emergency, Time, Pdo, Sdo, Heartbeat, Lss, Other };
inline constexpr int kServices = 9;

/// `identifier` has 11 or 29 bits; extended ones belong to no service.
Service ServiceOf(std::uint32_t identifier, bool extended);

/// As it stands in the trace: "NMT", "SDO", ...; empty for Other.
const wchar_t* ServiceName(Service service);

/// Node-ID that the identifier speaks of; 0: none.
std::uint32_t NodeOf(std::uint32_t identifier, bool extended);

}  // namespace NWorkbench
