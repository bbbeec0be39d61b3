#include "host/devices/profile.h"

#include <string_view>

#include "host/devices/pdo_mapping.h"

namespace NDevices {
namespace {

constexpr std::uint32_t kDeviceType = 0x000F0191;  // profile 401 with digital and analogue inputs and outputs
constexpr std::uint32_t kProductCode = 401;
constexpr std::uint32_t kRevision = 0x00010000;
constexpr std::uint8_t kErrorHistorySize = 8;
constexpr std::uint8_t kHeartbeatConsumers = 4;
constexpr std::uint8_t kMappedObjects = 8;
constexpr std::uint32_t kLargeSize = 1 << 20;
constexpr std::size_t kDomainSize = 4096;

class Builder {
 public:
  explicit Builder(std::uint8_t nodeId) : mNodeId(nodeId) {}

  ObjectDictionary Build() {
    AddIdentity();
    AddErrorObjects();
    AddPdos();
    AddManufacturerObjects();
    AddProcessObjects();
    return std::move(mObjects);
  }

 private:
  Entry& Add(ObjectAddress address, DataType type, Access access, std::uint64_t value) {
    Bytes bytes(FixedSize(type));
    WriteLittleEndian(bytes, value);
    return AddBytes(address, type, access, std::move(bytes), 0);
  }

  void AddCount(std::uint16_t index, std::uint8_t count, Access access = Access::Constant) {
    Add({index, 0}, DataType::Unsigned8, access, count);
  }

  Entry& AddBytes(ObjectAddress address, DataType type, Access access, Bytes value, std::uint32_t maxSize) {
    Entry entry;
    entry.address = address;
    entry.type = type;
    entry.access = access;
    entry.value = std::move(value);
    entry.maxSize = maxSize;
    mObjects.Add(std::move(entry));
    return *mObjects.Find(address);
  }

  void AddString(std::uint16_t index, Access access, std::string_view text, std::uint32_t maxSize) {
    AddBytes({index, 0}, DataType::VisibleString, access, Bytes(text.begin(), text.end()), maxSize);
  }

  void AddConstantString(std::uint16_t index, std::string_view text) {
    AddString(index, Access::Constant, text, static_cast<std::uint32_t>(text.size()));
  }

  void AddIdentity() {
    Add({0x1000, 0}, DataType::Unsigned32, Access::Constant, kDeviceType);
    AddConstantString(0x1008, "Simulated I/O device");
    AddConstantString(0x1009, "virtual");
    AddConstantString(0x100A, "1.0");
    AddCount(0x1018, 4);
    Add({0x1018, 1}, DataType::Unsigned32, Access::Constant, 0);  // nobody's vendor-ID
    Add({0x1018, 2}, DataType::Unsigned32, Access::Constant, kProductCode);
    Add({0x1018, 3}, DataType::Unsigned32, Access::Constant, kRevision);
    Add({0x1018, 4}, DataType::Unsigned32, Access::Constant, mNodeId);  // so that no two are alike
    AddCount(0x1200, 2);
    Add({0x1200, 1}, DataType::Unsigned32, Access::Constant, 0x600u + mNodeId);
    Add({0x1200, 2}, DataType::Unsigned32, Access::Constant, 0x580u + mNodeId);
  }

  void AddErrorObjects() {
    Add({0x1001, 0}, DataType::Unsigned8, Access::ReadOnly, 0).mappable = true;
    AddCount(0x1003, 0, Access::ReadWrite);
    for (std::uint8_t place = 1; place <= kErrorHistorySize; ++place) {
      Add({0x1003, place}, DataType::Unsigned32, Access::ReadOnly, 0);
    }
    Add({0x1005, 0}, DataType::Unsigned32, Access::ReadWrite, 0x80);
    Add({0x100C, 0}, DataType::Unsigned16, Access::ReadWrite, 0);
    Add({0x100D, 0}, DataType::Unsigned8, Access::ReadWrite, 0);
    Add({0x1014, 0}, DataType::Unsigned32, Access::ReadWrite, 0x80u + mNodeId);
    AddCount(0x1016, kHeartbeatConsumers);
    for (std::uint8_t place = 1; place <= kHeartbeatConsumers; ++place) {
      Add({0x1016, place}, DataType::Unsigned32, Access::ReadWrite, 0);
    }
    Add({0x1017, 0}, DataType::Unsigned16, Access::ReadWrite, 0);
    AddCount(0x1029, 1);
    Entry& behaviour = Add({0x1029, 1}, DataType::Unsigned8, Access::ReadWrite, 0);
    behaviour.high = {2};
  }

