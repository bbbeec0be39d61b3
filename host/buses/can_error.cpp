#include "host/buses/can_error.h"

namespace NBuses {
namespace {

constexpr NRuntime::Time kSilence = std::chrono::seconds(1);
constexpr std::size_t kTextsToRemember = 64;

constexpr std::uint32_t kControllerClass = 0x04, kProtocolClass = 0x08;

struct Bit {
  std::uint32_t bit;
  const char* text;
};

constexpr Bit kClasses[] = {
    {0x40, "bus-off: the controller has left the bus"},
    {0x100, "the controller was restarted"},
    {0x20, "nobody acknowledges the frames"},
    {0x01, "a frame was not sent in time"},
    {0x02, "arbitration lost"},
    {0x10, "fault of the transceiver"},
    {0x80, "bus error"},
};
constexpr Bit kControllerStates[] = {
    {0x20, "error passive (sending)"},
    {0x10, "error passive (receiving)"},
    {0x08, "many errors (sending)"},
    {0x04, "many errors (receiving)"},
    {0x40, "error active again"},
    {0x01, "frames were lost in the controller (receiving)"},
    {0x02, "the controller's transmit buffer overflowed"},
};
constexpr Bit kProtocolErrors[] = {
    {0x01, "bit error"},          {0x02, "form error"},          {0x04, "stuff error"},
    {0x08, "dominant bit error"}, {0x10, "recessive bit error"}, {0x20, "overload"},
    {0x40, "active error frame"},
};

template <std::size_t kSize>
void AddTexts(std::string& text, std::uint32_t bits, const Bit (&known)[kSize]) {
  for (const Bit& bit : known) {
    if ((bits & bit.bit) != 0) text += (text.empty() ? "" : ", ") + std::string(bit.text);
  }
}

}  // namespace

std::string ErrorText(const CanError& error) {
  std::string text;
  AddTexts(text, error.classes & 0x140, kClasses);
  if ((error.classes & kControllerClass) != 0) AddTexts(text, error.data[1], kControllerStates);
  AddTexts(text, error.classes & ~0x140U, kClasses);
  if ((error.classes & kProtocolClass) != 0) AddTexts(text, error.data[2], kProtocolErrors);
  return text.empty() ? "error frame of an unknown kind" : text;
}

std::optional<std::string> CanErrorFilter::Tell(const CanError& error, NRuntime::Time now) {
  std::string text = ErrorText(error);
  const auto told = mTold.find(text);
  if (told != mTold.end() && now - told->second < kSilence) {
    ++mUntold;
    return std::nullopt;
  }
  if (mTold.size() >= kTextsToRemember) mTold.clear();
  mTold[text] = now;
  if (mUntold != 0) text += " (" + std::to_string(mUntold) + " error frames since the last message)";
  mUntold = 0;
  return text;
}

}  // namespace NBuses
