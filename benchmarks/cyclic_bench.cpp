// How exactly cyclic messages leave: one of 10 ms from the real module's generator on a virtual bus, in real
// time; with --load also up to 100 messages over the network, beside those of python-can.
//   cyclic_bench [SECONDS] [--load]   (10; 60 shows drift best; with --load each of 18 runs takes that long)
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string_view>
#include <vector>

#include "benchmarks/cyclic_load.h"
#include "host/bench/generator_block.h"
#include "host/bench/host.h"

namespace {

using namespace std::chrono_literals;
using NRuntime::Time;

constexpr Time kPeriod = 10ms;
constexpr char kSequence[] =
    R"(<CANopenIG><Sequence/><CyclicMsgs><SYNC COBID="0x80" SendCycle="10" SendDelay="0" Enabled="1"/></CyclicMsgs></CANopenIG>)";

// Notes when frames leave.
class Recorder final : public NRuntime::MeasurementObserver, public NBench::GeneratorListener {
 public:
  void OnFrame(const NRuntime::SeenFrame& seen) override { times.push_back(seen.time); }
  void OnTrouble(std::uint32_t, const std::string&) override {}
  void OnItemSent(NSdk::GeneratorList, std::uint32_t) override {}
  void OnItemFailed(NSdk::GeneratorList, std::uint32_t) override {}
  void OnTransferEnded(NSdk::GeneratorList, std::uint32_t, std::uint32_t) override {}
  void OnActivityChanged() override {}

  std::vector<Time> times;
};

std::vector<Time> Record(std::chrono::seconds duration, const std::filesystem::path& sequence) {
  Recorder recorder;
  recorder.times.reserve(static_cast<std::size_t>(duration / kPeriod) + 10);
  NBench::HostOptions options;
  options.channels.push_back({1, "virtual"});
  options.module = OSTREL_MODULE;
  NBench::Host host(options, recorder, [](const std::string&) {});
  NBench::GeneratorBlock block(host.Application(), host.Setup(), {{L"CANChannel", L"1"}}, recorder);
  block.LoadSequence(sequence);
  host.Measurement().Start({block.Object()});
  block.ToggleCyclic();
  const auto end = host.Loop().MakeAlarm([&] { host.Loop().Stop(); });
  end->SetFor(host.Loop().Now() + duration);
  host.Loop().Run();
  host.Measurement().Stop();
  return recorder.times;
}

double Milliseconds(Time time) { return std::chrono::duration<double, std::milli>(time).count(); }

// The first frame follows the delay, the second starts the periods.
int Print(const std::vector<Time>& times) {
  if (times.size() < 12) {
    std::fprintf(stderr, "only %zu frames have left\n", times.size());
    return EXIT_FAILURE;
  }
  std::vector<Time> deviations;
  long long periods = 0;
  for (std::size_t position = 2; position < times.size(); ++position) {
    const Time gap = times[position] - times[position - 1];
    // A gap over several periods holds expiries that a busy machine has missed: they are no drift.
    periods += std::llround(Milliseconds(gap) / Milliseconds(kPeriod));
    deviations.push_back(gap > kPeriod ? gap - kPeriod : kPeriod - gap);
  }
  std::sort(deviations.begin(), deviations.end());
  const auto percentile = [&](std::size_t percent) {
    return Milliseconds(deviations[(deviations.size() - 1) * percent / 100]);
  };
  const double mean = Milliseconds(times.back() - times[1]) / static_cast<double>(periods);
  const double error = 100 * (mean / Milliseconds(kPeriod) - 1);
  std::printf("periods                 %lld in %.1f s, %lld missed\n", periods,
              Milliseconds(times.back() - times[1]) / 1000,
              std::max(0LL, periods - static_cast<long long>(deviations.size())));
  std::printf("mean period             %.6f ms, %+.4f %% (wanted: within 0.1 %%)\n", mean, error);
  std::printf("deviation 50 %%          %.3f ms\n", percentile(50));
  std::printf("deviation 99 %%          %.3f ms\n", percentile(99));
  std::printf("deviation 100 %%         %.3f ms\n", percentile(100));
  return std::abs(error) <= 0.1 ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int count, char** values) {
  const bool load = count > 1 && std::string_view(values[count - 1]) == "--load";
  const int seconds = count > (load ? 2 : 1) ? std::atoi(values[1]) : 10;
  if (seconds < 1) {
    std::fprintf(stderr, "cyclic_bench [SECONDS] [--load]: a number from 1 is wanted\n");
    return EXIT_FAILURE;
  }
  const auto sequence = std::filesystem::temp_directory_path() / "ostrel-cyclic-bench.seq";
  try {
    std::ofstream(sequence) << kSequence;
    const std::vector<Time> times = Record(std::chrono::seconds(seconds), sequence);
    std::filesystem::remove(sequence);
    const int status = Print(times);
    if (load) NBenchmarks::CompareCyclicLoads(seconds);
    return status;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "cyclic_bench: %s\n", error.what());
    return EXIT_FAILURE;
  }
}
