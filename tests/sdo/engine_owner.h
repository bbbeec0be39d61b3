#pragma once
// What the tests of the SDO engine share: an owner who records what the engine says, and scripts of frames.

#include <gtest/gtest.h>

#include <deque>
#include <string>
#include <vector>

#include "sdo/engine/client.h"
#include "tests/frames.h"

namespace NSdoTest {

using NTest::Bytes;
using NTest::Counting;
using NTest::Text;

inline constexpr std::uint32_t kResponseCobId = 0x585;
inline constexpr std::uint32_t kRequestCobId = 0x605;

enum class Kind { Upload, Download, BlockUpload, BlockDownload };

/// Owns an open engine and starts transfers of object 2000h sub 1 from node 5.
struct Owner {
  explicit Owner(std::uint8_t blockSize = 4);

  /// An upload's buffer is `size` bytes long and filled with EEh, a download's holds 1, 2, 3, ...
  void Start(Kind kind, std::uint32_t size, std::uint16_t timeoutMs = 0);
  void Feed(const std::string& bytes);
  void Ticks(int count);
  /// Expects the requests of a script and feeds the answers, and expects that nothing else is sent.
  void Play(const std::string& script);
  void ExpectSent(const std::string& bytes);
  void ExpectAbort(std::uint32_t code);
  std::uint32_t AbortCode() const { return NSdo::SdoResultOf(engine).abortCode; }

  Bytes buffer;
  std::deque<NSdo::SdoFrame> sent;
  bool keep = false;  ///< the bus takes nothing
  int completions = 0;
  NSdo::SdoEngine engine;
};

}  // namespace NSdoTest
