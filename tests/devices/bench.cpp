#include "tests/devices/bench.h"

namespace NDevicesTest {

using NDevices::ObjectAddress;

Bench::Bench(NDevices::DeviceOptions options)
    : device(options, NDevices::IoDeviceObjects(options.nodeId), *this) {
  device.PowerOn(now);
  sent.clear();
}

void Bench::Send(const NSdk::CanFrame& frame) { sent.push_back({frame, now}); }

void Bench::Request(const std::string& bytes) { device.OnFrame(NTest::SdoFrame(0x605, bytes), now); }

void Bench::RunFor(Time duration) {
  const Time end = now + duration;
  while (device.NextDeadline() <= end) {
    now = std::max(now, device.NextDeadline());
    device.OnDeadline(now);
    ASSERT_GT(device.NextDeadline(), now) << "the deadline has not moved";
  }
  now = end;
}

void Bench::Play(const std::string& script) {
  const auto request = [this](const std::string& bytes) {
    EXPECT_TRUE(sent.empty()) << "not in the script: " << Text(sent.front().frame);
    Request(bytes);
  };
  const auto answer = [this](const std::string& bytes) {
    ASSERT_FALSE(sent.empty()) << "missing: " << bytes;
    EXPECT_EQ(Text(sent.front().frame), Text(NTest::SdoFrame(0x585, bytes)));
    sent.pop_front();
  };
  NTest::ForEachFrame(script, request, answer);
  EXPECT_TRUE(sent.empty()) << "not in the script: " << Text(sent.front().frame);
}

void Bench::SetNumber(ObjectAddress address, std::uint32_t value) {
  Bytes bytes(Value(address).size());
  NDevices::WriteLittleEndian(bytes, value);
  SetBytes(address, bytes);
}

void Bench::SetBytes(ObjectAddress address, const Bytes& value) {
  ASSERT_EQ(device.SetValue(address, value, now), NDevices::AbortCode::None);
}

void Bench::Download(ObjectAddress address, std::uint32_t value, std::size_t size, std::uint32_t abortCode) {
  Bytes object = {static_cast<std::uint8_t>(address.index), static_cast<std::uint8_t>(address.index >> 8),
                  address.subindex};
  Bytes data(4), code(4);
  NDevices::WriteLittleEndian(data, value);
  NDevices::WriteLittleEndian(code, abortCode);
  const auto command = static_cast<std::uint8_t>(0x23 | (4 - size) << 2);
  const auto before = std::exchange(sent, {});
  Request(Hex({command}) + " " + Hex(object) + " " + Hex(data));
  // The access may be an event that sends something itself.
  const std::string answer = abortCode == 0 ? "60 " + Hex(object) : "80 " + Hex(object) + " " + Hex(code);
  ASSERT_FALSE(sent.empty());
  EXPECT_EQ(Text(sent.back().frame), Text(NTest::SdoFrame(0x585, answer)));
  sent.pop_back();
  sent.insert(sent.begin(), before.begin(), before.end());
}

std::vector<std::string> Bench::Sent() {
  std::vector<std::string> texts;
  for (const SentFrame& one : std::exchange(sent, {})) texts.push_back(Text(one.frame));
  return texts;
}

std::vector<std::string> Bench::SentSince(Time start) {
  std::vector<std::string> texts;
  for (const SentFrame& one : std::exchange(sent, {})) {
    const auto time = std::chrono::duration_cast<std::chrono::milliseconds>(one.time - start).count();
    texts.push_back(std::to_string(time) + ": " + Text(one.frame));
  }
  return texts;
}

}  // namespace NDevicesTest
