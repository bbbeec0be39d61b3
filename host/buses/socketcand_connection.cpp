#include "host/buses/socketcand_connection.h"

#include <asio/write.hpp>

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

namespace NBuses {
namespace {

using namespace std::chrono_literals;
using asio::ip::tcp;
using NRuntime::Time;

constexpr Time kLongestPause = 5s;           // between attempts
constexpr std::size_t kMostPending = 10000;  // frames
constexpr std::size_t kLargestPiece = 1400;  // bytes

std::string Join(const std::vector<std::string_view>& words, std::size_t first) {
  std::string text;
  for (std::size_t position = first; position < words.size(); ++position) {
    text += (text.empty() ? "" : " ") + std::string(words[position]);
  }
  return text;
}

// `< error CLASSES SEC.USEC >` is an error frame, anything else behind the word a message in words.
std::optional<CanError> ReadError(const std::vector<std::string_view>& words) {
  CanError error;
  if (words.size() != 3) return std::nullopt;
  const char* end = words[1].data() + words[1].size();
  const auto [stopped, fault] = std::from_chars(words[1].data(), end, error.classes, 16);
  if (fault != std::errc() || stopped != end) return std::nullopt;
  error.classes &= 0x1FFFFFFF;
  return error;
}

}  // namespace

SocketcandConnection::SocketcandConnection(NRuntime::IoLoop& loop, HostAndPort server,
                                           std::string interfaceName, NRuntime::CanAdapterEvents& events)
    : mLoop(loop),
      mServer(std::move(server)),
      mInterface(std::move(interfaceName)),
      mEvents(&events),
      mSocket(loop.Executor()),
      mResolver(loop.Executor()),
      mAlarm(loop.MakeAlarm([this] { OnAlarm(); })) {}

void SocketcandConnection::Close() {
  WriteRest();
  mEvents = nullptr;
  mPrepared = nullptr;
  mResolver.cancel();
  mAlarm.reset();
  std::error_code ignored;
  mSocket.close(ignored);
}

void SocketcandConnection::Read() {
  mSocket.async_read_some(asio::buffer(mBuffer), [self = shared_from_this(), attempt = mAttempt](
                                                     const std::error_code& error, std::size_t size) {
    if (!self->mEvents || attempt != self->mAttempt) return;
    if (error)
      return self->Lose(error == asio::error::eof ? "the server closes the connection" : error.message());
    self->mLastHeard = self->mLoop.Now();
    self->mIsAsking = false;
    self->mStream.Add({self->mBuffer.data(), size});
    self->TakeMessages();
    if (self->mEvents && attempt == self->mAttempt && !self->mIsHeld) self->Read();
  });
}

void SocketcandConnection::TakeMessages() {
  const std::uint64_t attempt = mAttempt;
  while (mEvents && attempt == mAttempt && !mIsHeld) {
    const auto words = mStream.Next();
    if (!words) break;
    OnMessage(*words);
  }
  if (!mEvents || attempt != mAttempt) return;
  if (!mRefusal.empty()) return Lose("interface " + mInterface + ": " + mRefusal);
  if (mStream.IsTooLong()) Lose("what it says is not the socketcand protocol");
}

void SocketcandConnection::OnMessage(const std::vector<std::string_view>& words) {
  if (words.empty()) return;
  if (words[0] == "frame" && mStage == Stage::Running) {
    const auto frame = ReadFrame(words);
    if (frame) return mEvents->OnReceived(*frame, mLoop.Now());
    if (!std::exchange(mWasMalformed, true)) mEvents->OnTrouble(Name() + ": a malformed frame was skipped");
  } else if (words[0] == "hi" && mStage == Stage::Greeting) {
    OnGreeting();
  } else if (words[0] == "ok") {
    OnOk();
  } else if (words[0] == "echo") {
    mAnswersEcho = true;
  } else if (words[0] == "error") {
    OnError(words);
  }
}

void SocketcandConnection::OnError(const std::vector<std::string_view>& words) {
  if (mStage != Stage::Running) {
    mRefusal = Join(words, 1);
    if (mRefusal.empty()) mRefusal = "the server refuses it";
  } else if (const auto error = ReadError(words)) {
    const auto text = mErrors.Tell(*error, mLoop.Now());
    if (text) mEvents->OnTrouble(*text);
  } else {
    mEvents->OnTrouble(Name() + ": " + Join(words, 1));
  }
}

// Commands are few and short: they find room in the buffers of the system, or the connection is stuck.
void SocketcandConnection::Say(const std::string& command) {
  std::error_code error;
  asio::write(mSocket, asio::buffer(command), error);
}

void SocketcandConnection::Send(const NSdk::CanFrame& frame) {
  if ((frame.flags & NSdk::kFrameRemote) != 0) {
    if (!std::exchange(mWasRemote, true)) {
      mEvents->OnTrouble(Name() + ": the protocol has no remote frames; they are not sent");
    }
    return;
  }
  if (mStage != Stage::Running) {
    ++mGivenUp;
    return;
  }
  if (mPending.size() >= kMostPending) return GiveUp("does not take frames as fast as they are sent");
  mPending.push_back({frame, SendCommand(frame)});
  if (mPending.size() > 1) return;
  mLoop.Post([self = shared_from_this(), attempt = mAttempt] {
    if (self->mEvents && attempt == self->mAttempt) self->WritePending();
  });
}

void SocketcandConnection::GiveUp(const std::string& why) {
  if (!std::exchange(mIsFull, true)) mEvents->OnTrouble(Name() + " " + why + "; frames were given up");
}

void SocketcandConnection::WaitUntilWritable() {
  mSocket.async_wait(tcp::socket::wait_write,
                     [self = shared_from_this(), attempt = mAttempt](const std::error_code& error) {
                       if (!self->mEvents || attempt != self->mAttempt || error) return;
                       self->WritePending();
                     });
}

// What one turn of the loop has sent leaves together, in pieces that fit into a packet: some servers close a
// connection when a read ends inside a command.
std::string SocketcandConnection::NextPiece() const {
  std::string piece;
  for (const Pending& pending : mPending) {
    if (!piece.empty() && piece.size() + pending.text.size() > kLargestPiece) break;
    piece += pending.text;
  }
  return piece;
}

void SocketcandConnection::WritePending() {
  const auto kept = shared_from_this();
  while (mEvents && mStage == Stage::Running && !mPending.empty()) {
    std::error_code error;
    const std::size_t size = mSocket.write_some(asio::buffer(NextPiece()), error);
    if (error == asio::error::would_block) return WaitUntilWritable();
    if (error) return Lose(error.message());
    TakeWritten(size);
  }
  if (mPending.empty()) mIsFull = false;
}

// What was sent in this turn of the loop, before the socket is closed.
void SocketcandConnection::WriteRest() {
  std::error_code error;
  while (mStage == Stage::Running && !mPending.empty() && !error) {
    std::size_t size = mSocket.write_some(asio::buffer(NextPiece()), error);
    for (; size != 0 && size >= mPending.front().text.size(); mPending.pop_front()) {
      size -= mPending.front().text.size();
    }
    if (size != 0) mPending.front().text.erase(0, size);
  }
}

// What is told of a frame may send another, or close the connection.
void SocketcandConnection::TakeWritten(std::size_t size) {
  std::vector<NSdk::CanFrame> written;
  while (!mPending.empty() && size >= mPending.front().text.size()) {
    size -= mPending.front().text.size();
    written.push_back(mPending.front().frame);
    mPending.pop_front();
  }
  if (size != 0) mPending.front().text.erase(0, size);
  for (const NSdk::CanFrame& frame : written) {
    if (mEvents) mEvents->OnSent(frame, mLoop.Now());
  }
}

void SocketcandConnection::Lose(const std::string& reason) {
  ++mAttempt;
  std::error_code ignored;
  mSocket.close(ignored);
  mStage = Stage::Lost;
  if (mPrepared) {
    mAlarm->Cancel();
    return TellPrepared(reason);
  }
  mGivenUp += mPending.size();
  mPending.clear();
  mAlarm->SetFor(mLoop.Now() + mPause);
  mPause = std::min(2 * mPause, kLongestPause);
  if (mLostAt != Time::zero()) return;
  mLostAt = mLoop.Now();
  mEvents->OnTrouble(Name() + ": the connection is lost (" + reason + "); it is tried again");
}

void SocketcandConnection::OnAlarm() {
  const auto kept = shared_from_this();
  if (mStage == Stage::Lost) {
    mStage = Stage::Connecting;
    mAlarm->SetFor(mLoop.Now() + kTimeToConnect);
    return ConnectLater();
  }
  if (mStage == Stage::Connecting) return Lose("no connection: the time is over");
  if (mStage != Stage::Running) return Lose("no answer; is it a socketcand server?");
  if (mLoop.Now() - mLastHeard >= kSilence) {
    if (mIsAsking && mAnswersEcho) return Lose("no answer");
    mIsAsking = true;
    if (mPending.empty()) Say("< echo >");
  }
  mAlarm->SetFor(mLoop.Now() + kSilence);
}

}  // namespace NBuses
