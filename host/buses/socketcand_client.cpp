#include "host/buses/socketcand_client.h"

#include <asio/connect.hpp>
#include <asio/ip/tcp.hpp>
#include <asio/write.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <deque>
#include <stdexcept>
#include <utility>

#include "host/buses/can_error.h"
#include "host/buses/socket_platform.h"

namespace NBuses {
namespace {

using namespace std::chrono_literals;
using asio::ip::tcp;
using NRuntime::Time;

constexpr std::chrono::milliseconds kTimeToConnect = 5s;
constexpr Time kFirstPause = 250ms, kLongestPause = 5s;  // between attempts
constexpr Time kSilence = 5s;                            // then the server is asked whether it is still there
constexpr std::size_t kMostPending = 10000;              // frames
constexpr std::size_t kLargestPiece = 1400;              // bytes

std::string Seconds(Time time) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f s", std::chrono::duration<double>(time).count());
  return text;
}

std::string Frames(std::uint64_t count) {
  return std::to_string(count) + (count == 1 ? " frame" : " frames");
}

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

// Hears a connection while it is prepared.
class Nobody final : public NRuntime::CanAdapterEvents {
  void OnReceived(const NSdk::CanFrame&, Time) override {}
  void OnSent(const NSdk::CanFrame&, Time) override {}
  void OnTrouble(const std::string&) override {}
};
Nobody gNobody;

}  // namespace

class SocketcandClient::Connection : public std::enable_shared_from_this<Connection> {
 public:
  Connection(NRuntime::IoLoop& loop, HostAndPort server, std::string interfaceName,
             NRuntime::CanAdapterEvents& events)
      : mLoop(loop),
        mServer(std::move(server)),
        mInterface(std::move(interfaceName)),
        mEvents(&events),
        mSocket(loop.Executor()),
        mResolver(loop.Executor()),
        mAlarm(loop.MakeAlarm([this] { OnAlarm(); })) {}

  void ConnectAndWait();
  void Prepare(Prepared done);
  bool IsPrepared() const { return mIsHeld; }
  void Begin(NRuntime::CanAdapterEvents& events);
  void Close();
  void Send(const NSdk::CanFrame& frame);

 private:
  enum class Stage { Lost, Connecting, Greeting, Opening, Entering, Running };
  struct Pending {
    NSdk::CanFrame frame;
    std::string text;  // what of it is not yet written
  };

  std::string Name() const { return "socketcand " + HostAndPortText(mServer.host, mServer.port); }
  [[noreturn]] void Refuse(const std::string& reason) const {
    throw std::runtime_error(Name() + ": " + reason);
  }

  void ConnectWithin(std::chrono::steady_clock::time_point end);
  void GreetWithin(std::chrono::steady_clock::time_point end);
  void ReadLater();
  void ConnectLater();
  void TellPrepared(const std::string& fault);
  void StartTalking();
  void Read();
  void TakeMessages();
  void OnMessage(const std::vector<std::string_view>& words);
  void OnOk();
  void OnError(const std::vector<std::string_view>& words);
  void OnRunning();
  void Say(const std::string& command);
  void WaitUntilWritable();
  void WritePending();
  void TakeWritten(std::size_t size);
  void Lose(const std::string& reason);
  void OnAlarm();
  void GiveUp(const std::string& why);

  NRuntime::IoLoop& mLoop;
  const HostAndPort mServer;
  const std::string mInterface;
  NRuntime::CanAdapterEvents* mEvents;  // null: closed
  tcp::socket mSocket;
  tcp::resolver mResolver;
  tcp::resolver::results_type mEndpoints;
  Prepared mPrepared;    // empty: nobody waits for the first connection
  bool mIsHeld = false;  // it stands, and what comes waits for Begin()
  std::unique_ptr<NRuntime::Alarm> mAlarm;
  Stage mStage = Stage::Connecting;
  std::uint64_t mAttempt = 0;  // tells what comes from an older socket
  SocketcandStream mStream;
  std::array<char, 16384> mBuffer = {};
  std::deque<Pending> mPending;
  std::string mRefusal;  // why the server does not open the interface
  CanErrorFilter mErrors;
  Time mLostAt{};
  Time mPause = kFirstPause;
  Time mLastHeard{};
  bool mIsAsking = false;      // an echo is on its way
  bool mAnswersEcho = false;   // as not every server does
  bool mWasMalformed = false;  // told once
  bool mWasRemote = false;     // told once
  bool mIsFull = false;        // told, until the queue is empty again
  std::uint64_t mGivenUp = 0;  // frames, since the connection was lost
};

void SocketcandClient::Connection::ConnectAndWait() {
  const auto end = std::chrono::steady_clock::now() + kTimeToConnect;
  std::error_code error;
  mEndpoints = mResolver.resolve(mServer.host, std::to_string(mServer.port), error);
  if (error) Refuse("the name cannot be resolved: " + error.message());
  ConnectWithin(end);
  GreetWithin(end);
  ReadLater();
}

