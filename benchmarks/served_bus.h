#pragma once

#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "host/buses/bus_factory.h"
#include "host/buses/socketcand_server.h"
#include "host/runtime/asio_loop.h"

namespace NBenchmarks {

/// A virtual bus behind a socketcand server, with a thread of its own as it would have a machine of its own.
class ServedBus final : private NRuntime::CanAdapterEvents {
 public:
  using OnFrame = std::function<void(const NSdk::CanFrame&, NRuntime::Time)>;

  using OnNote = std::function<void(const std::string&)>;

  /// `onFrame` is called in the server's thread for each frame of a client, `onNote` when a client opens the
  /// bus and when it leaves.
  explicit ServedBus(
      OnFrame onFrame, OnNote onNote = [](const std::string&) {})
      : mOnFrame(std::move(onFrame)), mPort(mFactory.Make("virtual")) {
    std::vector<NBuses::ServedBus> buses;
    buses.push_back({{"can1"}, mFactory.Make("virtual")});
    const auto trouble = [](const std::string& text) { std::fprintf(stderr, "server: %s\n", text.c_str()); };
    mServer.emplace(mLoop, std::move(buses), NBuses::SocketcandServerEvents{std::move(onNote), trouble});
    mServer->Start({"127.0.0.1", 0});
    mPort->Open(*this);
    mAddress = mServer->Address();
    mThread = std::thread([this] { mLoop.Run(); });
  }
  ~ServedBus() override {
    mLoop.Post([this] { mLoop.Stop(); });
    mThread.join();
  }
  ServedBus(const ServedBus&) = delete;
  ServedBus& operator=(const ServedBus&) = delete;

  std::string Word() const { return "socketcand:" + mAddress + "/can1"; }
  std::string PortNumber() const { return mAddress.substr(mAddress.rfind(':') + 1); }

  /// Both to be used in the server's thread alone, to which Loop().Post() leads.
  NRuntime::AsioLoop& Loop() { return mLoop; }
  void Send(const NSdk::CanFrame& frame) { mPort->Send(frame); }

 private:
  void OnReceived(const NSdk::CanFrame& frame, NRuntime::Time time) override { mOnFrame(frame, time); }
  void OnSent(const NSdk::CanFrame&, NRuntime::Time) override {}
  void OnTrouble(const std::string& text) override { std::fprintf(stderr, "bus: %s\n", text.c_str()); }

  OnFrame mOnFrame;
  NRuntime::AsioLoop mLoop;
  NBuses::BusFactory mFactory{mLoop};
  std::unique_ptr<NRuntime::CanAdapter> mPort;
  std::optional<NBuses::SocketcandServer> mServer;
  std::string mAddress;
  std::thread mThread;
};

}  // namespace NBenchmarks
