#include "host/buses/replay.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "host/runtime/text.h"

namespace NBuses {
namespace {

using namespace std::chrono_literals;

constexpr int kLinesAtOnce = 4096;            // then the loop gets its turn
constexpr std::uint64_t kReportsPerKind = 5;  // of lines that cannot be read
constexpr std::size_t kInterfacesToName = 16;
constexpr std::chrono::nanoseconds kDisorder = 1s;  // of frames that several interfaces recorded
constexpr std::chrono::nanoseconds kLongestPause =
    24h;  // a longer one means that the recorder's clock was set
constexpr std::chrono::nanoseconds kLongestReplay = 24h * 365 * 50;

std::string SecondsText(std::chrono::nanoseconds time) {
  return std::to_string(std::chrono::duration_cast<std::chrono::seconds>(time).count()) + " s";
}

}  // namespace

void Replay::Join(ReplayPort& port) {
  if (!mRun) {
    mRun.emplace(mPath);
    mRun->start = mLoop.Now();
    mAlarm = mLoop.MakeAlarm([this] { Play(); });
    mAlarm->SetFor(mRun->start);
  }
  mPorts.push_back(&port);
}

void Replay::Leave(ReplayPort& port) {
  std::erase(mPorts, &port);
  if (!mPorts.empty()) return;
  mAlarm.reset();
  mRun.reset();
}

// What a port does with a frame may close it, and others.
void Replay::Play() {
  const auto kept = shared_from_this();
  for (int lines = 0; mRun && !mRun->hasEnded; ++lines) {
    if (lines == kLinesAtOnce) {
      mAlarm->SetFor(mLoop.Now());
      return;
    }
    if (mRun->next) {
      if (mRun->next->due > mLoop.Now()) {
        mAlarm->SetFor(mRun->next->due);
        return;
      }
      const Pending pending = std::move(*mRun->next);
      mRun->next.reset();
      Emit(pending);
    } else if (!ReadLine()) {
      if (!mRun) return;
      mRun->hasEnded = true;
      Finish();
    }
  }
}

bool Replay::ReadLine() {
  try {
    const auto line = mRun->reader.Next();
    if (!line) return false;
    if (line->isTooLong) {
      Skip(mRun->malformed, kReportsPerKind, line->number, "the line is too long; skipped");
    } else {
      Take(line->number, ReadLogLine(line->text));
    }
    return true;
  } catch (const std::runtime_error& error) {
    Report(error.what());
    return false;
  }
}

void Replay::Take(std::uint64_t lineNumber, const LogLineContent& content) {
  switch (content.kind) {
    case LogLineContent::Kind::Frame:
      break;
    case LogLineContent::Kind::Nothing:
      return;
    case LogLineContent::Kind::ErrorFrame:
      return Skip(mRun->errorFrames, 1, lineNumber, "an error frame; those are skipped");
    case LogLineContent::Kind::FdFrame:
      return Skip(mRun->fdFrames, 1, lineNumber, "a CAN FD frame; those are skipped");
    case LogLineContent::Kind::Malformed:
      return Skip(mRun->malformed, kReportsPerKind, lineNumber, std::string(content.fault) + "; skipped");
  }
  Advance(lineNumber, content.time);
  if (!mRun) return;
  if (mRun->interfaces.size() < kInterfacesToName &&
      mRun->interfaces.find(content.interfaceName) == mRun->interfaces.end()) {
    mRun->interfaces.emplace(content.interfaceName);
  }
  mRun->next = Pending{DueTime(), std::string(content.interfaceName), content.frame};
}

// A recorder whose clock is set while it writes leaves a jump in the log, for which nobody wants to wait.
void Replay::Advance(std::uint64_t lineNumber, std::chrono::nanoseconds time) {
  const auto step = time - mRun->lastTime.value_or(time);
  const bool isDisorder = step < 0ns && step >= -kDisorder;
  if (!isDisorder) mRun->lastTime = time;
  if (step > 0ns && step <= kLongestPause) {
    mRun->position = std::min(mRun->position + step, kLongestReplay);
  } else if (step != 0ns && !isDisorder) {
    Skip(mRun->clockJumps, kReportsPerKind, lineNumber,
         "the time goes " + std::string(step < 0ns ? "back" : "forward") + " by " +
             SecondsText(step < 0ns ? -step : step) + "; the frame follows the one before at once");
  }
}

NRuntime::Time Replay::DueTime() const {
  if (mSpeed == 1) return mRun->start + mRun->position;
  const double scaled = static_cast<double>(mRun->position.count()) / mSpeed;
  const auto longest = static_cast<double>(kLongestReplay.count());
  return mRun->start + std::chrono::nanoseconds(std::llround(std::min(scaled, longest)));
}

void Replay::Emit(const Pending& pending) {
  ForEachPort([&](ReplayPort& port) {
    if (port.Wants(pending.interfaceName)) port.mEvents->OnReceived(pending.frame, pending.due);
  });
}

template <class Action>
void Replay::ForEachPort(Action action) {
  const std::vector<ReplayPort*> ports = mPorts;
  for (ReplayPort* port : ports) {
    if (std::find(mPorts.begin(), mPorts.end(), port) != mPorts.end()) action(*port);
  }
}

// Whoever hears of something may close the port, and with the last one the run is gone.
void Replay::Finish() {
  const std::string log = "log " + NRuntime::PathText(mPath) + ": ";
  const auto interfaces = std::move(mRun->interfaces);
  std::string summary, known;
  const std::pair<const Skipped&, const char*> kinds[] = {{mRun->malformed, " malformed lines"},
                                                          {mRun->errorFrames, " error frames"},
                                                          {mRun->fdFrames, " CAN FD frames"},
                                                          {mRun->clockJumps, " jumps of the time"}};
  for (const auto& [kind, what] : kinds) {
    if (kind.count != kind.reported) {
      summary += (summary.empty() ? "" : ", ") + std::to_string(kind.count) + what;
    }
  }
  for (const std::string& interfaceName : interfaces) known += (known.empty() ? "" : ", ") + interfaceName;
  if (!summary.empty()) Report(log + summary + " in all");
  if (interfaces.empty()) Report(log + "there is no frame in it");
  ForEachPort([&](ReplayPort& port) {
    const bool isMissing = port.mInterface && interfaces.count(*port.mInterface) == 0;
    if (isMissing && !interfaces.empty() && interfaces.size() < kInterfacesToName) {
      port.mEvents->OnTrouble(log + "no frame of interface \"" + *port.mInterface +
                              "\" (there are: " + known + ")");
    }
  });
  ForEachPort([](ReplayPort& port) { port.mEvents->OnEnd(); });
}

void Replay::Skip(Skipped& kind, std::uint64_t most, std::uint64_t lineNumber, const std::string& what) {
  ++kind.count;
  if (kind.reported == most) return;
  ++kind.reported;
  Report("log " + NRuntime::PathText(mPath) + ", line " + std::to_string(lineNumber) + ": " + what);
}

// One channel tells the user, however many play the log.
void Replay::Report(const std::string& text) {
  if (!mPorts.empty()) mPorts.front()->mEvents->OnTrouble(text);
}

void ReplayPort::Open(NRuntime::CanAdapterEvents& events) {
  Close();
  mEvents = &events;
  try {
    mReplay->Join(*this);
  } catch (...) {
    mEvents = nullptr;
    throw;
  }
}

void ReplayPort::Close() {
  if (!mEvents) return;
  mReplay->Leave(*this);
  mEvents = nullptr;
}

void ReplayPort::Send(const NSdk::CanFrame& frame) {
  if (mEvents) mEvents->OnSent(frame, mReplay->Now());
}

std::shared_ptr<Replay> Replays::Get(const std::string& file, double speed) {
  std::weak_ptr<Replay>& known = mReplays[{file, speed}];
  std::shared_ptr<Replay> replay = known.lock();
  if (!replay) known = replay = std::make_shared<Replay>(mLoop, NRuntime::ToPath(file), speed);
  return replay;
}

}  // namespace NBuses
