// Arbitrary frames, times, events and misbehaviour for a simulated device. The input is a list of operations,
// each a byte with its arguments behind it.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "fuzz/input.h"
#include "host/devices/device.h"
#include "host/devices/profile.h"

namespace {

using namespace NDevices;

constexpr std::uint8_t kNode = 5;

void Require(bool condition) {
  if (!condition) std::abort();
}

using NFuzz::Input;

class Owner final : private FrameSink {
 public:
  explicit Owner(Input& input) : mInput(input), mDevice(Options(), IoDeviceObjects(kNode), *this) {
    mDevice.PowerOn(mNow);
  }

  void Run() {
    while (!mInput.IsEmpty()) {
      mSent = 0;
      Step();
    }
    for (const Entry& entry : mDevice.Objects()) {
      Require(CheckSize(entry, entry.value.size()) == AbortCode::None);
      Require(CheckLimits(entry, entry.value) == AbortCode::None);
    }
  }

 private:
  DeviceOptions Options() {
    DeviceOptions options;
    options.nodeId = kNode;
    options.sdo.blockSize = static_cast<std::uint8_t>(mInput.Byte() % 127 + 1);
    return options;
  }

  void Send(const NSdk::CanFrame& frame) override {
    const bool extended = (frame.flags & NSdk::kFrameExtended) != 0;
    Require(frame.identifier <= (extended ? 0x1FFFFFFFu : 0x7FFu));
    Require((frame.flags & NSdk::kFrameDlcMask) <= 8 && (frame.flags & NSdk::kFrameRemote) == 0);
    // One event is answered by a sub-block and a few more, or by what was held back.
    Require(++mSent < 1200);
  }

  void Step() {
    switch (mInput.Byte() % 10) {
      case 0:
        return Pass();
      case 1:
        return FeedAnything();
      case 2:
        return FeedKnown();
      case 3:
        return FeedSegments();
      case 4:
        return Misbehave();
      case 5:
        return Change();
      case 6:
        return Fail();
      case 7:
        return Power();
      default:
        return Request();
    }
  }

  // Time passes, and the device is asked in time, late, or too early.
  void Pass() {
    const std::uint32_t how = mInput.Byte();
    const Time step = std::chrono::microseconds(mInput.Number(how % 4 + 1));
    const Time deadline = mDevice.NextDeadline();
    mNow = (how & 4) != 0 && deadline != kNever ? std::max(mNow, deadline) : mNow + step;
    mDevice.OnDeadline(mNow);
    Require(mDevice.NextDeadline() > mNow);
  }

  void Feed(std::uint32_t identifier, std::uint32_t flags, int bytes) {
    NSdk::CanFrame frame;
    frame.identifier = identifier;
    frame.flags = flags;
    for (int i = 0; i < bytes; ++i) frame.data[i] = mInput.Byte();
    mDevice.OnFrame(frame, mNow);
  }

  void FeedAnything() {
    const std::uint32_t identifier = mInput.Number(4);
    Feed(identifier, mInput.Number(4), 8);
  }

  void FeedKnown() {
    static constexpr std::uint32_t kIdentifiers[] = {0,     0x80,  0x205, 0x305, 0x185,
                                                     0x285, 0x705, 0x706, 0x605};
    const std::uint32_t which = mInput.Byte();
    const std::uint32_t length = mInput.Byte() & 0x1F;  // with the bit of remote frames
    Feed(kIdentifiers[which % std::size(kIdentifiers)], length, static_cast<int>(std::min(length & 15, 8u)));
  }

  // Commands alone or with an object that exists, so that transfers come about.
  void Request() {
    static constexpr ObjectAddress kObjects[] = {
        {0x2000, 0}, {0x2001, 0}, {0x2002, 0}, {0x2004, 0}, {0x1003, 0}, {0x1005, 0},
        {0x1014, 0}, {0x1016, 1}, {0x1017, 0}, {0x100C, 0}, {0x100D, 0}, {0x1400, 1},
        {0x1400, 2}, {0x1600, 0}, {0x1600, 1}, {0x1800, 1}, {0x1800, 2}, {0x1800, 3},
        {0x1800, 5}, {0x1A00, 0}, {0x1A00, 1}, {0x1A00, 2}, {0x6200, 1}, {0x1008, 0}};
    NSdk::CanFrame frame;
    frame.identifier = 0x600 + kNode;
    frame.flags = 8;
    frame.data[0] = mInput.Byte();
    const ObjectAddress object = kObjects[mInput.Byte() % std::size(kObjects)];
    WriteLittleEndian(std::span(frame.data).subspan(1, 2), object.index);
    frame.data[3] = object.subindex;
    for (int i = 4; i < 8; ++i) frame.data[i] = mInput.Byte();
    mDevice.OnFrame(frame, mNow);
  }

  // A run of segments: of a block with their numbers, or of a segmented transfer with their toggles.
  void FeedSegments() {
    const std::uint32_t how = mInput.Byte();
    const std::uint32_t count = mInput.Byte();
    for (std::uint32_t i = 0; i < count; ++i) {
      mSent = 0;
      const std::uint32_t block = i % 127 + 1, plain = (how & 0x60) | (i % 2) << 4;
      NSdk::CanFrame frame;
      frame.identifier = 0x600 + kNode;
      frame.flags = 8;
      frame.data[0] = static_cast<std::uint8_t>((how & 1) != 0 ? block : plain);
      mDevice.OnFrame(frame, mNow);
    }
  }

  void Misbehave() {
    const std::uint32_t bits = mInput.Byte();
    Misbehaviour& faults = mDevice.Faults();
    faults.answerDelay = (bits & 1) != 0 ? Time(std::chrono::milliseconds(mInput.Byte())) : Time{};
    faults.silent = (bits & 0x42) == 0x42;
    faults.wrongToggle = (bits & 4) != 0;
    faults.wrongSequence = (bits & 8) != 0;
    faults.dropSegment = (bits & 0x10) != 0;
    faults.badCrc = (bits & 0x20) != 0;
    faults.varyBlockSize = (bits & 0x80) != 0;
    faults.segment = mInput.Byte();
    faults.abort = (bits & 2) != 0 ? AbortCode{mInput.Number(4)} : AbortCode::None;
    faults.abortAtSegment = mInput.Byte();
  }

  void Change() {
    const ObjectAddress address = {static_cast<std::uint16_t>(mInput.Number(2)), mInput.Byte()};
    Bytes value(mInput.Byte() % 9u);
    for (std::uint8_t& byte : value) byte = mInput.Byte();
    mDevice.SetValue(address, value, mNow);
  }

  void Fail() {
    const auto code = static_cast<std::uint16_t>(mInput.Number(2));
    if ((mInput.Byte() & 1) != 0) {
      mDevice.ClearError(code);
    } else {
      mDevice.RaiseError({code, mInput.Byte(), {}});
    }
  }

  void Power() {
    mDevice.PowerOff();
    Require(mDevice.NextDeadline() == kNever);
    mSent = 0;
    FeedKnown();
    Require(mSent == 0);
    if ((mInput.Byte() & 3) != 0) mDevice.PowerOn(mNow);
  }

  Input& mInput;
  Time mNow = std::chrono::hours(1);
  int mSent = 0;
  Device mDevice;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  Owner(input).Run();
  return 0;
}
