#include "host/devices/emergency.h"

#include <algorithm>

#include "host/devices/cob_id.h"

namespace NDevices {
namespace {

constexpr ObjectAddress kErrorRegister = {0x1001, 0};
constexpr std::uint16_t kErrorHistory = 0x1003;
constexpr ObjectAddress kEmergencyCobId = {0x1014, 0};

}  // namespace

void Emergency::Reset() {
  mErrors.clear();
  UpdateRegister();
}

void Emergency::ResetCommunication() {
  std::erase_if(mErrors, [](const DeviceError& e) { return (e.registerBits & kCommunicationError) != 0; });
  UpdateRegister();
}

bool Emergency::Raise(const DeviceError& error) {
  if (error.code == 0 || mErrors.size() == kMaxErrors) return false;
  if (std::ranges::find(mErrors, error.code, &DeviceError::code) != mErrors.end()) return false;
  mErrors.push_back(error);
  UpdateRegister();
  Record(error);
  Report(error);
  return true;
}

bool Emergency::Clear(std::uint16_t code) {
  const auto error = std::ranges::find(mErrors, code, &DeviceError::code);
  if (error == mErrors.end()) return false;
  mErrors.erase(error);
  UpdateRegister();
  Report({});
  return true;
}

void Emergency::UpdateRegister() {
  unsigned bits = 0;
  for (const DeviceError& error : mErrors) bits |= kGenericError | unsigned{error.registerBits};
  mObjects.SetNumber(kErrorRegister, bits);
}

// History: sub-index 0 the number of errors, from 1 on the errors, the latest first:
//   bits 15..0 error code, bits 31..16 additional information
void Emergency::Record(const DeviceError& error) {
  std::uint8_t last = 0;
  while (last < 0xFE && mObjects.Find({kErrorHistory, static_cast<std::uint8_t>(last + 1)})) ++last;
  for (std::uint8_t place = last; place > 1; --place) {
    mObjects.SetNumber({kErrorHistory, place},
                       mObjects.Number({kErrorHistory, static_cast<std::uint8_t>(place - 1)}));
  }
  const std::uint32_t info = error.info[0] | std::uint32_t{error.info[1]} << 8;
  mObjects.SetNumber({kErrorHistory, 1}, error.code | info << 16);
  const std::uint32_t count = mObjects.Number({kErrorHistory, 0});
  mObjects.SetNumber({kErrorHistory, 0}, std::min<std::uint32_t>(count + 1, last));
}

void Emergency::ClearHistory() {
  for (std::uint8_t place = 0; Entry* entry = mObjects.Find({kErrorHistory, place}); ++place) {
    std::ranges::fill(entry->value, std::uint8_t{0});
    if (place == 0xFF) break;
  }
}

// EMCY (7.2.7.3): to the identifier of 1014h
//   byte 0..1  error code, low byte first; 0 = error reset or no error
//   byte 2     error register
//   byte 3..7  manufacturer-specific
void Emergency::Report(const DeviceError& error) {
  const std::uint32_t cobId = mObjects.Number(kEmergencyCobId, kCobIdNotValid);
  if (!mAllowed || !IsValid(cobId)) return;
  NSdk::CanFrame frame = FrameTo(cobId, 8);
  WriteLittleEndian(std::span(frame.data).first(2), error.code);
  frame.data[2] = static_cast<std::uint8_t>(mObjects.Number(kErrorRegister));
  std::ranges::copy(error.info, frame.data + 3);
  mBus.Send(frame);
}

}  // namespace NDevices
