// Saving and loading a sequence file of many items; both have to stay linear in their number.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>

#include "canopen/message_items.h"
#include "ig/sequence_file.h"

namespace {

namespace fs = std::filesystem;

const fs::path kPath = fs::temp_directory_path() / "ostrel-bench.seq";

// Every message kind in turn; half of the items in each list.
void FillLists(std::size_t count, NCanopen::ItemList& sequence, NCanopen::ItemList& cyclic) {
  while (sequence.size() + cyclic.size() < count) {
    for (const NCanopen::ItemKind& kind : NCanopen::ItemKinds()) {
      if (!kind.isMessage) continue;
      sequence.push_back(kind.make(nullptr));
      cyclic.push_back(kind.make(nullptr));
    }
  }
}

void CountItems(benchmark::State& state, std::size_t items) {
  state.counters["items/s"] = benchmark::Counter(
      static_cast<double>(items) * static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
  state.counters["bytes"] = static_cast<double>(fs::file_size(kPath));
}

void SaveItems(benchmark::State& state) {
  NCanopen::ItemList sequence;
  NCanopen::ItemList cyclic;
  FillLists(static_cast<std::size_t>(state.range(0)), sequence, cyclic);
  std::string fault;
  for (auto _ : state) {
    if (NIg::SaveSequenceFile(kPath, sequence, cyclic, &fault) != 1 || !fault.empty()) {
      state.SkipWithError(fault.c_str());
    }
  }
  CountItems(state, sequence.size() + cyclic.size());
  fs::remove(kPath);
}

void LoadItems(benchmark::State& state) {
  NCanopen::ItemList written;
  NCanopen::ItemList writtenCyclic;
  FillLists(static_cast<std::size_t>(state.range(0)), written, writtenCyclic);
  std::string fault;
  NIg::SaveSequenceFile(kPath, written, writtenCyclic, &fault);
  for (auto _ : state) {
    NCanopen::ItemList sequence;
    NCanopen::ItemList cyclic;
    if (NIg::LoadSequenceFile(kPath, sequence, cyclic, nullptr, &fault) != 1 ||
        cyclic.size() != written.size()) {
      state.SkipWithError(fault.c_str());
    }
  }
  CountItems(state, written.size() + writtenCyclic.size());
  fs::remove(kPath);
}

// Items per second must not fall with the size.
BENCHMARK(SaveItems)->Arg(10'000)->Arg(100'000)->Arg(200'000)->Unit(benchmark::kMillisecond);
BENCHMARK(LoadItems)->Arg(10'000)->Arg(100'000)->Arg(200'000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
