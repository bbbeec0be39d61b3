#include "host/buses/socket_platform.h"

#include <algorithm>

namespace NBuses {

bool WaitForSocket(asio::ip::tcp::socket& socket, SocketWait what, std::chrono::milliseconds limit) {
  const long long count = std::max<long long>(0, limit.count());
  timeval time = {static_cast<long>(count / 1000), static_cast<long>(count % 1000 * 1000)};
  fd_set ready, failed;
  FD_ZERO(&ready);
  FD_ZERO(&failed);
  FD_SET(socket.native_handle(), &ready);
  FD_SET(socket.native_handle(), &failed);  // where Windows reports a connection that is refused
  fd_set* const readable = what == SocketWait::Readable ? &ready : nullptr;
  fd_set* const writable = what == SocketWait::Writable ? &ready : nullptr;
  return select(0, readable, writable, &failed, &time) > 0;
}

// There the option that is wanted elsewhere would give the port away, and another one keeps it.
void ShareWithThePast(asio::ip::tcp::acceptor& acceptor) {
  const BOOL on = TRUE;
  setsockopt(acceptor.native_handle(), SOL_SOCKET, SO_EXCLUSIVEADDRUSE, reinterpret_cast<const char*>(&on),
             sizeof on);
}

}  // namespace NBuses
