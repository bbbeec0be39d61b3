#pragma once
// EMCY producer with error register (1001h) and error history (1003h): CiA 301, 7.2.7.

#include <array>
#include <vector>

#include "host/devices/frame_sink.h"
#include "host/devices/object_dictionary.h"

namespace NDevices {

/// Error codes (CiA 301, table 26) that the devices raise by themselves.
inline constexpr std::uint16_t kHeartbeatLost = 0x8130;
inline constexpr std::uint16_t kPdoTooShort = 0x8210;

/// Bits of the error register.
inline constexpr std::uint8_t kGenericError = 0x01;
inline constexpr std::uint8_t kCommunicationError = 0x10;

struct DeviceError {
  std::uint16_t code = 0;              ///< 0 means no error and is nothing to raise
  std::uint8_t registerBits = 0;       ///< beside the generic bit, which every error sets
  std::array<std::uint8_t, 5> info{};  ///< manufacturer-specific
};

class Emergency {
 public:
  Emergency(ObjectDictionary& objects, FrameSink& bus) : mObjects(objects), mBus(bus) {
    mErrors.reserve(kMaxErrors);
  }

  /// Forgets all errors, without a message.
  void Reset();
  /// Forgets those of communication. Call it when the communication objects have got their first values
  /// again.
  void ResetCommunication();

  /// From now on messages leave, or they do not (the NMT state): what happens meanwhile still stands in
  /// register and history.
  void Allow(bool allowed) { mAllowed = allowed; }

  /// False: the error is there already, its code is 0, or there are too many.
  bool Raise(const DeviceError& error);
  /// The error is no more; the message carries code 0 and the register that remains. False: there was none.
  bool Clear(std::uint16_t code);

  /// A number was written to sub-index 0 of the history, which can only be 0.
  void ClearHistory();

 private:
  static constexpr std::size_t kMaxErrors = 32;

  void UpdateRegister();
  void Record(const DeviceError& error);
  void Report(const DeviceError& error);

  ObjectDictionary& mObjects;
  FrameSink& mBus;
  std::vector<DeviceError> mErrors;
  bool mAllowed = false;
};

}  // namespace NDevices
