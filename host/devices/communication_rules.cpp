#include "host/devices/communication_rules.h"

#include <algorithm>

#include "host/devices/cob_id.h"
#include "host/devices/pdo_mapping.h"

namespace NDevices {
namespace {

constexpr std::uint16_t kErrorHistory = 0x1003;

struct Write {
  const ObjectDictionary& objects;
  ObjectAddress address;
  std::uint32_t value = 0;
};

std::uint32_t CurrentValue(const Write& write) { return write.objects.Number(write.address); }

// Error history, 7.5.2.4: writing 0 to sub-index 0 empties it, anything else means nothing.
AbortCode CheckErrorHistory(const Write& write) {
  return write.value == 0 ? AbortCode::None : AbortCode::InvalidValue;
}

// COB-ID of SYNC, 7.5.2.5: these devices do not produce it.
AbortCode CheckSync(const Write& write) {
  return (write.value & kCobIdSyncProducer) != 0 ? AbortCode::InvalidValue : AbortCode::None;
}

// COB-ID of EMCY, 7.5.2.17: the identifier stays while it is valid.
AbortCode CheckEmergencyCobId(const Write& write) {
  const std::uint32_t current = CurrentValue(write);
  const bool keepsValid = IsValid(current) && IsValid(write.value);
  return keepsValid && write.value != current ? AbortCode::InvalidValue : AbortCode::None;
}

// PDO communication parameter, 7.5.2.35 and 7.5.2.37: COB-ID and inhibit time stay while the PDO is valid.
AbortCode CheckPdoParameter(const Write& write) {
  const std::uint32_t cobId = write.objects.Number({write.address.index, kPdoCobId});
  const bool isTransmit = write.address.index >= kTransmitPdoParameter;
  switch (write.address.subindex) {
    case kPdoCobId: {
      const bool keepsValid = IsValid(cobId) && IsValid(write.value);
      return keepsValid && write.value != cobId ? AbortCode::InvalidValue : AbortCode::None;
    }
    case kPdoTransmissionType:
      return IsTransmissionType(write.value, isTransmit) ? AbortCode::None : AbortCode::InvalidValue;
    case kPdoInhibitTime:
      return IsValid(cobId) ? AbortCode::InvalidValue : AbortCode::None;
    default:
      return AbortCode::None;
  }
}

// PDO mapping, 7.5.2.36 and 7.5.2.38: it changes while the PDO is not valid, its entries while there are none
// in force.
AbortCode CheckPdoMapping(const Write& write) {
  const auto parameter = static_cast<std::uint16_t>(write.address.index - kPdoMappingOffset);
  if (IsValid(write.objects.Number({parameter, kPdoCobId}, kCobIdNotValid))) {
    return AbortCode::UnsupportedAccess;
  }
  const PdoDirection direction =
      parameter >= kTransmitPdoParameter ? PdoDirection::Transmit : PdoDirection::Receive;
  if (write.address.subindex == 0) {
    return CheckMapping(write.objects, write.address.index, write.value, direction);
  }
  if (write.objects.Number({write.address.index, 0}) != 0) return AbortCode::UnsupportedAccess;
  return CheckMappedObject(write.objects, write.value, direction);
}

struct Rule {
  std::uint16_t first, last;  // indices
  AbortCode (*check)(const Write& write);
};

constexpr Rule kRules[] = {
    {kErrorHistory, kErrorHistory, &CheckErrorHistory},
    {0x1005, 0x1005, &CheckSync},
    {0x1014, 0x1014, &CheckEmergencyCobId},
    {kReceivePdoParameter, kReceivePdoParameter + kMaxPdoCount - 1, &CheckPdoParameter},
    {kReceivePdoMapping, kReceivePdoMapping + kMaxPdoCount - 1, &CheckPdoMapping},
    {kTransmitPdoParameter, kTransmitPdoParameter + kMaxPdoCount - 1, &CheckPdoParameter},
    {kTransmitPdoMapping, kTransmitPdoMapping + kMaxPdoCount - 1, &CheckPdoMapping},
};

}  // namespace

AbortCode CheckCommunicationRules(const ObjectDictionary& objects, ObjectAddress address, BytesView value) {
  const auto rule = std::ranges::find_if(
      kRules, [&](const Rule& r) { return address.index >= r.first && address.index <= r.last; });
  if (rule == std::end(kRules)) return AbortCode::None;
  return rule->check({objects, address, static_cast<std::uint32_t>(ReadLittleEndian(value))});
}

// The error history has as many errors as its sub-index 0 says.
AbortCode CheckAvailable(const ObjectDictionary& objects, ObjectAddress address) {
  const bool behindHistory =
      address.index == kErrorHistory && address.subindex > objects.Number({kErrorHistory, 0});
  return behindHistory ? AbortCode::NoData : AbortCode::None;
}

}  // namespace NDevices
