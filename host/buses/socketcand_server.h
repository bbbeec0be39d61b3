#pragma once

#include <asio/ip/tcp.hpp>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/buses/socketcand_session.h"
#include "host/runtime/can_adapter.h"
#include "host/runtime/io_loop.h"

namespace NBuses {

/// A bus that clients can open.
struct ServedBus {
  std::vector<std::string>
      names;  ///< the first one is its own; what it shares with an earlier bus is that one's
  std::unique_ptr<NRuntime::CanAdapter> adapter;
};

struct SocketcandServerEvents {
  std::function<void(const std::string&)> note;     ///< a client came or went
  std::function<void(const std::string&)> trouble;  ///< something is wrong with a bus or the network
};

/// Serves buses in the raw mode of socketcand to any number of clients. A client hears what others send, not
/// its own frames. One that does not keep up is cut off; the buses never wait for it.
class SocketcandServer final : private SocketcandSessions {
 public:
  SocketcandServer(NRuntime::IoLoop& loop, std::vector<ServedBus> buses, SocketcandServerEvents events);
  ~SocketcandServer() override;
  SocketcandServer(const SocketcandServer&) = delete;
  SocketcandServer& operator=(const SocketcandServer&) = delete;

  /// Opens the buses and listens; port 0 means any. Throws std::runtime_error, one line that names what
  /// cannot be opened.
  void Start(const HostAndPort& address);
  /// Where it listens, `127.0.0.1:29536`.
  std::string Address() const;

 private:
  class Bus;

  void Listen(const HostAndPort& address);
  void Accept();
  void OnAccepted(asio::ip::tcp::socket socket);
  void Broadcast(std::size_t bus, const NSdk::CanFrame& frame, NRuntime::Time time,
                 const SocketcandSession* sender);

  bool FindBus(std::string_view name, std::size_t& position) const override;
  void OnJoined(SocketcandSession& session) override;
  void OnFrame(SocketcandSession& session, const NSdk::CanFrame& frame) override;
  void OnGone(SocketcandSession& session, const std::string& fault) override;

  NRuntime::IoLoop& mLoop;
  SocketcandServerEvents mEvents;
  std::vector<std::unique_ptr<Bus>> mBuses;
  std::vector<std::shared_ptr<SocketcandSession>> mSessions;
  std::shared_ptr<bool> mIsAlive = std::make_shared<bool>(true);  // for what waits for the network
  asio::ip::tcp::acceptor mAcceptor;
  std::unique_ptr<NRuntime::Alarm> mAcceptAgain;
};

}  // namespace NBuses
