// What goes wrong around the program: each time it says so and goes on.

// asio's header comes first: it brings the socket headers, which must precede those of Windows.
#include "host/buses/socketcand_server.h"

#include <asio/io_context.hpp>

#include <gmock/gmock.h>

#include <fstream>
#include <thread>

#include "host/buses/bus_factory.h"
#include "host/runtime/asio_loop.h"
#include "host/workbench/win/command_ids.h"
#include "sdk/generator.h"
#include "tests/workbench/win/program.h"

namespace {

using namespace NWorkbenchTest;
using namespace NWorkbench;
using testing::Contains;
using testing::HasSubstr;

constexpr char kVirtual[] = R"({"number": 1, "bus": "virtual"})";
constexpr char kScanner[] =
    R"(, "blocks": [{"progId": "HarlowPlugIn.CANopenScanner", "settings": {"Name": "Kept"}}])";

bool IsMeasuring(Program& program) { return program.Status(0).find(L"Measuring") == 0; }

TEST(WorkbenchSurvives, AModuleThatDoesNotWorkLosesNoBlock) {
  const std::filesystem::path missing = std::filesystem::path(OSTREL_MODULE).parent_path() / "Missing.hpi";
  for (const auto& [module, reason] :
       {std::pair(missing, L"no such module"),
        std::pair(std::filesystem::path(OSTREL_FAULTY_MODULE), L"refuses this host")}) {
    const auto file = WriteConfiguration("kept.json", kVirtual, kScanner);
    Answers ok(IDOK);
    Program program(file, module);
    EXPECT_THAT(ok.Texts(), HasSubstr(reason));
    EXPECT_THAT(program.SetupLines(), Contains(L"Kept (not loaded)"));
    program.Command(kMeasureStart);
    EXPECT_TRUE(program.Wait([&] { return IsMeasuring(program); }));
    program.Command(kMeasureStop);
    program.Command(kFileSave);
    EXPECT_THAT(ReadFile(file), HasSubstr("\"Kept\""));
  }
}

TEST(WorkbenchSurvives, ConfigurationsThatCannotBeUsed) {
  const auto file = WriteConfiguration("newer.json", kVirtual);
  std::ofstream(file, std::ios::binary) << R"({"format": 2, "channels": []})";
  Answers ok(IDOK);
  Program program(file);
  EXPECT_THAT(ok.Texts(), HasSubstr(L"newer.json"));
  EXPECT_THAT(program.SetupLines(), Contains(L"Network CAN 1")) << "a new one is there instead";
  EXPECT_THAT(ReadFile(file), HasSubstr("\"format\": 2"));
}

TEST(WorkbenchSurvives, ABusThatIsNotThere) {
  Program program(
      WriteConfiguration("nowhere.json", R"({"number": 1, "bus": "socketcand:127.0.0.1:1/can0"})"));
  Answers ok(IDOK);
  program.Command(kMeasureStart);
  EXPECT_TRUE(program.Wait([&] { return ok.HasAnswered(); }));
  EXPECT_THAT(ok.Texts(), HasSubstr(L"socketcand 127.0.0.1:1"));
  EXPECT_FALSE(IsMeasuring(program));
}

// Connections are made by the system, and nobody greets.
TEST(WorkbenchSurvives, ABusThatNeverAnswersHoldsUpNobody) {
  asio::io_context context;
  asio::ip::tcp::acceptor silent(context, {asio::ip::address_v4::loopback(), 0});
  const std::string address = "127.0.0.1:" + std::to_string(silent.local_endpoint().port());
  Program program(
      WriteConfiguration("silent.json", R"({"number": 1, "bus": "socketcand:)" + address + R"(/can0"})"));
  const auto begin = std::chrono::steady_clock::now();
  program.Command(kMeasureStart);
  EXPECT_TRUE(program.Wait([&] { return program.Status(0) == L"Joining the bus..."; }));
  program.Command(kMeasureStop);
  EXPECT_TRUE(program.Wait([&] { return program.Status(0) == L"Stopped"; }));
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(3));
  Answers ok(IDOK);
  program.Command(kMeasureStart);
  EXPECT_TRUE(program.Wait([&] { return ok.HasAnswered(); }));
  EXPECT_THAT(ok.Texts(), HasSubstr(L"no answer; is it a socketcand server?"));
}

// Offers a virtual bus on the network, on a thread of its own.
class Server {
 public:
  Server() {
    std::vector<NBuses::ServedBus> buses;
    buses.push_back({{"can0"}, mBuses.Make("virtual")});
    const auto ignore = [](const std::string&) {};
    mServer = std::make_unique<NBuses::SocketcandServer>(mLoop, std::move(buses),
                                                         NBuses::SocketcandServerEvents{ignore, ignore});
    mServer->Start({"127.0.0.1", 0});
    mThread = std::thread([this] { mLoop.Run(); });
  }
  ~Server() {
    mLoop.Stop();
    mThread.join();
  }
  /// HOST:PORT
  std::string Address() const { return mServer->Address(); }

