#pragma once
// Notices that another program has changed a file.

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>

namespace NRuntime {

/// Compares a file with what is known of it: its time and size first, and its contents when these differ.
class WatchedFile {
 public:
  using Moment = std::chrono::steady_clock::time_point;
  enum class Change { None, Changed, Vanished };

  /// What is in the file now is known.
  explicit WatchedFile(std::filesystem::path file) : mFile(std::move(file)) { Accept(); }

  const std::filesystem::path& File() const { return mFile; }
  /// What is in the file now is known: it was read or written by the program itself.
  void Accept();
  /// To be called again and again. Each change is told once, when the file has been left alone for a second;
  /// a file that comes back as it was, or that was only touched, has not changed. One that cannot be read now
  /// is looked at again.
  Change Look(Moment now);

 private:
  struct Stamp {
    bool exists = false;
    std::filesystem::file_time_type time{};
    std::uintmax_t size = 0;

    bool operator==(const Stamp&) const = default;
  };

  Stamp StampNow() const;
  std::optional<std::uint64_t> HashNow() const;

  std::filesystem::path mFile;
  Stamp mKnown, mSeen;
  Moment mSeenSince{};
  std::optional<std::uint64_t> mHash;  // of the contents that are known; empty: there was no file
};

}  // namespace NRuntime