  // Identifiers and mappings as CiA 401 has them at first: the first PDOs are digital, the second analogue.
  void AddPdos() {
    AddPdo(kReceivePdoParameter, 0x200u + mNodeId, {0x62000108, 0x62000208});
    AddPdo(kReceivePdoParameter + 1, 0x300u + mNodeId, {0x64110110, 0x64110210, 0x64110310, 0x64110410});
    AddPdo(kTransmitPdoParameter, 0x180u + mNodeId, {0x60000108, 0x60000208});
    AddPdo(kTransmitPdoParameter + 1, 0x280u + mNodeId, {0x64010110, 0x64010210, 0x64010310, 0x64010410});
  }

  void AddPdo(std::uint16_t index, std::uint32_t cobId, const std::vector<std::uint32_t>& mapping) {
    const bool transmit = index >= kTransmitPdoParameter;
    AddCount(index, transmit ? kPdoEventTimer : kPdoTransmissionType);
    Add({index, kPdoCobId}, DataType::Unsigned32, Access::ReadWrite, cobId);
    Add({index, kPdoTransmissionType}, DataType::Unsigned8, Access::ReadWrite, 255);
    if (transmit) {
      Add({index, kPdoInhibitTime}, DataType::Unsigned16, Access::ReadWrite, 0);
      Add({index, kPdoEventTimer}, DataType::Unsigned16, Access::ReadWrite, 0);
    }
    const auto mappingIndex = static_cast<std::uint16_t>(index + kPdoMappingOffset);
    AddCount(mappingIndex, static_cast<std::uint8_t>(mapping.size()), Access::ReadWrite);
    for (std::uint8_t place = 1; place <= kMappedObjects; ++place) {
      const std::uint32_t value = place <= mapping.size() ? mapping[place - 1u] : 0;
      Add({mappingIndex, place}, DataType::Unsigned32, Access::ReadWrite, value);
    }
  }

  void AddLargeObject(std::uint16_t index, DataType type, std::size_t size) {
    Bytes pattern(size);
    for (std::size_t i = 0; i < size; ++i) pattern[i] = static_cast<std::uint8_t>(i ^ i >> 8);
    AddBytes({index, 0}, type, Access::ReadWrite, std::move(pattern), kLargeSize);
  }

  void AddManufacturerObjects() {
    AddString(0x2000, Access::ReadWrite, "A text that is longer than four bytes", 64);
    AddLargeObject(0x2001, DataType::Domain, kDomainSize);
    AddLargeObject(0x2002, DataType::OctetString, 0);
    Add({0x2003, 0}, DataType::Unsigned32, Access::WriteOnly, 0);
    Entry& limited = Add({0x2004, 0}, DataType::Integer16, Access::ReadWrite, 0);
    limited.low = {0x9C, 0xFF};  // -100
    limited.high = {0x64, 0x00};
    Add({0x2005, 0}, DataType::Unsigned64, Access::ReadWrite, 0).mappable = true;
    Entry& ratio = Add({0x2006, 0}, DataType::Real32, Access::ReadWrite, 0);
    ratio.low = {0, 0, 0, 0};
    ratio.high = {0x00, 0x00, 0x80, 0x3F};  // 1.0
    Add({0x2007, 0}, DataType::Unsigned8, Access::ReadWrite, 0).mappable = true;
  }

  void AddArray(std::uint16_t index, std::uint8_t count, DataType type, Access access) {
    AddCount(index, count);
    for (std::uint8_t place = 1; place <= count; ++place) {
      Add({index, place}, type, access, 0).mappable = true;
    }
  }

  void AddProcessObjects() {
    AddArray(0x6000, 2, DataType::Unsigned8, Access::ReadOnly);
    AddArray(0x6200, 2, DataType::Unsigned8, Access::ReadWrite);
    AddArray(0x6401, 4, DataType::Integer16, Access::ReadOnly);
    AddArray(0x6411, 4, DataType::Integer16, Access::ReadWrite);
  }

  std::uint8_t mNodeId;
  ObjectDictionary mObjects;
};

}  // namespace

ObjectDictionary IoDeviceObjects(std::uint8_t nodeId) { return Builder(nodeId).Build(); }

}  // namespace NDevices
