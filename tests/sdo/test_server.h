#pragma once
// An SDO server for one object, written from the standard's frame tables and not from the engine: it has no
// state machine of its own but a function that waits for the next request (`mExpect`). It is strict: a client
// frame that is not exactly as it must be is noted in `complaints`.

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "sdk/can_frame.h"

namespace NSdoTest {

struct ServerSettings {
  bool tellsSize = true;            // in upload answers
  bool hasCrc = true;               // in block transfer
  bool hasBlockUpload = true;       // otherwise it switches to a normal upload
  std::uint8_t blockSize = 127;     // for block download, 1..127
  bool variesBlockSize = false;     // proposes another one with every acknowledge (and goes by its first)
  std::size_t capacity = SIZE_MAX;  // bytes that the object can take
};

class TestServer {
 public:
  explicit TestServer(ServerSettings settings) : mSettings(settings) {}

  /// Answers wait in `answers`.
  void Take(const NSdk::CanFrame& request);

  std::vector<std::uint8_t> object;  ///< what an upload gives and a download leaves
  std::deque<NSdk::CanFrame> answers;
  std::uint32_t abortCode = 0;  ///< last one sent or received
  std::string complaints;
  int downloads = 0;  ///< that were completed

 private:
  using Raw = std::vector<unsigned>;
  using Step = void (TestServer::*)(const std::uint8_t* b);

  void Initiate(const std::uint8_t* b);
  void ExpeditedDownload(const std::uint8_t* b);
  void DownloadSegment(const std::uint8_t* b);
  void BlockSegment(const std::uint8_t* b);
  void BlockDownloadEnd(const std::uint8_t* b);
  void StartUpload();
  void UploadSegment(const std::uint8_t* b);
  void BlockUploadStart(const std::uint8_t* b);
  void BlockUploadAck(const std::uint8_t* b);
  void BlockUploadEnd(const std::uint8_t* b);
  void SendSubBlock();

  void Answer(Raw bytes);
  void AnswerForObject(unsigned command, std::uint32_t number);
  void Abort(std::uint32_t code);
  bool Check(bool good, const char* complaint);
  void CheckZero(const std::uint8_t* b, int from);
  unsigned Crc() const;

  ServerSettings mSettings;
  Step mExpect = &TestServer::Initiate;
  std::uint8_t mAddress[3] = {};  // index and sub-index as the client sent them
  std::size_t mAnnounced = 0;
  std::vector<std::uint8_t> mIncoming;
  std::size_t mSent = 0;
  unsigned mToggle = 0;
  unsigned mSegments = 0;  // download: received in order within the sub-block
  unsigned mBlockSize = 0;
  unsigned mLastSequence = 0;
};

}  // namespace NSdoTest
