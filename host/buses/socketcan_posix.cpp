#include "host/buses/socketcan.h"

#include <asio/posix/stream_descriptor.hpp>

#include <cerrno>
#include <cstring>
#include <deque>
#include <stdexcept>
#include <utility>

#include "host/buses/socketcan_socket_posix.h"

namespace NBuses {
namespace {

using namespace std::chrono_literals;
using NRuntime::Time;

constexpr Time kRetry = 1ms;                // of a frame that the interface could not take
constexpr Time kLook = 250ms;               // whether an interface that is down has come back
constexpr std::size_t kMostWaiting = 2000;  // frames; a quarter of a second of a full bus at 1 Mbit/s
constexpr int kFramesAtOnce = 512;          // then the loop gets its turn
constexpr std::uint32_t kBusOffClass = 0x40;

std::string Frames(std::uint64_t count) {
  return std::to_string(count) + (count == 1 ? " frame" : " frames");
}

// What waits for the socket holds it too, and finds it closed, not gone.
class Interface : public std::enable_shared_from_this<Interface> {
 public:
  Interface(NRuntime::IoLoop& loop, std::string name, NRuntime::CanAdapterEvents& events)
      : mLoop(loop),
        mName(std::move(name)),
        mEvents(&events),
        mRetry(loop.MakeAlarm([this] { SendWaiting(); })),
        mLook(loop.MakeAlarm([this] { LookForReturn(); })) {}

  void Open();
  void Close();
  void Send(const NSdk::CanFrame& frame);

 private:
  void Wait();
  void Receive();
  void Tell(const CanSocket::Received& received);
  bool SendNow(const NSdk::CanFrame& frame);
  void SendWaiting();
  void Lose(int error);
  void LookForReturn();

