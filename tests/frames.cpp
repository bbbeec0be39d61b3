#include "tests/frames.h"

#include <algorithm>
#include <cstdio>
#include <numeric>
#include <sstream>

namespace NTest {

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

NSdk::CanFrame SdoFrame(std::uint32_t cobId, const std::string& bytes) {
  NSdk::CanFrame frame = Frame("0 " + bytes);
  frame.identifier = cobId & 0x1FFFFFFF;
  frame.flags = 8 | ((cobId & 0x20000000) != 0 ? NSdk::kFrameExtended : 0);
  return frame;
}

void ForEachFrame(const std::string& script, const std::function<void(const std::string&)>& request,
                  const std::function<void(const std::string&)>& answer) {
  for (std::size_t place = 0; place < script.size();) {
    const std::size_t next = std::min(script.find_first_of("<>", place + 1), script.size());
    (script[place] == '>' ? request : answer)(script.substr(place + 1, next - place - 1));
    place = next;
  }
}

}  // namespace NTest
