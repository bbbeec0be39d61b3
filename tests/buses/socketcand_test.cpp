// Client and server over loopback; the server has a thread of its own, as it would have a machine of its own.
#include <asio/ip/tcp.hpp>
#include <asio/write.hpp>

#include <gmock/gmock.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

#include "host/buses/socketcand_server.h"
#include "tests/buses/real_time.h"

namespace {

using namespace std::chrono_literals;
using NTest::Refusal;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// Two virtual buses, can1 and can2, and what was told of the clients.
class ServerThread {
 public:
  explicit ServerThread(std::uint16_t port = 0) {
    std::vector<NBuses::ServedBus> buses;
    buses.push_back({{"can1", "virtual:a"}, mFactory.Make("virtual:a")});
    buses.push_back({{"can2"}, mFactory.Make("virtual:b")});
    const auto note = [this](const std::string& text) {
      const std::lock_guard lock(mMutex);
      mNotes.push_back(text);
    };
    mServer.emplace(mLoop, std::move(buses), NBuses::SocketcandServerEvents{note, note});
    mServer->Start({"127.0.0.1", port});
    address = mServer->Address();
    mThread = std::thread([this] { mLoop.Run(); });
  }
  ~ServerThread() {
    mLoop.Post([this] { mLoop.Stop(); });
    mThread.join();
    mServer.reset();
  }

  std::uint16_t Port() const {
    return static_cast<std::uint16_t>(std::stoi(address.substr(address.find(':') + 1)));
  }
  std::vector<std::string> Notes() {
    const std::lock_guard lock(mMutex);
    return mNotes;
  }

  std::string address;

 private:
  NRuntime::AsioLoop mLoop;
  NBuses::BusFactory mFactory{mLoop};
  std::mutex mMutex;
  std::vector<std::string> mNotes;
  std::optional<NBuses::SocketcandServer> mServer;
  std::thread mThread;
};

class Socketcand : public NTest::RealTime {
 protected:
  std::string Word(const std::string& address, const std::string& interfaceName) const {
    return "socketcand:" + address + "/" + interfaceName;
  }

  // What is wrong with it.
  std::string Prepare(NRuntime::CanAdapter& adapter) {
    std::string fault = "nothing was told";
    bool told = false;
    adapter.Prepare([&](const std::string& text) {
      fault = text;
      told = true;
    });
    EXPECT_FALSE(told) << "the caller does not wait";
    RunUntil([&] { return told; });
    return fault;
  }
};

TEST_F(Socketcand, ClientsHearEachOtherOnTheirBusAlone) {
  ServerThread server;
  const auto sender = factory.Make(Word(server.address, "can1")),
             other = factory.Make(Word(server.address, "virtual:a")),
             elsewhere = factory.Make(Word(server.address, "can2"));
  sender->Open(one);
  EXPECT_EQ(Prepare(*other), "") << "it gets what comes from now on, however late it is opened";
  elsewhere->Open(three);
  std::vector<std::string> expected;
  const NSdk::CanFrame extended = {0x1ABCDEF, {1, 2, 3, 4, 5, 6, 7, 8}, 8 | NSdk::kFrameExtended};
  sender->Send(extended);
  expected.push_back(NBuses::FrameText(extended));
  for (std::uint32_t number = 0; number < 2000; ++number) {
    const NSdk::CanFrame frame = {number & 0x7FF, {static_cast<std::uint8_t>(number >> 8)}, number % 2};
    NSdk::CanFrame clean = frame;
    if (number % 2 == 0) clean.data[0] = 0;
    sender->Send(clean);
    expected.push_back(NBuses::FrameText(clean));
  }
  sender->Send({0x705, {}, 1 | NSdk::kFrameRemote});
  EXPECT_TRUE(RunUntil([&] { return one.sent.size() == expected.size(); }));
  other->Open(two);
  EXPECT_TRUE(RunUntil([&] { return two.received.size() == expected.size(); }));
  other->Send({0x7FF, {}, 0});
  EXPECT_TRUE(RunUntil([&] { return !one.received.empty(); }));
  EXPECT_EQ(one.sent, expected);
  EXPECT_EQ(two.received, expected);
  EXPECT_THAT(one.received, ElementsAre("7FF#"));
  EXPECT_THAT(one.troubles, ElementsAre(HasSubstr("no remote frames")));
  EXPECT_THAT(three.received, IsEmpty());
  for (std::uint8_t last = 0; last < 200; ++last) other->Send({0x7FE, {last}, 1});
  other->Close();
  EXPECT_TRUE(RunUntil([&] { return one.received.size() == 201; })) << "what was sent before still leaves";
  EXPECT_TRUE(RunUntil([&] { return server.Notes().size() == 4; }));
  EXPECT_THAT(server.Notes(), ElementsAre(HasSubstr("opens can1"), HasSubstr("opens can1"),
                                          HasSubstr("opens can2"), HasSubstr("has left")));
}

TEST_F(Socketcand, WhatCannotBeOpenedIsNamed) {
  ServerThread server;
  const auto unknown = factory.Make(Word(server.address, "can7"));
  EXPECT_THAT(Refusal([&] { unknown->Open(one); }), HasSubstr("interface can7: could not open bus"));
  EXPECT_THAT(Prepare(*unknown), HasSubstr("interface can7: could not open bus"));
  std::uint16_t freePort = 0;
  {
    ServerThread past;
    freePort = past.Port();
  }
  const auto nobody = factory.Make(Word("127.0.0.1:" + std::to_string(freePort), "can1"));
  EXPECT_THAT(Refusal([&] { nobody->Open(one); }), HasSubstr("no connection"));
  EXPECT_THAT(Prepare(*nobody), HasSubstr("no connection"));
  EXPECT_THAT(Refusal([&] { ServerThread again(server.Port()); }),
              HasSubstr("cannot listen on " + server.address));
  for (const char* address :
       {"", "host", "host/", "/can0", "host:0/can0", "host:x/can0", "host/can 0", "host/a>b"}) {
    const std::string word = std::string("socketcand") + (*address ? ":" : "") + address;
    EXPECT_THAT(Refusal([&] { factory.Make(word); }), HasSubstr("HOST[:PORT]/INTERFACE")) << word;
  }
}

TEST_F(Socketcand, AConnectionThatIsLostIsMadeAgain) {
  auto server = std::make_unique<ServerThread>();
  const std::uint16_t port = server->Port();
  const auto client = factory.Make(Word(server->address, "can1"));
  client->Open(one);
  server.reset();
  EXPECT_TRUE(RunUntil([&] { return !one.troubles.empty(); }));
  client->Send({0x123, {}, 0});
  client->Send({0x124, {}, 0});
  server = std::make_unique<ServerThread>(port);
  EXPECT_TRUE(RunUntil([&] { return one.troubles.size() == 2; }));
  EXPECT_THAT(one.troubles, ElementsAre(HasSubstr("the connection is lost ("),
                                        HasSubstr("s; 2 frames could not be sent; what others sent")));
  client->Send({0x125, {}, 0});
  EXPECT_TRUE(RunUntil([&] { return !one.sent.empty(); }));
  EXPECT_THAT(one.sent, ElementsAre("125#"));
}

// Connects and speaks as a hostile client would.
class RawClient {
 public:
  explicit RawClient(std::uint16_t port) { mSocket.connect({asio::ip::make_address("127.0.0.1"), port}); }
  void Say(const std::string& text) {
    std::error_code ignored;
    asio::write(mSocket, asio::buffer(text), ignored);
  }
  // All until the text comes, or the connection ends.
  std::string ReadUntil(const std::string& wanted) {
    std::string text;
    char buffer[256];
    std::error_code error;
    while (text.find(wanted) == std::string::npos && !error) {
      text.append(buffer, mSocket.read_some(asio::buffer(buffer), error));
    }
    return text;
  }
  asio::ip::tcp::socket& Socket() { return mSocket; }

