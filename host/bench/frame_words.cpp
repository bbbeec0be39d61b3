#include "host/bench/frame_words.h"

#include <algorithm>

#include <cstdarg>
#include <cstdio>

namespace NBench {
namespace {

constexpr unsigned kNodeMask = 0x7F;
constexpr unsigned kFunctionMask = 0x780;

struct Named {
  unsigned number;
  const char* name;
};

constexpr Named kNmtCommands[] = {{1, "start"},
                                  {2, "stop"},
                                  {128, "enter pre-operational"},
                                  {129, "reset node"},
                                  {130, "reset communication"}};
constexpr Named kNodeStates[] = {
    {0, "boot-up"}, {4, "stopped"}, {5, "operational"}, {127, "pre-operational"}};

// Function codes of services with a node in their identifier.
constexpr Named kServices[] = {{0x180, "TPDO 1 of node %u"},    {0x200, "RPDO 1 of node %u"},
                               {0x280, "TPDO 2 of node %u"},    {0x300, "RPDO 2 of node %u"},
                               {0x380, "TPDO 3 of node %u"},    {0x400, "RPDO 3 of node %u"},
                               {0x480, "TPDO 4 of node %u"},    {0x500, "RPDO 4 of node %u"},
                               {0x580, "SDO, node %u answers"}, {0x600, "SDO, request to node %u"}};

template <std::size_t Count>
const char* Find(const Named (&table)[Count], unsigned number) {
  for (const Named& row : table) {
    if (row.number == number) return row.name;
  }
  return nullptr;
}

[[gnu::format(printf, 1, 2)]] std::string Print(const char* format, ...) {
  char text[96];
  std::va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  return text;
}

std::string NmtWords(const NSdk::CanFrame& frame, unsigned size) {
  const char* command = size >= 2 ? Find(kNmtCommands, frame.data[0]) : nullptr;
  if (!command) return "NMT, unknown command";
  if (frame.data[1] == 0) return Print("NMT: %s, all nodes", command);
  return Print("NMT: %s, node %u", command, frame.data[1]);
}

std::string EmcyWords(const NSdk::CanFrame& frame, unsigned size, unsigned node) {
  if (size < 3) return Print("EMCY of node %u", node);
  const unsigned code = frame.data[0] | static_cast<unsigned>(frame.data[1]) << 8;
  if (code < 0x100) return Print("EMCY of node %u: error reset", node);
  return Print("EMCY of node %u: error %04Xh, error register %02Xh", node, code, frame.data[2]);
}

std::string StateWords(const NSdk::CanFrame& frame, unsigned size, unsigned node) {
  if (size < 1) return Print("error control of node %u", node);
  const char* state = Find(kNodeStates, frame.data[0] & kNodeMask);
  const char* toggle = (frame.data[0] & 0x80) ? " (guarding, toggle bit set)" : "";
  if (!state) return Print("node %u: state %u%s", node, frame.data[0] & kNodeMask, toggle);
  return Print("node %u: %s%s", node, state, toggle);
}

}  // namespace

std::string FrameInWords(const NSdk::CanFrame& frame) {
  if (frame.flags & NSdk::kFrameExtended) return {};
  const unsigned size = frame.flags & NSdk::kFrameDlcMask;
  const unsigned node = frame.identifier & kNodeMask;
  const unsigned function = frame.identifier & kFunctionMask;
  const bool remote = (frame.flags & NSdk::kFrameRemote) != 0;
  if (frame.identifier == 0) return remote ? std::string() : NmtWords(frame, size);
  if (frame.identifier == 0x80) return "SYNC";
  if (node == 0) return {};
  if (function == 0x700)
    return remote ? Print("guarding request to node %u", node) : StateWords(frame, size, node);
  if (function == 0x080) return remote ? std::string() : EmcyWords(frame, size, node);
  for (const Named& service : kServices) {
    if (service.number != function) continue;
    std::string words = service.name;
    words.replace(words.find("%u"), 2, std::to_string(node));
    return remote ? words + ", requested" : words;
  }
  return {};
}

std::string WithWords(std::string line, const NSdk::CanFrame& frame) {
  // Behind the longest frame with an 11-bit identifier.
  constexpr std::size_t kWordsColumn = 48;
  const std::string words = FrameInWords(frame);
  if (words.empty()) return line;
  line.resize(std::max(line.size() + 2, kWordsColumn), ' ');
  return line + words;
}

}  // namespace NBench
