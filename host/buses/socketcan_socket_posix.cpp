#include "host/buses/socketcan_socket_posix.h"

#include <linux/can.h>
#include <linux/can/error.h>
#include <linux/can/raw.h>
#include <net/if.h>
#include <net/if_arp.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <stdexcept>

namespace NBuses {
namespace {

using namespace std::chrono_literals;

constexpr std::chrono::nanoseconds kOldest = 10s;  // an older frame means that the system's clock was set
constexpr int kReceiveBuffer = 4 * 1024 * 1024;

[[noreturn]] void Refuse(const std::string& reason) { throw std::runtime_error("socketcan: " + reason); }

std::string HowToBringUp(const std::string& interfaceName) {
  return interfaceName.rfind("vcan", 0) == 0 ? "ip link set " + interfaceName + " up"
                                             : "ip link set " + interfaceName + " up type can bitrate 500000";
}

std::string HowToMake(const std::string& interfaceName) {
  return interfaceName.rfind("vcan", 0) == 0
             ? "ip link add dev " + interfaceName + " type vcan && ip link set " + interfaceName + " up"
             : "connect it, then " + HowToBringUp(interfaceName);
}

ifreq RequestFor(const std::string& interfaceName) {
  ifreq request = {};
  std::memcpy(request.ifr_name, interfaceName.data(),
              std::min(interfaceName.size(), sizeof request.ifr_name - 1));
  return request;
}

// The index of an interface that is up.
int CheckInterface(int handle, const std::string& interfaceName) {
  ifreq request = RequestFor(interfaceName);
  if (ioctl(handle, SIOCGIFINDEX, &request) != 0) {
    Refuse("there is no interface " + interfaceName + "; " + HowToMake(interfaceName));
  }
  const int index = request.ifr_ifindex;
  request = RequestFor(interfaceName);
  if (ioctl(handle, SIOCGIFHWADDR, &request) == 0 && request.ifr_hwaddr.sa_family != ARPHRD_CAN) {
    Refuse(interfaceName + " is no CAN interface");
  }
  request = RequestFor(interfaceName);
  if (ioctl(handle, SIOCGIFFLAGS, &request) == 0 && (request.ifr_flags & IFF_UP) == 0) {
    Refuse(DownText(interfaceName));
  }
  return index;
}

template <class Value>
void Set(int handle, int level, int option, const Value& value) {
  setsockopt(handle, level, option, &value, sizeof value);
}

void Bind(int handle, const std::string& interfaceName) {
  sockaddr_can address = {};
  address.can_family = AF_CAN;
  address.can_ifindex = CheckInterface(handle, interfaceName);
  Set(handle, SOL_CAN_RAW, CAN_RAW_RECV_OWN_MSGS, 1);
  Set(handle, SOL_CAN_RAW, CAN_RAW_ERR_FILTER, can_err_mask_t{CAN_ERR_MASK});
  Set(handle, SOL_SOCKET, SO_TIMESTAMPNS, 1);
  Set(handle, SOL_SOCKET, SO_RXQ_OVFL, 1);
  // Beyond the system's limit only root gets it.
  Set(handle, SOL_SOCKET, SO_RCVBUF, kReceiveBuffer);
  Set(handle, SOL_SOCKET, SO_RCVBUFFORCE, kReceiveBuffer);
  if (bind(handle, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    Refuse(interfaceName + " cannot be used: " + std::strerror(errno));
  }
}

std::chrono::nanoseconds ToDuration(const timespec& time) {
  return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

std::chrono::nanoseconds AgeOf(const timespec& stamp) {
  timespec now = {};
  clock_gettime(CLOCK_REALTIME, &now);
  return std::clamp(ToDuration(now) - ToDuration(stamp), 0ns, kOldest);
}

NSdk::CanFrame FromSystem(const can_frame& read) {
  const bool extended = (read.can_id & CAN_EFF_FLAG) != 0, remote = (read.can_id & CAN_RTR_FLAG) != 0;
  const std::uint32_t size = std::min<std::uint32_t>(read.can_dlc, CAN_MAX_DLEN);
  NSdk::CanFrame frame;
  frame.identifier = read.can_id & (extended ? CAN_EFF_MASK : CAN_SFF_MASK);
  frame.flags = size | (extended ? NSdk::kFrameExtended : 0) | (remote ? NSdk::kFrameRemote : 0);
  if (!remote) std::memcpy(frame.data, read.data, size);
  return frame;
}

can_frame ToSystem(const NSdk::CanFrame& frame) {
  can_frame written = {};
  written.can_id = frame.identifier;
  if ((frame.flags & NSdk::kFrameExtended) != 0) written.can_id |= CAN_EFF_FLAG;
  if ((frame.flags & NSdk::kFrameRemote) != 0) written.can_id |= CAN_RTR_FLAG;
  written.can_dlc = static_cast<std::uint8_t>(frame.flags & NSdk::kFrameDlcMask);
  if ((frame.flags & NSdk::kFrameRemote) == 0) std::memcpy(written.data, frame.data, sizeof written.data);
  return written;
}

CanError ErrorOf(const can_frame& read) {
  CanError error;
  error.classes = read.can_id & CAN_ERR_MASK;
  std::copy(std::begin(read.data), std::end(read.data), error.data.begin());
  return error;
}

}  // namespace

std::string DownText(const std::string& interfaceName) {
  return interfaceName + " is down; " + HowToBringUp(interfaceName);
}

CanSocket::CanSocket(const std::string& interfaceName)
    : mHandle(socket(PF_CAN, SOCK_RAW | SOCK_NONBLOCK | SOCK_CLOEXEC, CAN_RAW)) {
  if (mHandle < 0 && (errno == EAFNOSUPPORT || errno == EPROTONOSUPPORT)) {
    Refuse("this system does not support CAN; modprobe can-raw, if its kernel has the module");
  }
  if (mHandle < 0) Refuse(std::strerror(errno));
  try {
    Bind(mHandle, interfaceName);
  } catch (...) {
    close(mHandle);
    throw;
  }
}

CanSocket::~CanSocket() { close(mHandle); }

CanSocket::Result CanSocket::Send(const NSdk::CanFrame& frame) const {
  const can_frame written = ToSystem(frame);
  if (write(mHandle, &written, sizeof written) == static_cast<ssize_t>(sizeof written)) return Result::Done;
  // The socket's own buffer is full, or the interface's queue.
  return errno == EAGAIN || errno == ENOBUFS ? Result::Busy : Result::Failed;
}

CanSocket::Result CanSocket::Receive(Received& received) {
  can_frame read = {};
  iovec place = {&read, sizeof read};
  alignas(cmsghdr) char control[256];
  msghdr message = {};
  message.msg_iov = &place;
  message.msg_iovlen = 1;
  message.msg_control = control;
  message.msg_controllen = sizeof control;
  const ssize_t size = recvmsg(mHandle, &message, 0);
  if (size < 0) return errno == EAGAIN ? Result::Busy : Result::Failed;
  received = {};
  received.isOwn = (message.msg_flags & MSG_CONFIRM) != 0;
  for (cmsghdr* part = CMSG_FIRSTHDR(&message); part; part = CMSG_NXTHDR(&message, part)) {
    if (part->cmsg_level != SOL_SOCKET) continue;
    if (part->cmsg_type == SO_TIMESTAMPNS) {
      timespec stamp = {};
      std::memcpy(&stamp, CMSG_DATA(part), sizeof stamp);
      received.age = AgeOf(stamp);
    } else if (part->cmsg_type == SO_RXQ_OVFL) {
      std::uint32_t lost = 0;
      std::memcpy(&lost, CMSG_DATA(part), sizeof lost);
      received.lost = lost - mLost;
      mLost = lost;
    }
  }
  if ((read.can_id & CAN_ERR_FLAG) != 0) {
    received.error = ErrorOf(read);
  } else {
    received.frame = FromSystem(read);
  }
  return Result::Done;
}

}  // namespace NBuses