 private:
  NRuntime::AsioLoop mLoop;
  NBuses::BusFactory mBuses{mLoop};
  std::unique_ptr<NBuses::SocketcandServer> mServer;
  std::thread mThread;
};

TEST(WorkbenchSurvives, ABusThatIsLostDuringAMeasurement) {
  auto server = std::make_unique<Server>();
  Program program(WriteConfiguration(
      "lost.json", R"({"number": 1, "bus": "socketcand:)" + server->Address() + R"(/can0"})", kScanner));
  program.Command(kMeasureStart);
  ASSERT_TRUE(program.Wait([&] { return IsMeasuring(program); }));
  server.reset();
  EXPECT_TRUE(program.Wait([&] { return !program.Messages().empty(); }));
  EXPECT_THAT(program.Messages().front(), HasSubstr(L"connection is lost"));
  EXPECT_TRUE(IsMeasuring(program));
  const Answers yes(IDYES);
  SendMessageW(program.Main(), WM_CLOSE, 0, 0);
  EXPECT_TRUE(program.IsClosed()) << "in the midst of the measurement";
}

// In a pause, and in a transfer to a device that never answers.
TEST(WorkbenchSurvives, BeingClosedWhileASequenceRuns) {
  const std::string items[] = {
      R"(<PAUSE PauseMilliSec="60000" Enabled="1"/>)",
      R"(<SDO NodeID="5" COBIDTx="0x605" COBIDRx="0x585" Data="" Index="0x1008" SubIndex="0x0" BlockTransfer="0" )"
      R"(AutoSize="0" ObjectSize="0" AutoCANID="1" Upload="1" Enabled="1"/>)"};
  for (const std::string& item : items) {
    std::ofstream(WriteConfiguration("long.seq", ""), std::ios::binary)
        << R"(<?xml version="1.0" encoding="UTF-8"?><CANopenIG><Sequence><SYNC COBID="0x80" Enabled="1"/>)"
        << item << "</Sequence></CANopenIG>";
    Program program(WriteConfiguration("running.json", kVirtual, R"(, "blocks": [
        {"progId": "HarlowPlugIn.CANopenIG", "settings": {"Name": "Long", "SvcDelay": "1", "SDOTimeout": "60000",
         "SDOBlockSize": "10", "CANChannel": "1", "LastCOIGSequenceRel": "long.seq"}}])"));
    program.Command(kMeasureStart);
    ASSERT_TRUE(program.Wait([&] { return IsMeasuring(program); }));
    const auto generator = NRuntime::Query<NSdk::IGenerator>(program.Host().Blocks().at(0).object);
    ASSERT_TRUE(generator && generator->ReloadSequence() == S_OK);
    ASSERT_TRUE(SUCCEEDED(generator->ToggleSequence()));
    EXPECT_TRUE(program.Wait([&] { return program.TraceRows() >= 1; }));
    std::uint32_t activity = 0;
    generator->GetActivity(&activity);
    EXPECT_EQ(activity, NSdk::kSequenceRunning);
    EXPECT_THAT(program.Messages(), testing::IsEmpty());
    const Answers yes(IDYES);
    SendMessageW(program.Main(), WM_CLOSE, 0, 0);
    EXPECT_TRUE(program.IsClosed());
  }
}

// The measurement goes on behind the box, and ends there with its log.
TEST(WorkbenchSurvives, AMeasurementThatEndsBehindAMessageBox) {
  const auto log = WriteConfiguration("short.log", "");
  std::ofstream(log, std::ios::binary)
      << "(1.000000) can0 705#00\n(1.300000) can0 705#05\n(1.700000) can0 705#05\n";
  Program program(WriteConfiguration("short.json", R"({"number": 1, "bus": "replay:short.log"})", kScanner));
  program.Command(kMeasureStart);
  ASSERT_TRUE(program.Wait([&] { return IsMeasuring(program); }));
  Answers ok(IDOK, [&] { return program.Status(0) == L"Stopped"; });
  program.Command(kHelpAbout);
  EXPECT_THAT(ok.Texts(), HasSubstr(L"Ostrel Workbench"));
  EXPECT_TRUE(program.Wait([&] { return program.TraceRows() == 3; }));
  program.Command(kMeasureStart);
  EXPECT_TRUE(program.Wait([&] { return IsMeasuring(program); }));
}

}  // namespace
