// How a connection to a socketcand server comes about: the address, the greeting, the interface.
#include "host/buses/socketcand_connection.h"

#include <asio/connect.hpp>

#include <cstdio>
#include <stdexcept>
#include <utility>

#include "host/buses/socket_platform.h"

namespace NBuses {
namespace {

using asio::ip::tcp;
using NRuntime::Time;

std::string Seconds(Time time) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f s", std::chrono::duration<double>(time).count());
  return text;
}

std::string Frames(std::uint64_t count) {
  return std::to_string(count) + (count == 1 ? " frame" : " frames");
}

}  // namespace

void SocketcandConnection::Refuse(const std::string& reason) const {
  throw std::runtime_error(Name() + ": " + reason);
}

void SocketcandConnection::ConnectAndWait() {
  const auto end = std::chrono::steady_clock::now() + kTimeToConnect;
  std::error_code error;
  mEndpoints = mResolver.resolve(mServer.host, std::to_string(mServer.port), error);
  if (error) Refuse("the name cannot be resolved: " + error.message());
  ConnectWithin(end);
  GreetWithin(end);
  ReadLater();
}

// What came behind the greeting waits until the caller is ready.
void SocketcandConnection::ReadLater() {
  mLoop.Post([self = shared_from_this()] {
    if (!self->mEvents) return;
    self->TakeMessages();
    self->Read();
  });
}

// While the name is resolved the system cannot be stopped: `done` stays with it.
void SocketcandConnection::Prepare(Prepared done) {
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

void SocketcandConnection::TellPrepared(const std::string& fault) {
  const auto words = fault.empty() ? fault : Name() + ": " + fault;
  mLoop.Post([done = std::exchange(mPrepared, nullptr), words] { done(words); });
}

void SocketcandConnection::Begin(NRuntime::CanAdapterEvents& events) {
  mEvents = &events;
  mIsHeld = false;
  ReadLater();
}

void SocketcandConnection::ConnectWithin(std::chrono::steady_clock::time_point end) {
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

void SocketcandConnection::GreetWithin(std::chrono::steady_clock::time_point end) {
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

void SocketcandConnection::StartTalking() {
  std::error_code ignored;
  mSocket.non_blocking(true, ignored);
  mSocket.set_option(tcp::no_delay(true), ignored);
  mSocket.set_option(asio::socket_base::keep_alive(true), ignored);
  mStage = Stage::Greeting;
  mStream = SocketcandStream();
  mRefusal.clear();
  mLastHeard = mLoop.Now();
}

void SocketcandConnection::ConnectLater() {
  asio::async_connect(
      mSocket, mEndpoints,
      [self = shared_from_this(), attempt = mAttempt](const std::error_code& error, const tcp::endpoint&) {
        if (!self->mEvents || attempt != self->mAttempt) return;
        if (error) return self->Lose("no connection: " + error.message());
        self->StartTalking();
        self->Read();
      });
}

void SocketcandConnection::OnGreeting() {
  mStage = Stage::Opening;
  Say("< open " + mInterface + " >");
}

void SocketcandConnection::OnOk() {
  if (mStage == Stage::Opening) {
    mStage = Stage::Entering;
    Say("< rawmode >");
  } else if (mStage == Stage::Entering) {
    mStage = Stage::Running;
    OnRunning();
  }
}

void SocketcandConnection::OnRunning() {
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

}  // namespace NBuses
