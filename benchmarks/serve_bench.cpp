// How many frames a second get through the server to a client over loopback, and whether all of them do.
//   serve_bench [SECONDS [FRAMES-A-SECOND]]   (10 seconds of 50000)
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "benchmarks/frame_source.h"

namespace {

using namespace std::chrono_literals;
using NRuntime::Time;

constexpr Time kPatience = 3s;  // for what is still on its way

NSdk::CanFrame Numbered(std::uint64_t number) {
  NSdk::CanFrame frame = {0x181, {}, 8};
  std::memcpy(frame.data, &number, sizeof number);
  return frame;
}

// Counts what arrives, and whether a number is missing.
class Sink final : public NRuntime::CanAdapterEvents {
 public:
  Sink(NRuntime::AsioLoop& loop, std::uint64_t count)
      : mLoop(loop), mCount(count), mGiveUp(loop.MakeAlarm([&loop] { loop.Stop(); })) {}

  void OnReceived(const NSdk::CanFrame& frame, Time time) override {
    std::uint64_t number = 0;
    std::memcpy(&number, frame.data, sizeof number);
    if (number != received) ++disorder;
    if (received == 0) first = time;
    last = time;
    // Set anew now and then, which is cheaper than with each frame.
    if (++received % 10000 == 1) mGiveUp->SetFor(mLoop.Now() + kPatience);
    if (received == mCount) mLoop.Stop();
  }
  void OnSent(const NSdk::CanFrame&, Time) override {}
  void OnTrouble(const std::string& text) override {
    std::fprintf(stderr, "client: %s\n", text.c_str());
    mLoop.Stop();
  }

  std::uint64_t received = 0, disorder = 0;
  Time first{}, last{};

 private:
  NRuntime::AsioLoop& mLoop;
  const std::uint64_t mCount;
  std::unique_ptr<NRuntime::Alarm> mGiveUp;
};

int Run(double seconds, double rate) {
  const auto count = static_cast<std::uint64_t>(seconds * rate);
  NBenchmarks::ServedBus bus([](const NSdk::CanFrame&, Time) {});
  NRuntime::AsioLoop loop;
  NBuses::BusFactory factory(loop);
  Sink sink(loop, count);
  const auto client = factory.Make(bus.Word());
  client->Open(sink);
  NBenchmarks::FrameSource source(bus, count, rate, Numbered);
  // The server begins to pass frames on a moment after the client has asked for them.
  std::this_thread::sleep_for(100ms);
  const std::clock_t before = std::clock();
  bus.Loop().Post([&] { source.StartAfter(0s); });
  loop.Run();
  const double cpu_s = static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC;
  const double elapsed_s = std::chrono::duration<double>(sink.last - sink.first).count();
  std::atomic<bool> stopped = false;
  bus.Loop().Post([&] {
    source.Stop();
    stopped = true;
  });
  while (!stopped) std::this_thread::sleep_for(1ms);
  std::printf("frames sent             %llu\n", static_cast<unsigned long long>(count));
  std::printf("frames received         %llu, %llu lost, %llu out of order\n",
              static_cast<unsigned long long>(sink.received),
              static_cast<unsigned long long>(count - sink.received),
              static_cast<unsigned long long>(sink.disorder));
  std::printf("rate                    %.0f frames/s over %.2f s (wanted: %.0f)\n",
              static_cast<double>(sink.received) / elapsed_s, elapsed_s, rate);
  std::printf("processor               %.1f us a frame, both ends together\n",
              cpu_s * 1e6 / static_cast<double>(sink.received));
  return sink.received == count && sink.disorder == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int count, char** values) {
  const double seconds = count > 1 ? std::atof(values[1]) : 10,
               rate = count > 2 ? std::atof(values[2]) : 50000;
  if (!(seconds > 0 && seconds <= 3600 && rate >= 1 && rate <= 1e7)) {
    std::fprintf(stderr, "serve_bench [SECONDS [FRAMES-A-SECOND]]\n");
    return EXIT_FAILURE;
  }
  try {
    return Run(seconds, rate);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "serve_bench: %s\n", error.what());
    return EXIT_FAILURE;
  }
}
