#include "host/buses/socketcand_server.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include "host/buses/socket_platform.h"

namespace NBuses {
namespace {

using namespace std::chrono_literals;
using asio::ip::tcp;

constexpr std::size_t kMostClients = 256;
constexpr std::size_t kMostUnconfirmed = 65536;  // frames of clients on their way to a bus

bool IsSame(const NSdk::CanFrame& one, const NSdk::CanFrame& other) {
  return std::memcmp(&one, &other, sizeof one) == 0;
}

}  // namespace

// Knows which client a frame came from until the bus says that it was sent.
class SocketcandServer::Bus final : public NRuntime::CanAdapterEvents {
 public:
  Bus(SocketcandServer& server, std::size_t position, ServedBus served)
      : mServer(server), mPosition(position), mServed(std::move(served)) {}
  ~Bus() override { mServed.adapter->Close(); }

  const std::string& Name() const { return mServed.names.front(); }
  bool Has(std::string_view name) const {
    return std::find(mServed.names.begin(), mServed.names.end(), name) != mServed.names.end();
  }

  void Open() { mServed.adapter->Open(*this); }
  void Send(const SocketcandSession& sender, const NSdk::CanFrame& frame) {
    if (mOnTheirWay.size() >= kMostUnconfirmed) mOnTheirWay.pop_front();
    mOnTheirWay.push_back({&sender, frame});
    mServed.adapter->Send(frame);
  }
  void Forget(const SocketcandSession& session) {
    for (OnItsWay& frame : mOnTheirWay) {
      if (frame.sender == &session) frame.sender = nullptr;
    }
  }

 private:
  struct OnItsWay {
    const SocketcandSession* sender;  // null: gone
    NSdk::CanFrame frame;
  };

  void OnReceived(const NSdk::CanFrame& frame, NRuntime::Time time) override {
    mServer.Broadcast(mPosition, frame, time, nullptr);
  }
  // In the order of sending; those before it were given up.
  void OnSent(const NSdk::CanFrame& frame, NRuntime::Time time) override {
    const auto found = std::find_if(mOnTheirWay.begin(), mOnTheirWay.end(),
                                    [&](const OnItsWay& other) { return IsSame(other.frame, frame); });
    const SocketcandSession* sender = nullptr;
    if (found != mOnTheirWay.end()) {
      sender = found->sender;
      mOnTheirWay.erase(mOnTheirWay.begin(), found + 1);
    }
    mServer.Broadcast(mPosition, frame, time, sender);
  }
  void OnTrouble(const std::string& text) override { mServer.mEvents.trouble(Name() + ": " + text); }
  void OnEnd() override { mServer.mEvents.note(Name() + ": the log has ended"); }

  SocketcandServer& mServer;
  const std::size_t mPosition;
  ServedBus mServed;
  std::deque<OnItsWay> mOnTheirWay;
};

SocketcandServer::SocketcandServer(NRuntime::IoLoop& loop, std::vector<ServedBus> buses,
                                   SocketcandServerEvents events)
    : mLoop(loop),
      mEvents(std::move(events)),
      mAcceptor(loop.Executor()),
      mAcceptAgain(loop.MakeAlarm([this] { Accept(); })) {
  for (ServedBus& bus : buses) mBuses.push_back(std::make_unique<Bus>(*this, mBuses.size(), std::move(bus)));
}

SocketcandServer::~SocketcandServer() {
  *mIsAlive = false;
  std::error_code ignored;
  mAcceptor.close(ignored);
  for (const auto& session : mSessions) session->Close();
}

void SocketcandServer::Start(const HostAndPort& address) {
  Listen(address);
  for (const auto& bus : mBuses) bus->Open();
  Accept();
}

void SocketcandServer::Listen(const HostAndPort& address) {
  std::error_code error;
  tcp::resolver resolver(mLoop.Executor());
  const auto found =
      resolver.resolve(address.host, std::to_string(address.port), tcp::resolver::passive, error);
  if (!error) {
    const tcp::endpoint endpoint = found.begin()->endpoint();
    mAcceptor.open(endpoint.protocol(), error);
    if (!error) ShareWithThePast(mAcceptor);
    if (!error) mAcceptor.bind(endpoint, error);
    if (!error) mAcceptor.listen(tcp::acceptor::max_listen_connections, error);
  }
  if (error) {
    throw std::runtime_error("cannot listen on " + HostAndPortText(address.host, address.port) + ": " +
                             error.message());
  }
}

std::string SocketcandServer::Address() const {
  const tcp::endpoint endpoint = mAcceptor.local_endpoint();
  return HostAndPortText(endpoint.address().to_string(), endpoint.port());
}

// When the system has no more sockets to give, others may become free.
void SocketcandServer::Accept() {
  mAcceptor.async_accept([this, alive = mIsAlive](const std::error_code& error, tcp::socket socket) {
    if (!*alive) return;
    if (error) {
      mAcceptAgain->SetFor(mLoop.Now() + 100ms);
      return;
    }
    OnAccepted(std::move(socket));
    Accept();
  });
}

void SocketcandServer::OnAccepted(tcp::socket socket) {
  SocketcandSessions& server = *this;
  const auto session = std::make_shared<SocketcandSession>(mLoop, std::move(socket), server);
  if (mSessions.size() >= kMostClients) {
    mEvents.trouble("client " + session->Name() + " was turned away: there are " +
                    std::to_string(kMostClients) + " already");
    return session->Refuse("too many clients");
  }
  mSessions.push_back(session);
  session->Start();
}

// Remote frames have no form in the protocol.
void SocketcandServer::Broadcast(std::size_t bus, const NSdk::CanFrame& frame, NRuntime::Time time,
                                 const SocketcandSession* sender) {
  if (mSessions.empty() || (frame.flags & NSdk::kFrameRemote) != 0) return;
  const auto age = mLoop.Now() - time;
  const std::string message = FrameMessage(frame, std::chrono::duration_cast<std::chrono::nanoseconds>(
                                                      std::chrono::system_clock::now().time_since_epoch()) -
                                                      age);
  // By position from the end: one that does not keep up leaves the list.
  for (std::size_t position = mSessions.size(); position-- > 0;) {
    const auto session = mSessions[position];
    if (session.get() != sender && session->HasJoined() && session->Bus() == bus) session->Deliver(message);
  }
}

bool SocketcandServer::FindBus(std::string_view name, std::size_t& position) const {
  const auto found =
      std::find_if(mBuses.begin(), mBuses.end(), [&](const auto& bus) { return bus->Has(name); });
  if (found == mBuses.end()) return false;
  position = static_cast<std::size_t>(found - mBuses.begin());
  return true;
}

void SocketcandServer::OnJoined(SocketcandSession& session) {
  mEvents.note("client " + session.Name() + " opens " + mBuses[session.Bus()]->Name());
}

void SocketcandServer::OnFrame(SocketcandSession& session, const NSdk::CanFrame& frame) {
  mBuses[session.Bus()]->Send(session, frame);
}

void SocketcandServer::OnGone(SocketcandSession& session, const std::string& fault) {
  for (const auto& bus : mBuses) bus->Forget(session);
  std::erase_if(mSessions, [&](const auto& other) { return other.get() == &session; });
  if (!fault.empty()) return mEvents.trouble("client " + session.Name() + " was cut off: " + fault);
  if (session.HasJoined()) mEvents.note("client " + session.Name() + " has left");
}

}  // namespace NBuses
