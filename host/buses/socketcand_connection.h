#pragma once

#include <asio/ip/tcp.hpp>

#include <array>
#include <chrono>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/buses/can_error.h"
#include "host/buses/socketcand_text.h"
#include "host/runtime/can_adapter.h"
#include "host/runtime/io_loop.h"

namespace NBuses {

/// One client's way to an interface of a socketcand server: it connects, opens the interface in raw mode, and
/// makes a connection that is lost again. What waits for the network shares it, and finds it closed, not
/// gone.
class SocketcandConnection final : public std::enable_shared_from_this<SocketcandConnection> {
 public:
  using Prepared = NRuntime::CanAdapter::Prepared;

  SocketcandConnection(NRuntime::IoLoop& loop, HostAndPort server, std::string interfaceName,
                       NRuntime::CanAdapterEvents& events);

  /// Makes the first connection while the caller waits. Throws std::runtime_error in words for the user.
  void ConnectAndWait();
  /// Makes it in the background; `done` as CanAdapter::Prepare() has it. What comes then waits for Begin().
  void Prepare(Prepared done);
  bool IsPrepared() const { return mIsHeld; }
  void Begin(NRuntime::CanAdapterEvents& events);
  /// For good. What was sent before still leaves, as far as the system takes it at once.
  void Close();
  void Send(const NSdk::CanFrame& frame);

 private:
  enum class Stage { Lost, Connecting, Greeting, Opening, Entering, Running };
  struct Pending {
    NSdk::CanFrame frame;
    std::string text;  // what of it is not yet written
  };

  static constexpr std::chrono::seconds kTimeToConnect{5};
  static constexpr std::chrono::milliseconds kFirstPause{250};  // between attempts
  static constexpr std::chrono::seconds kSilence{5};  // then the server is asked whether it is still there

  std::string Name() const { return "socketcand " + HostAndPortText(mServer.host, mServer.port); }

  // Joining (socketcand_joining.cpp).
  [[noreturn]] void Refuse(const std::string& reason) const;
  void ConnectWithin(std::chrono::steady_clock::time_point end);
  void GreetWithin(std::chrono::steady_clock::time_point end);
  void ReadLater();
  void ConnectLater();
  void TellPrepared(const std::string& fault);
  void StartTalking();
  void OnGreeting();
  void OnOk();
  void OnRunning();

  // The way of messages and frames.
  void Read();
  void TakeMessages();
  void OnMessage(const std::vector<std::string_view>& words);
  void OnError(const std::vector<std::string_view>& words);
  void Say(const std::string& command);
  void WaitUntilWritable();
  std::string NextPiece() const;
  void WritePending();
  void WriteRest();
  void TakeWritten(std::size_t size);
  void Lose(const std::string& reason);
  void OnAlarm();
  void GiveUp(const std::string& why);

  NRuntime::IoLoop& mLoop;
  const HostAndPort mServer;
  const std::string mInterface;
  NRuntime::CanAdapterEvents* mEvents;  // null: closed
  asio::ip::tcp::socket mSocket;
  asio::ip::tcp::resolver mResolver;
  asio::ip::tcp::resolver::results_type mEndpoints;
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
  NRuntime::Time mLostAt{};
  NRuntime::Time mPause = kFirstPause;
  NRuntime::Time mLastHeard{};
  bool mIsAsking = false;      // an echo is on its way
  bool mAnswersEcho = false;   // as not every server does
  bool mWasMalformed = false;  // told once
  bool mWasRemote = false;     // told once
  bool mIsFull = false;        // told, until the queue is empty again
  std::uint64_t mGivenUp = 0;  // frames, since the connection was lost
};

}  // namespace NBuses
