// The scanner block under load: frames per second and allocations per frame by kind of frame, and an hour of
// a saturated bus whose memory must stay flat.

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fstream>
#include <random>
#include <vector>

#include "benchmarks/allocations.h"
#include "com/com_ptr.h"
#include "com/implements.h"
#include "scanner/scanner.h"
#include "sdk/can_frame.h"
#include "tests/idle_runtime.h"

namespace {

constexpr std::uint32_t kChannels = 4;
constexpr std::uint32_t kNodes = 127;

struct Frame {
  std::uint32_t channel;
  std::uint32_t identifier;
  std::uint32_t size;
  std::uint8_t data[8];
};

// One object for all frames: what a host spends on making them is its own affair.
class Message final : public NCom::Implements<NSdk::ICANMessage> {
 public:
  HRESULT STDMETHODCALLTYPE GetIdentifier(std::uint32_t* value) override {
    return Set(value, frame->identifier);
  }
  HRESULT STDMETHODCALLTYPE GetExtended(std::uint32_t* value) override { return Set(value, 0); }
  HRESULT STDMETHODCALLTYPE GetDataLength(std::uint32_t* value) override { return Set(value, frame->size); }
  HRESULT STDMETHODCALLTYPE GetChannel(std::uint32_t* value) override { return Set(value, frame->channel); }
  HRESULT STDMETHODCALLTYPE GetDirection(std::uint32_t* value) override { return Set(value, 0); }
  HRESULT STDMETHODCALLTYPE GetRemote(std::uint32_t* value) override { return Set(value, 0); }
  HRESULT STDMETHODCALLTYPE GetTimeStamp(std::int64_t* value) override {
    *value = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE CopyData(std::uint32_t offset, std::uint8_t* buffer,
                                     std::uint32_t size) override {
    std::memcpy(buffer, frame->data + offset, size);
    return S_OK;
  }

  const Frame* frame = nullptr;

 private:
  static HRESULT Set(std::uint32_t* result, std::uint32_t value) {
    *result = value;
    return S_OK;
  }
};

// ---- frames

using Frames = std::vector<Frame>;

void Heartbeats(Frames& frames, std::uint32_t channel) {
  for (std::uint32_t node = 1; node <= kNodes; ++node) frames.push_back({channel, 0x700 + node, 1, {5}});
}

void Pdos(Frames& frames, std::uint32_t channel) {
  for (std::uint32_t node = 1; node <= kNodes; ++node) {
    for (const std::uint32_t base : {0x180u, 0x280u, 0x380u, 0x480u}) {
      frames.push_back({channel, base + node, 8, {1, 2, 3, 4, 5, 6, 7, 8}});
    }
  }
}

void Emergencies(Frames& frames, std::uint32_t channel) {
  for (std::uint32_t node = 1; node <= kNodes; ++node) {
    frames.push_back({channel, 0x80 + node, 8, {0x10, 0x10, static_cast<std::uint8_t>(node & 1)}});
  }
}

void Syncs(Frames& frames, std::uint32_t channel) {
  for (int count = 0; count < 40; ++count) frames.push_back({channel, 0x80, 0, {}});
}

// A master reads the vendor-ID of every node, and a parameter that the scanner does not care for.
void Uploads(Frames& frames, std::uint32_t channel) {
  for (std::uint32_t node = 1; node <= kNodes; ++node) {
    const auto low = static_cast<std::uint8_t>(node);
    frames.push_back({channel, 0x600 + node, 8, {0x40, 0x18, 0x10, 1}});
    frames.push_back({channel, 0x580 + node, 8, {0x43, 0x18, 0x10, 1, low, 1}});
    frames.push_back({channel, 0x600 + node, 8, {0x40, 0x17, 0x10, 0}});
    frames.push_back({channel, 0x580 + node, 8, {0x4B, 0x17, 0x10, 0, 0xE8, 3}});
  }
}

using Fill = void (*)(Frames&, std::uint32_t);

Frames OnAllChannels(std::initializer_list<Fill> fills) {
  Frames frames;
  for (std::uint32_t channel = 1; channel <= kChannels; ++channel) {
    for (const Fill fill : fills) fill(frames, channel);
  }
  return frames;
}

// What a second of a busy network holds, in the order of chance but for the two frames of an upload.
Frames Mix() {
  Frames frames = OnAllChannels({Pdos, Pdos, Pdos, Pdos, Pdos, Heartbeats, Syncs, Emergencies});
  std::mt19937 random(1);
  std::shuffle(frames.begin(), frames.end(), random);
  const Frames uploads = OnAllChannels({Uploads});
  const std::size_t gap = frames.size() / (uploads.size() / 2);
  Frames mixed;
  for (std::size_t position = 0; position < frames.size(); ++position) {
    mixed.push_back(frames[position]);
    const std::size_t pair = position / gap * 2;
    if (position % gap != 0 || pair + 1 >= uploads.size()) continue;
    mixed.push_back(uploads[pair]);
    mixed.push_back(uploads[pair + 1]);
  }
  return mixed;
}

// ---- measuring

// Of the processor: others may use the machine.
double Seconds() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

class Bench {
 public:
  Bench() {
    const auto runtime = NCom::Make<NTest::IdleRuntime>();
    mScanner->StartMeasurement(runtime.Get());
    Play(OnAllChannels({Heartbeats}));
  }
  ~Bench() { mScanner->StopMeasurement(); }

