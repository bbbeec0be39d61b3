#include "host/buses/socketcand_client.h"

#include <utility>

#include "host/buses/socketcand_connection.h"

namespace NBuses {
namespace {

// Hears a connection while it is prepared.
class Nobody final : public NRuntime::CanAdapterEvents {
  void OnReceived(const NSdk::CanFrame&, NRuntime::Time) override {}
  void OnSent(const NSdk::CanFrame&, NRuntime::Time) override {}
  void OnTrouble(const std::string&) override {}
};
Nobody gNobody;

}  // namespace

SocketcandClient::SocketcandClient(NRuntime::IoLoop& loop, HostAndPort server, std::string interfaceName)
    : mLoop(loop), mServer(std::move(server)), mInterface(std::move(interfaceName)) {}

SocketcandClient::~SocketcandClient() { Close(); }

void SocketcandClient::Prepare(Prepared done) {
  Close();
  mConnection = std::make_shared<SocketcandConnection>(mLoop, mServer, mInterface, gNobody);
  mConnection->Prepare(std::move(done));
}

void SocketcandClient::Open(NRuntime::CanAdapterEvents& events) {
  if (mConnection && mConnection->IsPrepared()) return mConnection->Begin(events);
  Close();
  const auto connection = std::make_shared<SocketcandConnection>(mLoop, mServer, mInterface, events);
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