// What came behind the greeting waits until the caller is ready.
void SocketcandClient::Connection::ReadLater() {
  mLoop.Post([self = shared_from_this()] {
    if (!self->mEvents) return;
    self->TakeMessages();
    self->Read();
  });
}

// While the name is resolved the system cannot be stopped: `done` stays with it.
void SocketcandClient::Connection::Prepare(Prepared done) {
  mPrepared = done;
  mAlarm->SetFor(mLoop.Now() + kTimeToConnect);
  mResolver.async_resolve(mServer.host, std::to_string(mServer.port),
                          [self = shared_from_this(), attempt = mAttempt, done](const std::error_code& error,
                                                                                const auto& endpoints) {
                            if (!self->mEvents || attempt != self->mAttempt) return;
                            if (error) return self->Lose("the name cannot be resolved: " + error.message());
                            self->mEndpoints = endpoints;
                            self->ConnectLater();
                          });
}

void SocketcandClient::Connection::TellPrepared(const std::string& fault) {
  const auto words = fault.empty() ? fault : Name() + ": " + fault;
  mLoop.Post([done = std::exchange(mPrepared, nullptr), words] { done(words); });
}

void SocketcandClient::Connection::Begin(NRuntime::CanAdapterEvents& events) {
  mEvents = &events;
  mIsHeld = false;
  ReadLater();
}

void SocketcandClient::Connection::ConnectWithin(std::chrono::steady_clock::time_point end) {
  std::error_code error = asio::error::host_not_found;
  for (const auto& endpoint : mEndpoints) {
    std::error_code ignored;
    mSocket.close(ignored);
    mSocket.open(endpoint.endpoint().protocol(), error);
    if (error) continue;
    mSocket.non_blocking(true);
    mSocket.connect(endpoint.endpoint(), error);
    if (error == asio::error::would_block || error == asio::error::in_progress) {
      const auto left =
          std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
      if (!WaitForSocket(mSocket, SocketWait::Writable, left)) {
        error = asio::error::timed_out;
        continue;
      }
      // Zero once the connection stands.
      int fault = 0;
      socklen_t size = sizeof fault;
      getsockopt(mSocket.native_handle(), SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&fault), &size);
      error = std::error_code(fault, asio::error::get_system_category());
    }
    if (!error) return;
  }
  Refuse("no connection: " + error.message());
}

void SocketcandClient::Connection::GreetWithin(std::chrono::steady_clock::time_point end) {
  StartTalking();
  while (mStage != Stage::Running) {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
    if (!WaitForSocket(mSocket, SocketWait::Readable, left)) Refuse("no answer; is it a socketcand server?");
    std::error_code error;
    const std::size_t size = mSocket.read_some(asio::buffer(mBuffer), error);
    if (error == asio::error::would_block) continue;
    if (!error) mStream.Add({mBuffer.data(), size});
    while (!error && mStage != Stage::Running && mRefusal.empty()) {
      const auto words = mStream.Next();
      if (!words) break;
      OnMessage(*words);
    }
    if (!mRefusal.empty()) Refuse("interface " + mInterface + ": " + mRefusal);
    if (error) Refuse("the server closes the connection");
    if (mStream.IsTooLong()) Refuse("what it says is not the socketcand protocol");
  }
}

void SocketcandClient::Connection::Close() {
  mEvents = nullptr;
  mPrepared = nullptr;
  mResolver.cancel();
  mAlarm.reset();
  std::error_code ignored;
  mSocket.close(ignored);
}

void SocketcandClient::Connection::StartTalking() {
  std::error_code ignored;
  mSocket.non_blocking(true, ignored);
  mSocket.set_option(tcp::no_delay(true), ignored);
  mSocket.set_option(asio::socket_base::keep_alive(true), ignored);
  mStage = Stage::Greeting;
  mStream = SocketcandStream();
  mRefusal.clear();
  mLastHeard = mLoop.Now();
}