  void Play(const Frames& frames) {
    for (const Frame& frame : frames) {
      mMessage->frame = &frame;
      mScanner->OnCanMessage(mMessage.Get());
    }
  }
  void Tick() { mScanner->OnTimer(nullptr); }

  void Measure(const char* name, const Frames& frames) {
    constexpr double kLeast_s = 0.5;
    Play(frames);
    const std::uint64_t allocations = Allocations();
    const double start = Seconds();
    double elapsed = 0;
    std::uint64_t count = 0;
    while ((elapsed = Seconds() - start) < kLeast_s) {
      Play(frames);
      count += frames.size();
    }
    std::printf("%-22s %6.1f M frames/s   %.3f allocations per frame\n", name,
                static_cast<double>(count) / elapsed / 1e6,
                static_cast<double>(Allocations() - allocations) / static_cast<double>(count));
  }

 private:
  NCom::ComPtr<NScanner::ZCANopenScanner> mScanner = NCom::Make<NScanner::ZCANopenScanner>();
  NCom::ComPtr<Message> mMessage = NCom::Make<Message>();
};

long Resident_KiB() {
  std::ifstream statm("/proc/self/statm");
  long total = 0;
  long resident = 0;
  statm >> total >> resident;
  return resident * 4;
}

// 1 Mbit/s carries at most 1e6 / (47 + 3) frames without data a second; with the lengths and stuffing of real
// traffic it is about 9000 for each of four channels, here in ticks of 100 ms.
void PlayAnHour() {
  constexpr std::size_t kFramesPerTick = 4 * 900;
  constexpr int kTicks = 36000;
  Bench bench;
  Frames frames = Mix();
  bench.Play(frames);
  bench.Tick();
  const long before = Resident_KiB();
  const double start = Seconds();
  std::size_t position = 0;
  for (int tick = 0; tick < kTicks; ++tick) {
    Frames part;
    part.reserve(kFramesPerTick);
    for (std::size_t i = 0; i < kFramesPerTick; ++i) part.push_back(frames[position++ % frames.size()]);
    bench.Play(part);
    bench.Tick();
  }
  const double elapsed = Seconds() - start;
  std::printf(
      "an hour, 4 saturated channels: %.0f M frames in %.1f s, resident memory %ld KiB, then %ld KiB\n",
      static_cast<double>(kFramesPerTick) * kTicks / 1e6, elapsed, before, Resident_KiB());
}

}  // namespace

int main() {
  Bench bench;
  bench.Measure("heartbeats", OnAllChannels({Heartbeats}));
  bench.Measure("PDOs", OnAllChannels({Pdos}));
  bench.Measure("emergencies", OnAllChannels({Emergencies}));
  bench.Measure("uploads", OnAllChannels({Uploads}));
  bench.Measure("mix, 127 nodes on 4", Mix());
  PlayAnHour();
}
