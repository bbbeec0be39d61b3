// A busy bus for one client.
//   busy_bus SECONDS FRAMES-A-SECOND
// prints where it is served, sends a second after a client has opened it, and ends when that client leaves.
#include <cstdio>
#include <cstdlib>
#include <future>

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

int Run(double seconds, double rate) {
  std::promise<void> opened, left;
  const auto onNote = [&, notes = 0](const std::string&) mutable {
    if (++notes == 1) opened.set_value();
    if (notes == 2) left.set_value();
  };
  NBenchmarks::ServedBus bus([](const NSdk::CanFrame&, NRuntime::Time) {}, onNote);
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
