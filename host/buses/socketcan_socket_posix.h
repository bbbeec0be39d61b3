#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "host/buses/can_error.h"
#include "sdk/can_frame.h"

namespace NBuses {

/// A raw socket on a CAN interface, without knowledge of loops.
class CanSocket {
 public:
  /// Binds to the interface. Throws std::runtime_error, one line that says how to set the interface right.
  explicit CanSocket(const std::string& interfaceName);
  ~CanSocket();
  CanSocket(const CanSocket&) = delete;
  CanSocket& operator=(const CanSocket&) = delete;

  int Handle() const { return mHandle; }

  enum class Result { Done, Busy, Failed };  ///< Failed: errno says why
  Result Send(const NSdk::CanFrame& frame) const;

  struct Received {
    NSdk::CanFrame frame;
    std::optional<CanError> error;   ///< in the place of a frame
    bool isOwn = false;              ///< sent by this socket
    std::chrono::nanoseconds age{};  ///< how long ago it was on the bus
    std::uint32_t lost = 0;          ///< frames before it that found no room in the socket's buffer
  };
  Result Receive(Received& received);

 private:
  int mHandle;
  std::uint32_t mLost = 0;  // since it was bound
};

/// `can0 is down`, and what to do about it.
std::string DownText(const std::string& interfaceName);

}  // namespace NBuses
