// A block download of 1 MiB from the real module's generator to a simulated device, in real time: on a bus
// that takes no time, and at 1 Mbit/s against what the bus allows, which is the sum of the times of all
// frames of the transfer.
//   block_download_bench
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>

#include "host/bench/generator_block.h"
#include "host/bench/host.h"
#include "host/buses/frame_time.h"

namespace {

using NRuntime::Time;

constexpr std::uint32_t kSize = 1 << 20;
constexpr std::uint32_t kBitRate = 1000000;
constexpr char kSequence[] =
    R"(<CANopenIG><Sequence><SDO NodeID="5" Index="0x2002" BlockTransfer="1" Data="file:ostrel-image.bin" )"
    R"(ObjectSize="1048576" AutoCANID="1" COBIDTx="0x605" COBIDRx="0x585" Enabled="1"/></Sequence><CyclicMsgs/>)"
    R"(</CANopenIG>)";

struct Result {
  Time took{};     // from the start of the first frame of the transfer to the end of the last
  Time busTime{};  // what its frames need at kBitRate
  std::size_t frames = 0;
  bool done = false;
};

class Download final : public NRuntime::MeasurementObserver, public NBench::GeneratorListener {
 public:
  Download(const std::string& bus, const std::filesystem::path& sequence) {
    NBench::HostOptions options;
    options.channels.push_back({1, bus});
    options.devices.push_back({1, NDevices::ParseDeviceWord("5")});
    options.module = OSTREL_MODULE;
    NBench::Host host(options, *this,
                      [](const std::string& text) { std::fprintf(stderr, "%s\n", text.c_str()); });
    NBench::GeneratorBlock block(host.Application(), host.Setup(),
                                 {{L"CANChannel", L"1"}, {L"SvcDelay", L"10"}, {L"SDOTimeout", L"5000"}},
                                 *this);
    block.LoadSequence(sequence);
    mLoop = &host.Loop();
    host.Measurement().Start({block.Object()});
    host.PowerOnDevices();
    block.ToggleSequence();
    host.Loop().Run();
    host.Measurement().Stop();
  }

  const Result& Get() const { return mResult; }

 private:
  void OnFrame(const NRuntime::SeenFrame& seen) override {
    if ((seen.frame.identifier & 0x7F) != 5 || seen.frame.identifier > 0x67F) return;  // the device boots
    const auto bits = NBuses::FrameBits(seen.frame);
    const auto time = [](std::uint32_t count) {
      return Time(std::int64_t{count} * 1'000'000'000 / kBitRate);
    };
    if (mResult.frames++ == 0) mStart = seen.time - time(bits);
    mResult.took = seen.time - mStart;
    mResult.busTime += time(bits + NBuses::kIntermissionBits);
  }
  void OnTrouble(std::uint32_t, const std::string& text) override {
    std::fprintf(stderr, "%s\n", text.c_str());
  }
  void OnItemSent(NSdk::GeneratorList, std::uint32_t) override {}
  void OnItemFailed(NSdk::GeneratorList, std::uint32_t) override { mLoop->Stop(); }
  void OnTransferEnded(NSdk::GeneratorList, std::uint32_t, std::uint32_t result) override {
    mResult.done = result == NSdk::kTransferDone;
    mLoop->Post([this] { mLoop->Stop(); });
  }
  void OnActivityChanged() override {}

  NRuntime::AsioLoop* mLoop = nullptr;
  Time mStart{};
  Result mResult;
};

double Seconds(Time time) { return std::chrono::duration<double>(time).count(); }

bool Compare(const std::filesystem::path& sequence) {
  const Result plain = Download("virtual", sequence).Get();
  std::printf("virtual                  %8.3f s (wanted: below 1 s)\n", Seconds(plain.took));
  const Result timed = Download("virtual,bitrate=" + std::to_string(kBitRate), sequence).Get();
  const double excess = 100 * (Seconds(timed.took) / Seconds(timed.busTime) - 1);
  std::printf("virtual,bitrate=%u  %8.3f s for %zu frames of %.3f s: %+.1f %% (wanted: within 5 %%)\n",
              kBitRate, Seconds(timed.took), timed.frames, Seconds(timed.busTime), excess);
  return plain.done && timed.done && Seconds(plain.took) < 1 && excess < 5;
}

}  // namespace

int main() {
  const auto folder = std::filesystem::temp_directory_path() / "ostrel-block-download-bench";
  bool good = false;
  try {
    std::filesystem::create_directories(folder);
    std::mt19937 random(5);
    std::string image(kSize, 0);
    for (char& byte : image) byte = static_cast<char>(random());
    std::ofstream(folder / "ostrel-image.bin", std::ios::binary) << image;
    std::ofstream(folder / "it.seq") << kSequence;
    good = Compare(folder / "it.seq");
  } catch (const std::exception& error) {
    std::fprintf(stderr, "block_download_bench: %s\n", error.what());
  }
  std::filesystem::remove_all(folder);
  return good ? EXIT_SUCCESS : EXIT_FAILURE;
}
