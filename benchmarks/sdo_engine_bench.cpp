// The SDO client engine alone: what a transfer of 10 kB costs from the received frame to the frame handed to
// the bus, server and bus left out (the answers are made beforehand).
//
//   sdo_engine_bench                        frames per second
//   benchmarks/sdo_engine_instructions BIN  instructions per frame, by callgrind

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string_view>
#include <vector>

#include "sdo/engine/crc.h"
#include "sdo/engine/engine.h"
#include "sdo/engine/frames.h"

namespace {

using namespace NSdo;

constexpr std::uint32_t kSize = 10000;
constexpr std::uint32_t kResponse = 0x585;
constexpr std::uint32_t kRequest = 0x605;
constexpr std::uint8_t kBlockSize = 127;
constexpr std::uint32_t kSegments = (kSize + kSegmentSize - 1) / kSegmentSize;
constexpr std::uint32_t kLastSize = kSize - (kSegments - 1) * kSegmentSize;

enum Kind { SegmentedDownload, SegmentedUpload, BlockDownload, BlockUpload };
constexpr const char* kKindNames[] = {"segmented-download", "segmented-upload", "block-download",
                                      "block-upload"};

std::vector<std::uint8_t> gBuffer(kSize, 0x5A);

// `number` goes into bytes 4..7.
void Answer(std::vector<SdoFrame>& answers, std::uint32_t command, std::uint32_t number = 0) {
  SdoFrame frame = FrameTo(kResponse, static_cast<std::uint8_t>(command));
  frame.data[1] = 0x00;
  frame.data[2] = 0x20;
  frame.data[3] = 0x01;
  WriteU32(frame.data + 4, number);
  answers.push_back(frame);
}

void Segment(std::vector<SdoFrame>& answers, std::uint32_t command) {
  SdoFrame frame = FrameTo(kResponse, static_cast<std::uint8_t>(command));
  std::memset(frame.data + 1, 0x5A, kSegmentSize);
  answers.push_back(frame);
}

std::uint32_t ToggleAt(std::uint32_t segment) { return segment % 2 != 0 ? kToggleBit : 0u; }

// What a server would say to a transfer of gBuffer, in order.
std::vector<SdoFrame> AnswersOf(Kind kind) {
  std::vector<SdoFrame> answers;
  const std::uint16_t crc = SdoCrc(gBuffer.data(), kSize);
  switch (kind) {
    case SegmentedDownload:
      Answer(answers, 0x60);
      for (std::uint32_t i = 0; i < kSegments; ++i) Answer(answers, 0x20 | ToggleAt(i));
      break;
    case SegmentedUpload:
      Answer(answers, 0x41, kSize);
      for (std::uint32_t i = 0; i + 1 < kSegments; ++i) Segment(answers, ToggleAt(i));
      Segment(answers, ToggleAt(kSegments - 1) | (kSegmentSize - kLastSize) << 1 | 1);
      break;
    case BlockDownload:
      Answer(answers, 0xA4, kBlockSize);
      for (std::uint32_t sent = 0; sent < kSegments; sent += kBlockSize) {
        Answer(answers, 0xA2);
        answers.back().data[1] =
            static_cast<std::uint8_t>(std::min<std::uint32_t>(kBlockSize, kSegments - sent));
      }
      Answer(answers, 0xA1);
      break;
    case BlockUpload:
      Answer(answers, 0xC6, kSize);
      for (std::uint32_t i = 0; i < kSegments; ++i) {
        Segment(answers, (i % kBlockSize + 1) | (i + 1 == kSegments ? 0x80u : 0u));
      }
      Answer(answers, 0xC1 | (kSegmentSize - kLastSize) << 2);
      answers.back().data[1] = static_cast<std::uint8_t>(crc);
      answers.back().data[2] = static_cast<std::uint8_t>(crc >> 8);
      break;
  }
  return answers;
}

struct Client {
  Client() {
    engine.hooks.owner = this;
    engine.hooks.transmit = [](void* client, const SdoFrame&) {
      ++static_cast<Client*>(client)->sent;
      return SdoSent::Accepted;
    };
    SdoOpen(engine, kBlockSize);
  }
  SdoEngine engine;
  std::size_t sent = 0;
};

// Callgrind counts from the entry of this function to its return.
[[gnu::noinline]] void MeasuredTransfer(Client& client, Kind kind, const std::vector<SdoFrame>& answers) {
  const std::uint16_t block = kind == BlockDownload || kind == BlockUpload;
  if (kind == SegmentedDownload || kind == BlockDownload) {
    SdoWrite(client.engine, 5, 0x2000, 1, gBuffer.data(), kSize, kResponse, kRequest, 0, block);
  } else {
    SdoRead(client.engine, 5, 0x2000, 1, gBuffer.data(), kSize, kResponse, kRequest, 0, block);
  }
  for (const SdoFrame& answer : answers) SdoFeed(client.engine, answer);
}

// Frames of `count` transfers, sent and received.
std::size_t RunTransfers(Client& client, Kind kind, const std::vector<SdoFrame>& answers, int count) {
  client.sent = 0;
  for (int i = 0; i < count; ++i) {
    MeasuredTransfer(client, kind, answers);
    if (!client.engine.succeeded) std::abort();
  }
  return client.sent + answers.size() * static_cast<std::size_t>(count);
}

void TransferOf10kB(benchmark::State& state, Kind kind) {
  Client client;
  const std::vector<SdoFrame> answers = AnswersOf(kind);
  std::size_t frames = 0;
  for (auto _ : state) frames += RunTransfers(client, kind, answers, 1);
  state.counters["frames/s"] = benchmark::Counter(static_cast<double>(frames), benchmark::Counter::kIsRate);
}
BENCHMARK_CAPTURE(TransferOf10kB, segmented_download, SegmentedDownload);
BENCHMARK_CAPTURE(TransferOf10kB, segmented_upload, SegmentedUpload);
BENCHMARK_CAPTURE(TransferOf10kB, block_download, BlockDownload);
BENCHMARK_CAPTURE(TransferOf10kB, block_upload, BlockUpload);

[[gnu::noinline]] std::uint16_t MeasuredCrc() { return SdoCrc(gBuffer.data(), kSize); }

void Crc10kB(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(MeasuredCrc());
  state.SetBytesProcessed(state.iterations() * kSize);
}
BENCHMARK(Crc10kB);

// One transfer of the named kind (or "crc"), for callgrind; prints how many frames it took.
int RunOnce(std::string_view name) {
  if (name == "crc") {
    benchmark::DoNotOptimize(MeasuredCrc());
    std::printf("%u\n", kSegments);
    return EXIT_SUCCESS;
  }
  for (std::size_t i = 0; i < std::size(kKindNames); ++i) {
    if (name != kKindNames[i]) continue;
    const Kind kind = static_cast<Kind>(i);
    Client client;
    std::printf("%zu\n", RunTransfers(client, kind, AnswersOf(kind), 1));
    return EXIT_SUCCESS;
  }
  return EXIT_FAILURE;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 3 && std::string_view(argv[1]) == "--once") return RunOnce(argv[2]);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return EXIT_SUCCESS;
}
