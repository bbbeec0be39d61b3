#include "host/buses/socketcand_session.h"

#include <asio/write.hpp>

#include <utility>

namespace NBuses {
namespace {

using namespace std::chrono_literals;

constexpr NRuntime::Time kTimeToOpen = 60s;
// A client in wide use takes whatever comes in one read with an `< ok >` for the reply.
constexpr NRuntime::Time kHoldBack = 20ms;
constexpr std::size_t kLargestOutput = 4 * 1024 * 1024;  // a second of 50 000 frames takes 3 MB

std::string PeerName(const asio::ip::tcp::socket& socket) {
  std::error_code error;
  const auto peer = socket.remote_endpoint(error);
  return error ? "unknown" : HostAndPortText(peer.address().to_string(), peer.port());
}

}  // namespace

SocketcandSession::SocketcandSession(NRuntime::AsioLoop& loop, asio::ip::tcp::socket socket,
                                     SocketcandSessions& server)
    : mLoop(loop),
      mSocket(std::move(socket)),
      mServer(&server),
      mName(PeerName(mSocket)),
      mAlarm(loop.MakeAlarm([this] {
        if (mStage != Stage::Raw) return EndWithMessage("no bus was opened", "it does not open a bus");
        mIsHeldBack = false;
        Flush();
      })) {
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

void SocketcandSession::Read() {
  mSocket.async_read_some(asio::buffer(mBuffer),
                          [self = shared_from_this()](const std::error_code& error, std::size_t size) {
                            if (self->mStage == Stage::Gone) return;
                            if (error) return self->End({});
                            self->mStream.Add({self->mBuffer.data(), size});
                            self->TakeMessages();
                            if (self->mStage != Stage::Gone) self->Read();
                          });
}

void SocketcandSession::TakeMessages() {
  while (mStage != Stage::Gone) {
    const auto words = mStream.Next();
    if (!words) break;
    OnMessage(*words);
  }
  if (mStage != Stage::Gone && mStream.IsTooLong()) {
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
  if (mStage == Stage::Gone) return;
  if (mWaiting.size() + mWriting.size() + message.size() > kLargestOutput) {
    return End("it does not keep up");
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
                      if (error) return self->End({});
                      self->Flush();
                    });
}

void SocketcandSession::Refuse(const std::string& message) {
  mServer = nullptr;
  EndWithMessage(message, {});
}

void SocketcandSession::EndWithMessage(const std::string& message, const std::string& fault) {
  const auto kept = shared_from_this();
  std::error_code ignored;
  if (!mIsWriting) mSocket.write_some(asio::buffer(mWaiting + "< error " + message + " >"), ignored);
  mSocket.shutdown(asio::ip::tcp::socket::shutdown_send, ignored);
  End(fault);
}

void SocketcandSession::End(const std::string& fault) {
  if (mStage == Stage::Gone) return;
  const auto kept = shared_from_this();
  Close();
  if (mServer) mServer->OnGone(*this, fault);
}

void SocketcandSession::Close() {
  mStage = Stage::Gone;
  mAlarm->Cancel();
  std::error_code ignored;
  mSocket.close(ignored);
}

}  // namespace NBuses
