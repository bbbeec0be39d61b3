#include "host/runtime/watched_file.h"

#include <fstream>
#include <vector>

namespace NRuntime {
namespace {

constexpr std::chrono::seconds kSettled{1};
constexpr std::uint64_t kOffset = 0xCBF29CE484222325, kPrime = 0x100000001B3;  // FNV-1a

}  // namespace

void WatchedFile::Accept() {
  mKnown = mSeen = StampNow();
  mHash = HashNow();
}

// A folder or a pipe of this name is no file.
WatchedFile::Stamp WatchedFile::StampNow() const {
  std::error_code error;
  Stamp stamp;
  stamp.exists = std::filesystem::is_regular_file(mFile, error);
  if (!stamp.exists) return {};
  stamp.time = std::filesystem::last_write_time(mFile, error);
  if (!error) stamp.size = std::filesystem::file_size(mFile, error);
  return error ? Stamp{} : stamp;
}

std::optional<std::uint64_t> WatchedFile::HashNow() const {
  if (!StampNow().exists) return std::nullopt;
  std::ifstream stream(mFile, std::ios::binary);
  if (!stream) return std::nullopt;
  std::uint64_t hash = kOffset;
  std::vector<char> block(65536);
  while (stream.read(block.data(), static_cast<std::streamsize>(block.size())) || stream.gcount() > 0) {
    for (std::streamsize at = 0; at < stream.gcount(); ++at)
      hash = (hash ^ static_cast<unsigned char>(block[static_cast<std::size_t>(at)])) * kPrime;
  }
  if (stream.bad()) return std::nullopt;
  return hash;
}

WatchedFile::Change WatchedFile::Look(Moment now) {
  const Stamp stamp = StampNow();
  if (stamp != mSeen) {
    mSeen = stamp;
    mSeenSince = now;
  }
  if (stamp == mKnown || now - mSeenSince < kSettled) return Change::None;
  if (!stamp.exists) {
    mKnown = stamp;
    return Change::Vanished;
  }
  const auto hash = HashNow();
  if (!hash || StampNow() != stamp) return Change::None;  // somebody is writing it
  mKnown = stamp;
  const bool isSame = hash == mHash;
  mHash = hash;
  return isSame ? Change::None : Change::Changed;
}

}  // namespace NRuntime