  NRuntime::IoLoop& mLoop;
  const std::string mName;
  NRuntime::CanAdapterEvents* mEvents;  // null: closed
  std::unique_ptr<CanSocket> mSocket;   // null: the interface is down
  // Watches the socket's handle, which it does not own.
  std::optional<asio::posix::stream_descriptor> mDescriptor;
  std::uint64_t mOpening = 0;  // tells what comes from an older socket
  std::deque<NSdk::CanFrame> mWaiting;
  std::unique_ptr<NRuntime::Alarm> mRetry, mLook;
  CanErrorFilter mErrors;
  std::uint64_t mGivenUp = 0;  // frames, since the queue was full or the interface went down
  std::string mLastFault;      // of sending, told once
};

void Interface::Open() {
  mSocket = std::make_unique<CanSocket>(mName);
  mDescriptor.emplace(mLoop.Executor(), mSocket->Handle());
  ++mOpening;
  Wait();
}

void Interface::Close() {
  mEvents = nullptr;
  ++mOpening;
  if (mDescriptor) mDescriptor->release();
  mDescriptor.reset();
  mSocket.reset();
  mWaiting.clear();
  mRetry->Cancel();
  mLook->Cancel();
}

void Interface::Wait() {
  mDescriptor->async_wait(asio::posix::stream_descriptor::wait_read,
                          [self = shared_from_this(), opening = mOpening](const std::error_code& error) {
                            if (!error && opening == self->mOpening) self->Receive();
                          });
}

// Whoever hears of a frame may close the adapter.
void Interface::Receive() {
  const std::uint64_t opening = mOpening;
  CanSocket::Received received;
  for (int count = 0; count < kFramesAtOnce; ++count) {
    const CanSocket::Result result = mSocket->Receive(received);
    if (result == CanSocket::Result::Failed) return Lose(errno);
    if (result == CanSocket::Result::Busy) break;
    Tell(received);
    if (opening != mOpening) return;
  }
  Wait();
}

void Interface::Tell(const CanSocket::Received& received) {
  const Time time = mLoop.Now() - received.age;
  if (received.lost != 0) {
    mEvents->OnTrouble(mName + ": " + Frames(received.lost) + " lost; more came than were read");
    if (!mEvents) return;
  }
  if (received.error) {
    const auto text = mErrors.Tell(*received.error, mLoop.Now());
    const bool isBusOff = (received.error->classes & kBusOffClass) != 0;
    const std::string remedy = "; ip link set " + mName + " type can restart-ms 100 lets it come back";
    if (text) mEvents->OnTrouble(mName + ": " + *text + (isBusOff ? remedy : ""));
  } else if (received.isOwn) {
    mEvents->OnSent(received.frame, time);
  } else {
    mEvents->OnReceived(received.frame, time);
  }
}

void Interface::Send(const NSdk::CanFrame& frame) {
  if (!mSocket || mWaiting.size() >= kMostWaiting) {
    const bool isFirst = ++mGivenUp == 1;
    if (isFirst && mSocket)
      mEvents->OnTrouble(mName + " does not get rid of its frames; further ones are given up");
    return;
  }
  if (!mWaiting.empty() || !SendNow(frame)) {
    mWaiting.push_back(frame);
  } else if (!mSocket) {
    ++mGivenUp;  // by this very frame it came out that the interface is down
  }
}

// False: later.
bool Interface::SendNow(const NSdk::CanFrame& frame) {
  const CanSocket::Result result = mSocket->Send(frame);
  if (result == CanSocket::Result::Busy) {
    mRetry->SetFor(mLoop.Now() + kRetry);
    return false;
  }
  if (result == CanSocket::Result::Done) return true;
  const int error = errno;
  if (error == ENETDOWN || error == ENODEV || error == ENXIO) {
    Lose(error);
    return true;
  }
  const std::string fault = mName + ": frames cannot be sent: " + std::strerror(error);
  if (std::exchange(mLastFault, fault) != fault) mEvents->OnTrouble(fault);
  return true;
}

void Interface::SendWaiting() {
  const auto kept = shared_from_this();
  while (mSocket && !mWaiting.empty()) {
    const NSdk::CanFrame frame = mWaiting.front();
    if (!SendNow(frame)) return;
    if (!mWaiting.empty()) mWaiting.pop_front();
  }
  if (mSocket && mGivenUp != 0) {
    mEvents->OnTrouble(mName + ": " + Frames(std::exchange(mGivenUp, 0)) + " given up in all");
  }
}

void Interface::Lose(int error) {
  ++mOpening;
  mDescriptor->release();
  mDescriptor.reset();
  mSocket.reset();
  mGivenUp += mWaiting.size();
  mWaiting.clear();
  mRetry->Cancel();
  mLook->SetFor(mLoop.Now() + kLook);
  const bool isDown = error == ENETDOWN;
  mEvents->OnTrouble(isDown ? DownText(mName) : mName + " is gone: " + std::strerror(error));
}

void Interface::LookForReturn() {
  const auto kept = shared_from_this();
  try {
    Open();
  } catch (const std::runtime_error&) {
    mLook->SetFor(mLoop.Now() + kLook);
    return;
  }
  const std::uint64_t givenUp = std::exchange(mGivenUp, 0);
  mEvents->OnTrouble(mName + " is back" + (givenUp == 0 ? "" : "; " + Frames(givenUp) + " given up"));
}

class SocketCan final : public NRuntime::CanAdapter {
 public:
  SocketCan(NRuntime::IoLoop& loop, std::string interfaceName)
      : mLoop(loop), mName(std::move(interfaceName)) {}
  ~SocketCan() override { Close(); }

  void Open(NRuntime::CanAdapterEvents& events) override {
    Close();
    const auto interfaceName = std::make_shared<Interface>(mLoop, mName, events);
    interfaceName->Open();
    mInterface = interfaceName;
  }

  void Close() override {
    if (mInterface) mInterface->Close();
    mInterface.reset();
  }

  void Send(const NSdk::CanFrame& frame) override {
    // Kept: what is told of the frame may close this adapter.
    if (const auto interfaceName = mInterface) interfaceName->Send(frame);
  }

 private:
  NRuntime::IoLoop& mLoop;
  const std::string mName;
  std::shared_ptr<Interface> mInterface;  // null: closed
};

}  // namespace

bool HasSocketCan() { return true; }

std::unique_ptr<NRuntime::CanAdapter> MakeSocketCan(NRuntime::IoLoop& loop,
                                                    const std::string& interfaceName) {
  return std::make_unique<SocketCan>(loop, interfaceName);
}

}  // namespace NBuses
