#include "host/buses/socketcand_session.h"

#include <asio/write.hpp>

#include <utility>

namespace NBuses {
namespace {

using namespace std::chrono_literals;

constexpr NRuntime::Time kTimeToOpen = 60s, kTimeToEnd = 1s;
// A client in wide use takes whatever comes in one read with an `< ok >` for the reply.
constexpr NRuntime::Time kHoldBack = 20ms;
constexpr std::size_t kLargestOutput = std::size_t{4} * 1024 * 1024;  // a second of 50 000 frames takes 3 MB

std::string PeerName(const asio::ip::tcp::socket& socket) {
  std::error_code error;
  const auto peer = socket.remote_endpoint(error);
  return error ? "unknown" : HostAndPortText(peer.address().to_string(), peer.port());
}

}  // namespace

SocketcandSession::SocketcandSession(NRuntime::IoLoop& loop, asio::ip::tcp::socket socket,
                                     SocketcandSessions& server)
    : mLoop(loop),
      mSocket(std::move(socket)),
      mServer(&server),
      mName(PeerName(mSocket)),
      mAlarm(loop.MakeAlarm([this] { OnAlarm(); })) {
  std::error_code ignored;
  mSocket.non_blocking(true, ignored);
  mSocket.set_option(asio::ip::tcp::no_delay(true), ignored);
  mSocket.set_option(asio::socket_base::keep_alive(true), ignored);
}

void SocketcandSession::Start() {
  mAlarm->SetFor(mLoop.Now() + kTimeToOpen);
  Write("< hi >");
  Read();
}

void SocketcandSession::OnAlarm() {
  if (mStage == Stage::Ending) return End();
  if (mStage != Stage::Raw) return EndWithMessage("no bus was opened", "it does not open a bus");
  mIsHeldBack = false;
  Flush();
}

void SocketcandSession::Read() {
  mSocket.async_read_some(asio::buffer(mBuffer),
                          [self = shared_from_this()](const std::error_code& error, std::size_t size) {
                            if (self->mStage == Stage::Gone) return;
                            if (error) return self->End();
                            self->mStream.Add({self->mBuffer.data(), size});
                            self->TakeMessages();
                            if (self->mStage != Stage::Gone) self->Read();
                          });
}

// What still comes while the session ends is read and dropped.
void SocketcandSession::TakeMessages() {
  while (mStage < Stage::Ending) {
    const auto words = mStream.Next();
    if (!words) break;
    OnMessage(*words);
  }
  if (mStage >= Stage::Ending) {
    mStream = SocketcandStream();
  } else if (mStream.IsTooLong()) {
    EndWithMessage("command too long", "a command is too long");
  }
}

void SocketcandSession::OnMessage(const std::vector<std::string_view>& words) {
  const std::string_view command = words.empty() ? std::string_view() : words[0];
  if (command == "send" && mStage == Stage::Raw) {
    // A malformed one is dropped, as other servers do.
    if (const auto frame = ReadSend(words)) mServer->OnFrame(*this, *frame);
  } else if (command == "open" && words.size() == 2 && mStage == Stage::Greeted) {
    OnOpen(words[1]);
  } else if (command == "rawmode" && mStage == Stage::Opened) {
    OnRawMode();
  } else if (command == "echo") {
    Write("< echo >");
  } else {
    Write("< error unknown command >");
  }
}

void SocketcandSession::OnOpen(std::string_view bus) {
  if (!mServer->FindBus(bus, mBus)) return EndWithMessage("could not open bus", "there is no such bus");
  mStage = Stage::Opened;
  Write("< ok >");
}

void SocketcandSession::OnRawMode() {
  Write("< ok >");
  if (mStage == Stage::Gone) return;
  Flush();
  mStage = Stage::Raw;
  mHasJoined = true;
  mIsHeldBack = true;
  mAlarm->SetFor(mLoop.Now() + kHoldBack);
  mServer->OnJoined(*this);
}

void SocketcandSession::Deliver(const std::string& message) {
  if (mStage == Stage::Raw) Write(message);
}

// Messages of one turn of the loop leave together.
void SocketcandSession::Write(std::string_view message) {
  if (mStage >= Stage::Ending) return;
  if (mWaiting.size() + mWriting.size() + message.size() > kLargestOutput) {
    mFault = "it does not keep up";
    return End();
  }
  mWaiting.append(message);
  FlushSoon();
}

void SocketcandSession::FlushSoon() {
  if (mIsHeldBack || mIsWriting || std::exchange(mIsFlushPosted, true)) return;
  mLoop.Post([self = shared_from_this()] {
    self->mIsFlushPosted = false;
    self->Flush();
  });
}

void SocketcandSession::Flush() {
  if (mStage == Stage::Gone || mIsHeldBack || mIsWriting || mWaiting.empty()) return;
  mIsWriting = true;
  std::swap(mWaiting, mWriting);
  asio::async_write(mSocket, asio::buffer(mWriting),
                    [self = shared_from_this()](const std::error_code& error, std::size_t) {
                      self->mIsWriting = false;
                      self->mWriting.clear();
                      if (self->mStage == Stage::Gone) return;
                      if (error) return self->End();
                      self->FlushSoon();
                      self->EndWhenWritten();
                    });
}

void SocketcandSession::Refuse(const std::string& message) {
  mServer = nullptr;
  Read();
  EndWithMessage(message, {});
}

// The client is left time to read the message: closed at once, the connection could be reset before it has.
void SocketcandSession::EndWithMessage(const std::string& message, const std::string& fault) {
  Write("< error " + message + " >");
  if (mStage == Stage::Gone) return;
  mStage = Stage::Ending;
  mFault = fault;
  mIsHeldBack = false;
  mAlarm->SetFor(mLoop.Now() + kTimeToEnd);
  Flush();
}

void SocketcandSession::EndWhenWritten() {
  std::error_code ignored;
  if (mStage == Stage::Ending && mWaiting.empty())
    mSocket.shutdown(asio::ip::tcp::socket::shutdown_send, ignored);
}

void SocketcandSession::End() {
  if (mStage == Stage::Gone) return;
  const auto kept = shared_from_this();
  Close();
  if (mServer) mServer->OnGone(*this, mFault);
}

void SocketcandSession::Close() {
  mStage = Stage::Gone;
  mAlarm->Cancel();
  std::error_code ignored;
  mSocket.close(ignored);
}

}  // namespace NBuses
