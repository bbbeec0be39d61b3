#include "host/workbench/service.h"

namespace NWorkbench {
namespace {

constexpr std::uint32_t kNodeMask = 0x7F;
constexpr std::uint32_t kLssSlave = 0x7E4, kLssMaster = 0x7E5;

// By function code, the upper four of the eleven bits; 1 is SYNC where the node-ID is 0.
constexpr Service kByFunctionCode[] = {Service::Nmt, Service::Emergency, Service::Time,      Service::Pdo,
                                       Service::Pdo, Service::Pdo,       Service::Pdo,       Service::Pdo,
                                       Service::Pdo, Service::Pdo,       Service::Pdo,       Service::Sdo,
                                       Service::Sdo, Service::Other,     Service::Heartbeat, Service::Other};

}  // namespace

Service ServiceOf(std::uint32_t identifier, bool extended) {
  if (extended || identifier > 0x7FF) return Service::Other;
  if (identifier == kLssSlave || identifier == kLssMaster) return Service::Lss;
  const std::uint32_t node = identifier & kNodeMask;
  const Service service = kByFunctionCode[identifier >> 7];
  switch (service) {
    case Service::Nmt:
    case Service::Time:
      return node == 0 ? service : Service::Other;
    case Service::Emergency:
      return node == 0 ? Service::Sync : Service::Emergency;
    default:
      return node == 0 ? Service::Other : service;
  }
}

const wchar_t* ServiceName(Service service) {
  constexpr const wchar_t* kNames[] = {L"NMT", L"SYNC",      L"EMCY", L"TIME", L"PDO",
                                       L"SDO", L"Heartbeat", L"LSS",  L""};
  return kNames[static_cast<int>(service)];
}

std::uint32_t NodeOf(std::uint32_t identifier, bool extended) {
  switch (ServiceOf(identifier, extended)) {
    case Service::Emergency:
    case Service::Pdo:
    case Service::Sdo:
    case Service::Heartbeat:
      return identifier & kNodeMask;
    default:
      return 0;
  }
}

}  // namespace NWorkbench
