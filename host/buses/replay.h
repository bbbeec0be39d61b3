#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "host/buses/log_line.h"
#include "host/buses/log_reader.h"
#include "host/runtime/can_adapter.h"

namespace NBuses {

class ReplayPort;

/// A candump log that is played to its ports. The first frame of the file, whatever its interface, is due
/// when the first port opens; a log without open ports starts again from its beginning.
class Replay : public std::enable_shared_from_this<Replay> {
 public:
  /// `speed` 2 is twice as fast as it was recorded.
  Replay(NRuntime::Loop& loop, std::filesystem::path path, double speed)
      : mLoop(loop), mPath(std::move(path)), mSpeed(speed) {}
  Replay(const Replay&) = delete;
  Replay& operator=(const Replay&) = delete;

  /// Throws std::runtime_error when the file cannot be opened.
  void Join(ReplayPort& port);
  void Leave(ReplayPort& port);
  NRuntime::Time Now() const { return mLoop.Now(); }

 private:
  struct Pending {
    NRuntime::Time due{};
    std::string interfaceName;
    NSdk::CanFrame frame;
  };
  // One kind of lines that are left out.
  struct Skipped {
    std::uint64_t count = 0;
    std::uint64_t reported = 0;
  };
  // From the first port that opens to the last that closes.
  struct Run {
    explicit Run(const std::filesystem::path& path) : reader(path) {}

    LogReader reader;
    NRuntime::Time start{};
    std::optional<std::chrono::nanoseconds> lastTime;  // in the file
    std::chrono::nanoseconds position{};               // since the first frame, without jumps of its clock
    std::optional<Pending> next;
    std::set<std::string, std::less<>> interfaces;
    Skipped malformed, errorFrames, fdFrames, clockJumps;
    bool hasEnded = false;
  };

  void Play();
  bool ReadLine();
  void Take(std::uint64_t lineNumber, const LogLineContent& content);
  void Advance(std::uint64_t lineNumber, std::chrono::nanoseconds time);
  NRuntime::Time DueTime() const;
  void Emit(const Pending& pending);
  template <class Action>
  void ForEachPort(Action action);
  void Finish();
  void Skip(Skipped& kind, std::uint64_t most, std::uint64_t lineNumber, const std::string& what);
  void Report(const std::string& text);

  NRuntime::Loop& mLoop;
  const std::filesystem::path mPath;
  const double mSpeed;
  std::vector<ReplayPort*> mPorts;
  std::optional<Run> mRun;
  std::unique_ptr<NRuntime::Alarm> mAlarm;
};

/// A channel into which a log is played. What is sent there is seen as sent and goes nowhere.
class ReplayPort final : public NRuntime::CanAdapter {
 public:
  /// Without an interface the channel gets the frames of all.
  ReplayPort(std::shared_ptr<Replay> replay, std::optional<std::string> interfaceName)
      : mReplay(std::move(replay)), mInterface(std::move(interfaceName)) {}
  ~ReplayPort() override { Close(); }

  void Open(NRuntime::CanAdapterEvents& events) override;
  void Close() override;
  void Send(const NSdk::CanFrame& frame) override;

 private:
  friend class Replay;

  bool Wants(const std::string& interfaceName) const { return !mInterface || *mInterface == interfaceName; }

  std::shared_ptr<Replay> mReplay;
  std::optional<std::string> mInterface;
  NRuntime::CanAdapterEvents* mEvents = nullptr;  // null: closed
};

/// The logs of a program: channels that name the same file and speed play it in step.
class Replays {
 public:
  explicit Replays(NRuntime::Loop& loop) : mLoop(loop) {}

  /// A replay lives as long as somebody holds it.
  std::shared_ptr<Replay> Get(const std::string& file, double speed);

 private:
  NRuntime::Loop& mLoop;
  std::map<std::pair<std::string, double>, std::weak_ptr<Replay>> mReplays;
};

}  // namespace NBuses
