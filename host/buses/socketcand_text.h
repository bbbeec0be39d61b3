#pragma once
// What the two ends of a socketcand connection say to each other: words in angle brackets, `< send 123 1 0a
// >`.

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sdk/can_frame.h"

namespace NBuses {

inline constexpr std::uint16_t kSocketcandPort = 29536;

/// Takes messages out of a stream of bytes, however it was cut up on its way.
class SocketcandStream {
 public:
  void Add(std::string_view bytes) { mBytes.append(bytes); }

  /// The words of the next message. Empty: none is whole yet. Whatever stands between messages is dropped.
  std::optional<std::vector<std::string_view>> Next();
  /// A message has not ended within the longest that there is.
  bool IsTooLong() const { return mIsTooLong; }

 private:
  void DropTaken();

  std::string mBytes;
  std::size_t mBegin = 0;  // of what has not been taken
  bool mIsTooLong = false;
};

/// `< send 123 2 11 22 >`. A remote frame has no bytes behind its length.
std::string SendCommand(const NSdk::CanFrame& frame);
/// Reads it; empty when it is malformed.
std::optional<NSdk::CanFrame> ReadSend(const std::vector<std::string_view>& words);

/// `< frame 123 1700000000.000123 1122 >`, time since 1970. There is no form for a remote frame.
std::string FrameMessage(const NSdk::CanFrame& frame, std::chrono::nanoseconds time);
/// Reads it, without the time: that of another machine's clock. Empty when it is malformed.
std::optional<NSdk::CanFrame> ReadFrame(const std::vector<std::string_view>& words);

/// HOST[:PORT] with a host in square brackets when it holds colons itself.
struct HostAndPort {
  std::string host;
  std::uint16_t port = kSocketcandPort;
};
/// Empty when it is malformed.
std::optional<HostAndPort> ReadHostAndPort(std::string_view text);
std::string HostAndPortText(const std::string& host, std::uint16_t port);

}  // namespace NBuses
