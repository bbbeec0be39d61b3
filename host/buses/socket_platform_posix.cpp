#include "host/buses/socket_platform.h"

#include <poll.h>

#include <algorithm>

namespace NBuses {

bool WaitForSocket(asio::ip::tcp::socket& socket, SocketWait what, std::chrono::milliseconds limit) {
  const short events = what == SocketWait::Readable ? POLLIN : POLLOUT;
  pollfd waiting = {socket.native_handle(), events, 0};
  return poll(&waiting, 1, static_cast<int>(std::max<long long>(0, limit.count()))) > 0;
}

// The system would keep the port for the connections that are not quite over yet.
void ShareWithThePast(asio::ip::tcp::acceptor& acceptor) {
  acceptor.set_option(asio::socket_base::reuse_address(true));
}

}  // namespace NBuses
