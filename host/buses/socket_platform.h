#pragma once
// What sockets do in another way on each platform; one source file for each.

#include <asio/ip/tcp.hpp>

#include <chrono>

namespace NBuses {

enum class SocketWait { Readable, Writable };

/// Holds up the thread until the socket is ready or has failed. False: the time is over. asio knows no limit
/// for what is not asynchronous.
bool WaitForSocket(asio::ip::tcp::socket& socket, SocketWait what, std::chrono::milliseconds limit);

/// A server that has just ended may be started again at once, while one that still runs keeps its port.
void ShareWithThePast(asio::ip::tcp::acceptor& acceptor);

}  // namespace NBuses
