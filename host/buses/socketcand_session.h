#pragma once

#include <asio/ip/tcp.hpp>

#include <array>
#include <memory>
#include <string>

#include "host/buses/socketcand_text.h"
#include "host/runtime/io_loop.h"

namespace NBuses {

class SocketcandSession;

/// What a session needs of the server that it belongs to.
class SocketcandSessions {
 public:
  virtual ~SocketcandSessions() = default;
  /// False: there is no bus of this name.
  virtual bool FindBus(std::string_view name, std::size_t& position) const = 0;
  /// The client has opened a bus and gets its frames from now on.
  virtual void OnJoined(SocketcandSession& session) = 0;
  virtual void OnFrame(SocketcandSession& session, const NSdk::CanFrame& frame) = 0;
  /// The session has ended. `fault` is empty when the client has left by itself.
  virtual void OnGone(SocketcandSession& session, const std::string& fault) = 0;
};

/// One client of a socketcand server, from `< hi >` to its end. What it sends is hostile; what is written to
/// it piles up to a limit, and then it is cut off.
class SocketcandSession : public std::enable_shared_from_this<SocketcandSession> {
 public:
  SocketcandSession(NRuntime::IoLoop& loop, asio::ip::tcp::socket socket, SocketcandSessions& server);

  void Start();
  /// Ends it with a message to the client; OnGone is not called.
  void Refuse(const std::string& message);
  void Close();

  /// Queues a message for a client that has joined.
  void Deliver(const std::string& message);

  bool HasJoined() const { return mHasJoined; }
  std::size_t Bus() const { return mBus; }
  const std::string& Name() const { return mName; }

 private:
  enum class Stage { Greeted, Opened, Raw, Ending, Gone };

  void Read();
  void TakeMessages();
  void OnMessage(const std::vector<std::string_view>& words);
  void OnOpen(std::string_view bus);
  void OnRawMode();
  void Write(std::string_view message);
  void FlushSoon();
  void Flush();
  void EndWithMessage(const std::string& message, const std::string& fault);
  void EndWhenWritten();
  void End();
  void OnAlarm();

  NRuntime::IoLoop& mLoop;
  asio::ip::tcp::socket mSocket;
  SocketcandSessions* mServer;  // null: it is not told any more
  const std::string mName;
  const std::unique_ptr<NRuntime::Alarm> mAlarm;
  Stage mStage = Stage::Greeted;
  std::size_t mBus = 0;
  std::string mFault;  // for which the session is ended
  SocketcandStream mStream;
  std::array<char, 4096> mBuffer = {};
  std::string mWaiting;  // to be written
  std::string mWriting;
  bool mHasJoined = false;
  bool mIsHeldBack = false;
  bool mIsFlushPosted = false;
  bool mIsWriting = false;
};

}  // namespace NBuses
