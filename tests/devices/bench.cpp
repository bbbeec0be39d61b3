#include "tests/devices/bench.h"

#include <cstdio>
#include <numeric>
#include <sstream>

namespace NDevicesTest {

using NDevices::ObjectAddress;

NSdk::CanFrame Frame(const std::string& text) {
  std::istringstream stream(text);
  NSdk::CanFrame frame;
  std::string word;
  stream >> word;
  frame.identifier = static_cast<std::uint32_t>(std::stoul(word, nullptr, 16));
  if (word.size() == 8) frame.flags |= NSdk::kFrameExtended;
  std::uint32_t length = 0;
  while (stream >> word) {
    if (word == "R") {
      frame.flags |= NSdk::kFrameRemote;
    } else {
      frame.data[length++] = static_cast<std::uint8_t>(std::stoul(word, nullptr, 16));
    }
  }
  frame.flags |= length;
  return frame;
}

std::string Text(const NSdk::CanFrame& frame) {
  char text[16];
  std::snprintf(text, sizeof text, (frame.flags & NSdk::kFrameExtended) != 0 ? "%08X" : "%03X",
                frame.identifier);
  const std::uint32_t length = frame.flags & NSdk::kFrameDlcMask;
  std::string all = text;
  if (length > 0) all.append(" ").append(Hex(Bytes(frame.data, frame.data + length)));
  return all;
}

std::string Hex(const Bytes& bytes) {
  std::string all;
  for (const std::uint8_t byte : bytes) {
    char text[8];
    std::snprintf(text, sizeof text, "%02X", byte);
    all.append(all.empty() ? "" : " ").append(text);
  }
  return all;
}

Bytes Counting(std::size_t size) {
  Bytes bytes(size);
  std::iota(bytes.begin(), bytes.end(), std::uint8_t{1});
  return bytes;
}

namespace {

NSdk::CanFrame SdoFrame(const std::string& identifier, const std::string& bytes) {
  NSdk::CanFrame frame = Frame(identifier + " " + bytes);
  frame.flags = 8;
  return frame;
}

}  // namespace

Bench::Bench(NDevices::DeviceOptions options)
    : device(options, NDevices::IoDeviceObjects(options.nodeId), *this) {
  device.PowerOn(now);
  sent.clear();
}

void Bench::Send(const NSdk::CanFrame& frame) { sent.push_back({frame, now}); }

void Bench::Request(const std::string& bytes) { device.OnFrame(SdoFrame("605", bytes), now); }

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
  for (std::size_t place = 0; place < script.size();) {
    const std::size_t next = std::min(script.find_first_of("<>", place + 1), script.size());
    const std::string bytes = script.substr(place + 1, next - place - 1);
    const bool isRequest = script[place] == '>';
    place = next;
    if (isRequest) {
      ASSERT_TRUE(sent.empty()) << "not in the script: " << Text(sent.front().frame);
      Request(bytes);
      continue;
    }
    ASSERT_FALSE(sent.empty()) << "missing: " << bytes;
    EXPECT_EQ(Text(sent.front().frame), Text(SdoFrame("585", bytes)));
    sent.pop_front();
  }
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
  EXPECT_EQ(Text(sent.back().frame), Text(SdoFrame("585", answer)));
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
