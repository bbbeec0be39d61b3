#include "tests/sdo/test_server.h"

#include <algorithm>
#include <cstring>

namespace NSdoTest {

void TestServer::Take(const NSdk::CanFrame& request) {
  Check(request.identifier == 0x605 && request.flags == 8, "identifier or length");
  if (request.data[0] == 0x80 && mExpect != &TestServer::BlockSegment) {
    std::memcpy(&abortCode, request.data + 4, 4);
    mExpect = &TestServer::Initiate;
    return;
  }
  (this->*mExpect)(request.data);
}

void TestServer::Initiate(const std::uint8_t* b) {
  std::memcpy(mAddress, b + 1, 3);
  mIncoming.clear();
  mSent = 0;
  mToggle = 0;
  mSegments = 0;
  std::uint32_t number = 0;
  std::memcpy(&number, b + 4, 4);
  mAnnounced = number;
  const unsigned command = b[0] & 0xE0;
  if (command == 0x20 && (b[0] & 2) != 0) return ExpeditedDownload(b);
  if (command == 0x20 || command == 0xC0) {
    Check(b[0] == 0x21 || b[0] == 0xC6, "initiate download");
    if (mAnnounced > mSettings.capacity) return Abort(0x06070012);
    mBlockSize = mSettings.blockSize;
    mExpect = command == 0x20 ? &TestServer::DownloadSegment : &TestServer::BlockSegment;
    return command == 0x20 ? AnswerForObject(0x60, 0)
                           : AnswerForObject(mSettings.hasCrc ? 0xA4 : 0xA0, mBlockSize);
  }
  if (command == 0x40) {
    Check(b[0] == 0x40, "initiate upload");
    CheckZero(b, 4);
    return StartUpload();
  }
  if (!Check(b[0] == 0xA4 && b[4] >= 1 && b[4] <= 127, "initiate block upload")) return Abort(0x05040001);
  CheckZero(b, 6);
  mBlockSize = b[4];
  if (!mSettings.hasBlockUpload || (b[5] != 0 && object.size() <= b[5])) return StartUpload();
  const unsigned flags = (mSettings.hasCrc ? 4u : 0u) | (mSettings.tellsSize ? 2u : 0u);
  mExpect = &TestServer::BlockUploadStart;
  AnswerForObject(0xC0 | flags, mSettings.tellsSize ? static_cast<std::uint32_t>(object.size()) : 0);
}

void TestServer::ExpeditedDownload(const std::uint8_t* b) {
  Check((b[0] & 0x13) == 0x03, "expedited download");
  const int size = 4 - ((b[0] >> 2) & 3);
  CheckZero(b, 4 + size);
  object.assign(b + 4, b + 4 + size);
  ++downloads;
  AnswerForObject(0x60, 0);
}

void TestServer::DownloadSegment(const std::uint8_t* b) {
  if (!Check((b[0] & 0xE0) == 0, "download segment")) return Abort(0x05040001);
  if ((b[0] & 0x10) != mToggle) return Abort(0x05030000);
  const bool last = (b[0] & 1) != 0;
  const int size = 7 - ((b[0] >> 1) & 7);
  Check(last || size == 7, "short segment in the middle");
  CheckZero(b, 1 + size);
  mIncoming.insert(mIncoming.end(), b + 1, b + 1 + size);
  if (last && mIncoming.size() != mAnnounced) return Abort(0x06070010);
  Answer({0x20 | mToggle});
  mToggle ^= 0x10;
  if (!last) return;
  object = mIncoming;
  ++downloads;
  mExpect = &TestServer::Initiate;
}

// Out of order: the rest of the sub-block is ignored and the last good number acknowledged at once.
void TestServer::BlockSegment(const std::uint8_t* b) {
  const unsigned sequence = b[0] & 0x7F;
  if (sequence == 0) return Check(false, "segment 0"), Abort(0x05040003);
  const bool inOrder = sequence == mSegments + 1;
  if (inOrder) {
    ++mSegments;
    mIncoming.insert(mIncoming.end(), b + 1, b + 8);
  }
  const bool last = inOrder && (b[0] & 0x80) != 0;
  if (!last && sequence != mBlockSize && inOrder) return;
  if (!inOrder && sequence != mBlockSize) return;
  const unsigned proposed = mSettings.variesBlockSize ? mBlockSize % 127 + 1 : mBlockSize;
  Answer({0xA2, mSegments, proposed});
  mSegments = 0;
  if (last) mExpect = &TestServer::BlockDownloadEnd;
}

void TestServer::BlockDownloadEnd(const std::uint8_t* b) {
  if (!Check((b[0] & 0xE3) == 0xC1, "end of block download")) return Abort(0x05040001);
  CheckZero(b, 3);
  const unsigned unused = (b[0] >> 2) & 7;
  const std::size_t size = mIncoming.size() - unused;
  for (std::size_t i = size; i < mIncoming.size(); ++i) Check(mIncoming[i] == 0, "rubbish behind the data");
  mIncoming.resize(size);
  if (size != mAnnounced) return Abort(0x06070010);
  mIncoming.swap(object);
  const bool good = !mSettings.hasCrc || Crc() == (b[1] | unsigned{b[2]} << 8);
  if (!good) mIncoming.swap(object);
  if (!good) return Abort(0x05040004);
  ++downloads;
  mExpect = &TestServer::Initiate;
  Answer({0xA1});
}

void TestServer::StartUpload() {
  const auto size = static_cast<std::uint32_t>(object.size());
  if (size >= 1 && size <= 4) {
    std::uint32_t data = 0;
    std::memcpy(&data, object.data(), size);
    mExpect = &TestServer::Initiate;
    // Without a size all four bytes count, so that only fits objects of four.
    const bool tells = mSettings.tellsSize || size != 4;
    return AnswerForObject(tells ? 0x43 | ((4 - size) << 2) : 0x42, data);
  }
  mExpect = &TestServer::UploadSegment;
  AnswerForObject(mSettings.tellsSize ? 0x41 : 0x40, mSettings.tellsSize ? size : 0);
}

void TestServer::UploadSegment(const std::uint8_t* b) {
  if (!Check((b[0] & 0xEF) == 0x60, "upload segment request")) return Abort(0x05040001);
  CheckZero(b, 1);
  if ((b[0] & 0x10) != mToggle) return Abort(0x05030000);
  const std::size_t size = std::min<std::size_t>(7, object.size() - mSent);
  Raw answer = {0};
  answer.insert(answer.end(), object.begin() + static_cast<std::ptrdiff_t>(mSent),
                object.begin() + static_cast<std::ptrdiff_t>(mSent + size));
  mSent += size;
  const bool last = mSent == object.size();
  answer[0] = mToggle | static_cast<unsigned>(7 - size) << 1 | (last ? 1u : 0u);
  mToggle ^= 0x10;
  if (last) mExpect = &TestServer::Initiate;
  Answer(answer);
}

void TestServer::BlockUploadStart(const std::uint8_t* b) {
  if (!Check(b[0] == 0xA3, "start of block upload")) return Abort(0x05040001);
  CheckZero(b, 1);
  SendSubBlock();
}

void TestServer::SendSubBlock() {
  mExpect = &TestServer::BlockUploadAck;
  for (mLastSequence = 1;; ++mLastSequence) {
    const std::size_t size = std::min<std::size_t>(7, object.size() - mSent);
    Raw segment = {mLastSequence};
    segment.insert(segment.end(), object.begin() + static_cast<std::ptrdiff_t>(mSent),
                   object.begin() + static_cast<std::ptrdiff_t>(mSent + size));
    mSent += size;
    const bool last = mSent == object.size();
    if (last) segment[0] |= 0x80;
    Answer(segment);
    if (last || mLastSequence == mBlockSize) return;
  }
}

void TestServer::BlockUploadAck(const std::uint8_t* b) {
  if (!Check(b[0] == 0xA2 && b[1] == mLastSequence && b[2] == mBlockSize, "acknowledge"))
    return Abort(0x05040002);
  CheckZero(b, 3);
  if (mSent < object.size()) return SendSubBlock();
  const auto unused = static_cast<unsigned>(object.empty() ? 7 : (7 - object.size() % 7) % 7);
  const unsigned crc = mSettings.hasCrc ? Crc() : 0xABCD;  // without CRC support it may be anything
  mExpect = &TestServer::BlockUploadEnd;
  Answer({0xC1 | unused << 2, crc & 0xFF, crc >> 8});
}

void TestServer::BlockUploadEnd(const std::uint8_t* b) {
  Check(b[0] == 0xA1, "end of block upload");
  CheckZero(b, 1);
  mExpect = &TestServer::Initiate;
}

void TestServer::Answer(Raw bytes) {
  NSdk::CanFrame frame;
  frame.identifier = 0x585;
  frame.flags = 8;
  for (std::size_t i = 0; i < bytes.size(); ++i) frame.data[i] = static_cast<std::uint8_t>(bytes[i]);
  answers.push_back(frame);
}

void TestServer::AnswerForObject(unsigned command, std::uint32_t number) {
  Answer({command, mAddress[0], mAddress[1], mAddress[2], number & 0xFF, number >> 8 & 0xFF,
          number >> 16 & 0xFF, number >> 24});
}

void TestServer::Abort(std::uint32_t code) {
  abortCode = code;
  mExpect = &TestServer::Initiate;
  AnswerForObject(0x80, code);
}

bool TestServer::Check(bool good, const char* complaint) {
  if (!good) complaints.append(complaint).append("; ");
  return good;
}

void TestServer::CheckZero(const std::uint8_t* b, int from) {
  for (int i = from; i < 8; ++i) Check(b[i] == 0, "unused bytes are not 0");
}

// Bit by bit, as the standard draws the shift register.
unsigned TestServer::Crc() const {
  unsigned crc = 0;
  for (const std::uint8_t byte : object) {
    for (int bit = 7; bit >= 0; --bit) {
      const unsigned out = (crc >> 15 ^ unsigned{byte} >> bit) & 1;
      crc = (crc << 1 & 0xFFFF) ^ (out != 0 ? 0x1021 : 0);
    }
  }
  return crc;
}

}  // namespace NSdoTest