void SocketcandClient::Connection::Read() {
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

void SocketcandClient::Connection::TakeMessages() {
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

void SocketcandClient::Connection::OnMessage(const std::vector<std::string_view>& words) {
  if (words.empty()) return;
  if (words[0] == "frame" && mStage == Stage::Running) {
    const auto frame = ReadFrame(words);
    if (frame) return mEvents->OnReceived(*frame, mLoop.Now());
    if (!std::exchange(mWasMalformed, true)) mEvents->OnTrouble(Name() + ": a malformed frame was skipped");
  } else if (words[0] == "hi" && mStage == Stage::Greeting) {
    mStage = Stage::Opening;
    Say("< open " + mInterface + " >");
  } else if (words[0] == "ok") {
    OnOk();
  } else if (words[0] == "echo") {
    mAnswersEcho = true;
  } else if (words[0] == "error") {
    OnError(words);
  }
}

void SocketcandClient::Connection::OnOk() {
  if (mStage == Stage::Opening) {
    mStage = Stage::Entering;
    Say("< rawmode >");
  } else if (mStage == Stage::Entering) {
    mStage = Stage::Running;
    OnRunning();
  }
}

void SocketcandClient::Connection::OnError(const std::vector<std::string_view>& words) {
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

void SocketcandClient::Connection::OnRunning() {
  mPause = kFirstPause;
  mIsAsking = mAnswersEcho = false;
  mAlarm->SetFor(mLoop.Now() + kSilence);
  if (mPrepared) {
    mIsHeld = true;
    return TellPrepared({});
  }
  if (mLostAt == Time::zero()) return;
  const std::string missed = mGivenUp == 0 ? "" : "; " + Frames(mGivenUp) + " could not be sent";
  mEvents->OnTrouble(Name() + ": connected again after " + Seconds(mLoop.Now() - mLostAt) + missed +
                     "; what others sent meanwhile was not seen");
  mLostAt = Time::zero();
  mGivenUp = 0;
}

// Commands are few and short: they find room in the buffers of the system, or the connection is stuck.
void SocketcandClient::Connection::Say(const std::string& command) {
  std::error_code error;
  asio::write(mSocket, asio::buffer(command), error);
}

void SocketcandClient::Connection::Send(const NSdk::CanFrame& frame) {
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

void SocketcandClient::Connection::GiveUp(const std::string& why) {
  if (!std::exchange(mIsFull, true)) mEvents->OnTrouble(Name() + " " + why + "; frames were given up");
}

void SocketcandClient::Connection::WaitUntilWritable() {
  mSocket.async_wait(tcp::socket::wait_write,
                     [self = shared_from_this(), attempt = mAttempt](const std::error_code& error) {
                       if (!self->mEvents || attempt != self->mAttempt || error) return;
                       self->WritePending();
                     });
}

// What one turn of the loop has sent leaves together, in pieces that fit into a packet: some servers close a
// connection when a read ends inside a command.
void SocketcandClient::Connection::WritePending() {
  const auto kept = shared_from_this();
  while (mEvents && mStage == Stage::Running && !mPending.empty()) {
    std::string piece;
    for (const Pending& pending : mPending) {
      if (!piece.empty() && piece.size() + pending.text.size() > kLargestPiece) break;
      piece += pending.text;
    }
    std::error_code error;
    const std::size_t size = mSocket.write_some(asio::buffer(piece), error);
    if (error == asio::error::would_block) return WaitUntilWritable();
    if (error) return Lose(error.message());
    TakeWritten(size);
  }
  if (mPending.empty()) mIsFull = false;
}

// What is told of a frame may send another, or close the connection.
void SocketcandClient::Connection::TakeWritten(std::size_t size) {
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

void SocketcandClient::Connection::Lose(const std::string& reason) {
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

void SocketcandClient::Connection::OnAlarm() {
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

void SocketcandClient::Connection::ConnectLater() {
  asio::async_connect(
      mSocket, mEndpoints,
      [self = shared_from_this(), attempt = mAttempt](const std::error_code& error, const tcp::endpoint&) {
        if (!self->mEvents || attempt != self->mAttempt) return;
        if (error) return self->Lose("no connection: " + error.message());
        self->StartTalking();
        self->Read();
      });
}

SocketcandClient::SocketcandClient(NRuntime::IoLoop& loop, HostAndPort server, std::string interfaceName)
    : mLoop(loop), mServer(std::move(server)), mInterface(std::move(interfaceName)) {}

SocketcandClient::~SocketcandClient() { Close(); }

void SocketcandClient::Prepare(Prepared done) {
  Close();
  mConnection = std::make_shared<Connection>(mLoop, mServer, mInterface, gNobody);
  mConnection->Prepare(std::move(done));
}

void SocketcandClient::Open(NRuntime::CanAdapterEvents& events) {
  if (mConnection && mConnection->IsPrepared()) return mConnection->Begin(events);
  Close();
  const auto connection = std::make_shared<Connection>(mLoop, mServer, mInterface, events);
  try {
    connection->ConnectAndWait();
  } catch (...) {
    connection->Close();
    throw;
  }
  mConnection = connection;
}

void SocketcandClient::Close() {
  if (mConnection) mConnection->Close();
  mConnection.reset();
}

void SocketcandClient::Send(const NSdk::CanFrame& frame) {
  // Kept: what is told of the frame may close this adapter.
  if (const auto connection = mConnection) connection->Send(frame);
}

}  // namespace NBuses