 private:
  asio::io_context mContext;
  asio::ip::tcp::socket mSocket{mContext};
};

TEST_F(Socketcand, TheServerAnswersAsItsProtocolSays) {
  ServerThread server;
  const std::pair<const char*, const char*> talks[] = {
      {"< open can1 >< rawmode >< echo >", "< hi >< ok >< ok >< echo >"},
      {"< rawmode >< open can2 >", "< hi >< error unknown command >< ok >"},
      {"< >< send 123 0 >< subscribe 0 0 123 >",
       "< hi >< error unknown command >< error unknown command >< error unknown command >"},
      {"< open can9 >", "< hi >< error could not open bus >"},
      {"< open can1 >< open can1 >", "< hi >< ok >< error unknown command >"},
  };
  for (const auto& [said, heard] : talks) {
    RawClient client(server.Port());
    client.Say(said);
    EXPECT_EQ(client.ReadUntil(heard), heard) << said;
  }
  RawClient wordy(server.Port());
  wordy.Say("< open " + std::string(1000, 'x'));
  EXPECT_THAT(wordy.ReadUntil("nothing that ever comes"), HasSubstr("< error command too long >"));
}

TEST_F(Socketcand, GarbageAndSlowClientsDoNotStopTheServer) {
  ServerThread server;
  const auto client = factory.Make(Word(server.address, "can1"));
  client->Open(one);
  RawClient slow(server.Port());
  slow.Say("< open can1 >< rawmode >");
  EXPECT_TRUE(RunUntil([&] { return server.Notes().size() == 2; }));
  for (int number = 0; number < 100; ++number) {
    const std::string texts[] = {"< op",
                                 "\xFF\xFE",
                                 std::string(5000, '<'),
                                 "< open can1 >< rawmode >< send 1",
                                 std::string(3000, '\0'),
                                 ""};
    RawClient hostile(server.Port());
    hostile.Say(texts[number % 6]);
  }
  // More than the system's buffers and the server's take for a client that reads nothing.
  const NSdk::CanFrame frame = {0x123, {1, 2, 3, 4, 5, 6, 7, 8}, 8};
  std::size_t asked = 0;
  const auto cutOff = [&] {
    for (const std::string& note : server.Notes()) {
      if (note.find("does not keep up") != std::string::npos) return true;
    }
    // A client that does keep up does not outrun its own connection.
    if (asked < one.sent.size() + 1000) {
      for (int count = 0; count < 1000; ++count) client->Send(frame);
      asked += 1000;
    }
    return false;
  };
  EXPECT_TRUE(RunUntil(cutOff, 90s));
  one.sent.clear();
  client->Send({0x124, {}, 0});
  EXPECT_TRUE(RunUntil([&] { return !one.sent.empty() && one.sent.back() == "124#"; }));
  EXPECT_THAT(one.troubles, IsEmpty());
}

}  // namespace
