#pragma once
// What the tests of the simulated devices share: a device on a virtual clock, and scripts of frames.

#include <gtest/gtest.h>

#include <deque>
#include <string>
#include <vector>

#include "host/devices/device.h"
#include "host/devices/profile.h"
#include "tests/frames.h"

namespace NDevicesTest {

using namespace std::chrono_literals;
using NDevices::Bytes;
using NDevices::Time;
using NTest::Counting;
using NTest::Frame;
using NTest::Hex;
using NTest::Text;

inline constexpr std::uint8_t kNode = 5;

/// A device with node-ID 5 and the built-in objects, powered on, its boot-up message taken off.
class Bench final : public NDevices::FrameSink {
 public:
  explicit Bench(NDevices::DeviceOptions options = {.nodeId = kNode, .sdo = {}, .misbehaviour = {}});

  void Send(const NSdk::CanFrame& frame) override;

  void Feed(const std::string& frame) { device.OnFrame(Frame(frame), now); }
  /// An SDO request: eight bytes to 605.
  void Request(const std::string& bytes);
  /// Time passes; whatever is due on the way happens at its moment.
  void RunFor(Time duration);
  /// Sends the requests of a script and expects the answers, and that nothing else is sent.
  void Play(const std::string& script);

  void Start() { Feed("000 01 00"); }
  void SetNumber(NDevices::ObjectAddress address, std::uint32_t value);
  void SetBytes(NDevices::ObjectAddress address, const Bytes& value);
  /// Writes by expedited download and expects that it is accepted, or refused with the code.
  void Download(NDevices::ObjectAddress address, std::uint32_t value, std::size_t size,
                std::uint32_t abortCode = 0);
  std::uint32_t Number(NDevices::ObjectAddress address) const { return device.Objects().Number(address); }
  Bytes Value(NDevices::ObjectAddress address) const { return device.Objects().Find(address)->value; }

  /// Everything sent since the last call, "185 00 00".
  std::vector<std::string> Sent();
  /// As Sent, with the milliseconds since `start` in front: "20: 185 00 00".
  std::vector<std::string> SentSince(Time start);

  struct SentFrame {
    NSdk::CanFrame frame;
    Time time;
  };
  std::deque<SentFrame> sent;
  Time now = 1h;
  NDevices::Device device;
};

}  // namespace NDevicesTest
