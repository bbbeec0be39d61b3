// A busy bus for one client.
//   busy_bus SECONDS FRAMES-A-SECOND
// prints where it is served, sends a second after a client has opened it, and ends when that client leaves;
// then it prints how evenly the client's own frames came, if there were any.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <numeric>
#include <vector>

#include "benchmarks/frame_source.h"

namespace {

using namespace std::chrono_literals;

// Process data, heartbeats, SDO answers and now and then an error, of all 127 nodes; numbered.
NSdk::CanFrame FrameOf(std::uint64_t number) {
  constexpr std::uint32_t kBases[] = {0x180, 0x280, 0x380, 0x480, 0x180, 0x280, 0x580, 0x700};
  const auto node = static_cast<std::uint32_t>(number / 8 % 127 + 1);
  const std::uint32_t base = number % 1016 == 0 ? 0x80 : kBases[number % 8];
  NSdk::CanFrame frame = {base + node, {}, base == 0x700 ? 1u : 8u};
  for (std::uint32_t position = 0; position < 4; ++position)
    frame.data[position] = static_cast<std::uint8_t>(number >> 8 * position);
  if (base == 0x700) frame.data[0] = 5;
  if (base == 0x580) frame.data[0] = 0x60;
  return frame;
}

void PrintIntervals(std::vector<NRuntime::Time> times) {
  if (times.size() < 2) return;
  const auto count = times.size();
  const auto ms = [](NRuntime::Time time) { return std::chrono::duration<double, std::milli>(time).count(); };
  const double mean = ms(times.back() - times.front()) / static_cast<double>(count - 1);
  std::adjacent_difference(times.begin(), times.end(), times.begin());
  std::sort(times.begin() + 1, times.end());
  std::printf(
      "client     sent %zu frames, on average %.3f ms apart: half of them up to %.1f ms, 99 %% %.1f ms, all "
      "%.1f ms\n",
      count, mean, ms(times[count / 2]), ms(times[count * 99 / 100]), ms(times.back()));
}

int Run(double seconds, double rate) {
  std::promise<void> opened, left;
  const auto onNote = [&, notes = 0](const std::string&) mutable {
    if (++notes == 1) opened.set_value();
    if (notes == 2) left.set_value();
  };
  std::vector<NRuntime::Time> times;  // of the client's frames
  NBenchmarks::ServedBus bus([&](const NSdk::CanFrame&, NRuntime::Time now) { times.push_back(now); },
                             onNote);
  NBenchmarks::FrameSource source(bus, static_cast<std::uint64_t>(seconds * rate), rate, FrameOf);
  std::printf("%s\n", bus.Word().c_str());
  std::fflush(stdout);
  opened.get_future().wait();
  bus.Loop().Post([&] { source.StartAfter(1s); });
  left.get_future().wait();
  std::promise<void> stopped;
  bus.Loop().Post([&] {
    source.Stop();
    stopped.set_value();
  });
  stopped.get_future().wait();
  PrintIntervals(times);
  return EXIT_SUCCESS;
}

}  // namespace

int main(int count, char** values) {
  const double seconds = count > 1 ? std::atof(values[1]) : 0, rate = count > 2 ? std::atof(values[2]) : 0;
  if (!(seconds > 0 && seconds <= 3600 && rate >= 1 && rate <= 1e6)) {
    std::fprintf(stderr, "busy_bus SECONDS FRAMES-A-SECOND\n");
    return EXIT_FAILURE;
  }
  try {
    return Run(seconds, rate);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "busy_bus: %s\n", error.what());
    return EXIT_FAILURE;
  }
}
