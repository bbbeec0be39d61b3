#include "host/buses/frame_time.h"

namespace NBuses {
namespace {

constexpr std::uint32_t kUnstuffedBits = 1 + 2 + 7;  // delimiter of the CRC, acknowledge and its own, end
constexpr std::uint32_t kCrcBits = 15;
constexpr std::uint32_t kCrcPolynomial = 0x4599;
constexpr std::uint32_t kSameBits = 5;  // as many as may follow each other

bool IsExtended(const NSdk::CanFrame& frame) { return (frame.flags & NSdk::kFrameExtended) != 0; }
std::uint32_t RemoteBit(const NSdk::CanFrame& frame) {
  return (frame.flags & NSdk::kFrameRemote) != 0 ? 1 : 0;
}

// The part of a frame that is stuffed, as it grows bit by bit.
class StuffedBits {
 public:
  void Add(std::uint32_t value, std::uint32_t bits) {
    while (bits-- != 0) AddBit(value >> bits & 1);
  }
  void AddCrc() { Add(mCrc, kCrcBits); }
  std::uint32_t Count() const { return mCount; }

 private:
  void AddBit(std::uint32_t bit) {
    const std::uint32_t carry = (mCrc >> (kCrcBits - 1) & 1) ^ bit;
    mCrc = (mCrc << 1 ^ (carry != 0 ? kCrcPolynomial : 0)) & ((1u << kCrcBits) - 1);
    ++mCount;
    mRun = bit == mLast ? mRun + 1 : 1;
    mLast = bit;
    if (mRun != kSameBits) return;
    ++mCount;  // the opposite bit, which opens the next run
    mLast = 1 - bit;
    mRun = 1;
  }

  std::uint32_t mCrc = 0;
  std::uint32_t mCount = 0;
  std::uint32_t mLast = 1;  // the bus is idle
  std::uint32_t mRun = 0;
};

}  // namespace

std::uint32_t FrameBits(const NSdk::CanFrame& frame) {
  const std::uint32_t size = frame.flags & NSdk::kFrameDlcMask;
  const bool extended = IsExtended(frame);
  StuffedBits bits;
  bits.Add(0, 1);  // start of frame
  if (extended) {
    bits.Add(ArbitrationField(frame), 32);
    bits.Add(0, 2);  // reserved
  } else {
    bits.Add(ArbitrationField(frame) >> 19, 13);
    bits.Add(0, 1);
  }
  bits.Add(size, 4);
  if (RemoteBit(frame) == 0) {
    for (std::uint32_t i = 0; i < size && i < sizeof frame.data; ++i) bits.Add(frame.data[i], 8);
  }
  bits.AddCrc();
  return bits.Count() + kUnstuffedBits;
}

// 11 bits of the identifier; the remote bit, or the one that is always set in its place in an extended frame;
// the bit that tells an extended frame; the other 18 bits of its identifier and its remote bit.
std::uint32_t ArbitrationField(const NSdk::CanFrame& frame) {
  if (!IsExtended(frame)) return frame.identifier << 21 | RemoteBit(frame) << 20;
  return (frame.identifier >> 18) << 21 | 3u << 19 | (frame.identifier & 0x3FFFF) << 1 | RemoteBit(frame);
}

}  // namespace NBuses
