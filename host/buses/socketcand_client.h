#pragma once

#include <memory>
#include <string>

#include "host/buses/socketcand_text.h"
#include "host/runtime/can_adapter.h"
#include "host/runtime/io_loop.h"

namespace NBuses {

class SocketcandConnection;

/// A CAN interface of another machine, reached over TCP in the raw mode of socketcand.
///
/// The first connection is made while the caller waits, unless it has been prepared, so that what is wrong
/// with the address is known at once; one that is lost later is made again and again in the background. A
/// frame counts as sent when it has been handed to the connection: the protocol has no confirmation. Nor has
/// it remote frames.
class SocketcandClient final : public NRuntime::CanAdapter {
 public:
  SocketcandClient(NRuntime::IoLoop& loop, HostAndPort server, std::string interfaceName);
  ~SocketcandClient() override;

  void Prepare(Prepared done) override;
  void Open(NRuntime::CanAdapterEvents& events) override;
  void Close() override;
  void Send(const NSdk::CanFrame& frame) override;

 private:
  NRuntime::IoLoop& mLoop;
  const HostAndPort mServer;
  const std::string mInterface;
  std::shared_ptr<SocketcandConnection> mConnection;  // shared with what waits; null: closed
};

}  // namespace NBuses
