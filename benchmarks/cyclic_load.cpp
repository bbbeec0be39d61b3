#include "benchmarks/cyclic_load.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <map>
#include <mutex>

#include "benchmarks/served_bus.h"
#include "host/bench/generator_block.h"
#include "host/bench/host.h"

namespace NBenchmarks {
namespace {

using namespace std::chrono_literals;
using NRuntime::Time;

constexpr std::uint32_t kFirstIdentifier = 0x100;

struct Load {
  int messages;
  int period_ms;
  int seconds;
};

struct Outcome {
  std::map<std::uint32_t, std::vector<Time>> arrivals;  // by identifier
  double cpu_s = 0;
};

// Notes when frames reach the server's bus, whoever sends them.
class Arrivals {
 public:
  void Note(std::uint32_t identifier, Time time) {
    const std::lock_guard lock(mMutex);
    mTimes[identifier].push_back(time);
  }
  std::map<std::uint32_t, std::vector<Time>> Take() {
    const std::lock_guard lock(mMutex);
    return std::exchange(mTimes, {});
  }

 private:
  std::mutex mMutex;
  std::map<std::uint32_t, std::vector<Time>> mTimes;
};

struct Nobody final : NRuntime::MeasurementObserver, NBench::GeneratorListener {
  void OnFrame(const NRuntime::SeenFrame&) override {}
  void OnTrouble(std::uint32_t, const std::string& text) override {
    std::fprintf(stderr, "%s\n", text.c_str());
  }
  void OnItemSent(NSdk::GeneratorList, std::uint32_t) override {}
  void OnItemFailed(NSdk::GeneratorList, std::uint32_t) override {}
  void OnTransferEnded(NSdk::GeneratorList, std::uint32_t, std::uint32_t) override {}
  void OnActivityChanged() override {}
};

double ThreadTime_s() {
  timespec time = {};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

void WriteSequence(const std::filesystem::path& path, const Load& load) {
  std::ofstream file(path);
  file << "<CANopenIG><Sequence/><CyclicMsgs>";
  for (int number = 0; number < load.messages; ++number) {
    file << "<SYNC COBID=\"0x" << std::hex << kFirstIdentifier + static_cast<std::uint32_t>(number)
         << std::dec << "\" SendCycle=\"" << load.period_ms << "\" SendDelay=\"0\" Enabled=\"1\"/>";
  }
  file << "</CyclicMsgs></CANopenIG>";
}

void SendWithModule(const ServedBus& bus, const Load& load, double& cpu_s) {
  const auto sequence = std::filesystem::temp_directory_path() / "ostrel-cyclic-load.seq";
  WriteSequence(sequence, load);
  Nobody nobody;
  NBench::HostOptions options;
  options.channels.push_back({1, bus.Word()});
  options.module = OSTREL_MODULE;
  NBench::Host host(options, nobody,
                    [](const std::string& text) { std::fprintf(stderr, "%s\n", text.c_str()); });
  NBench::GeneratorBlock block(host.Application(), host.Setup(), {{L"CANChannel", L"1"}}, nobody);
  block.LoadSequence(sequence);
  std::filesystem::remove(sequence);
  host.Measurement().Start({block.Object()});
  const double before_s = ThreadTime_s();
  block.ToggleCyclic();
  const auto end = host.Loop().MakeAlarm([&] { host.Loop().Stop(); });
  end->SetFor(host.Loop().Now() + std::chrono::seconds(load.seconds));
  host.Loop().Run();
  cpu_s = ThreadTime_s() - before_s;
  host.Measurement().Stop();
}

// False: there is no python-can.
bool SendWithPython(const ServedBus& bus, const Load& load, double& cpu_s) {
  const std::string command = std::string(CYCLIC_PEER) + " " + bus.PortNumber() + " " +
                              std::to_string(load.messages) + " " + std::to_string(load.period_ms) + " " +
                              std::to_string(load.seconds);
  std::FILE* peer = popen(command.c_str(), "r");
  const bool read = peer && std::fscanf(peer, "%lf", &cpu_s) == 1;
  return peer && pclose(peer) == 0 && read;
}

double Milliseconds(Time time) { return std::chrono::duration<double, std::milli>(time).count(); }

// The first two gaps hold the start.
void Print(const char* who, const Load& load, const Outcome& outcome) {
  const Time period = std::chrono::milliseconds(load.period_ms);
  std::vector<Time> deviations;
  double expected = 0;
  std::size_t arrived = 0;
  for (const auto& [identifier, times] : outcome.arrivals) {
    for (std::size_t position = 3; position < times.size(); ++position) {
      const Time gap = times[position] - times[position - 1];
      deviations.push_back(gap > period ? gap - period : period - gap);
    }
    if (times.size() < 4) continue;
    expected += Milliseconds(times.back() - times[2]) / load.period_ms;
    arrived += times.size() - 3;
  }
  if (deviations.empty()) {
    std::printf("%-10s %8d %6d ms  nothing arrived\n", who, load.messages, load.period_ms);
    return;
  }
  std::sort(deviations.begin(), deviations.end());
  const auto percentile = [&](std::size_t percent) {
    return Milliseconds(deviations[(deviations.size() - 1) * percent / 100]);
  };
  std::printf("%-10s %8d %6d ms %9.1f %% %9.3f %9.3f %9.3f ms %8.1f %%\n", who, load.messages, load.period_ms,
              100 * static_cast<double>(arrived) / expected, percentile(50), percentile(99), percentile(100),
              100 * outcome.cpu_s / load.seconds);
  std::fflush(stdout);
}

}  // namespace

void CompareCyclicLoads(int seconds) {
  std::printf("\nover a socketcand connection, seen where they arrive\n");
  std::printf("%-10s %8s %9s %11s %32s %13s\n", "sender", "messages", "period", "of period",
              "deviation 50 %, 99 %, 100 %", "processor");
  Arrivals arrivals;
  ServedBus bus([&](const NSdk::CanFrame& frame, Time time) { arrivals.Note(frame.identifier, time); });
  for (const int messages : {1, 10, 100}) {
    for (const int period_ms : {1, 5, 10}) {
      const Load load = {messages, period_ms, seconds};
      Outcome outcome;
      SendWithModule(bus, load, outcome.cpu_s);
      outcome.arrivals = arrivals.Take();
      Print("ostrel", load, outcome);
      const bool sent = SendWithPython(bus, load, outcome.cpu_s);
      outcome.arrivals = arrivals.Take();
      if (sent) Print("python-can", load, outcome);
    }
  }
}

}  // namespace NBenchmarks
