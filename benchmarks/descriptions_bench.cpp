// Opening a CAN database and a device description of a size that is seldom met; both have to stay linear.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "host/codescrldr/loader.h"
#include "host/dbmanager/manager.h"
#include "host/runtime/text.h"

namespace {

namespace fs = std::filesystem;

std::wstring Write(const char* name, const std::string& content) {
  const fs::path path = fs::temp_directory_path() / name;
  std::ofstream(path, std::ios::binary) << content;
  return NRuntime::ToWide(NRuntime::PathText(path));
}

// `count` attribute values, each of a message of its own.
std::string MakeDatabase(int count) {
  std::string text =
      "BU_: A\nBA_DEF_ BO_ \"GenMsgCycleTime\" INT 0 65535;\nBA_DEF_DEF_ \"GenMsgCycleTime\" 0;\n";
  for (int i = 0; i < count; ++i) {
    const std::string id = std::to_string(0x80000000u + static_cast<unsigned>(i));
    text += "BO_ " + id + " Message_" + std::to_string(i) + ": 8 A\n SG_ S : 0|8@1+ (1,0) [0|255] \"\" A\n";
    text += "BA_ \"GenMsgCycleTime\" BO_ " + id + " 100;\n";
  }
  return text;
}

std::string MakeDescription(int count) {
  std::string list = "[ManufacturerObjects]\nSupportedObjects=" + std::to_string(count) + "\n", objects;
  for (int i = 0; i < count; ++i) {
    char index[16];
    std::snprintf(index, sizeof index, "%04X", 0x2000 + i);
    list += std::to_string(i + 1) + "=0x" + index + "\n";
    objects += std::string("[") + index + "]\nParameterName=Parameter " + index +
               " of a device with many\nObjectType=0x7\nDataType=0x0007\nAccessType=rw\nLowLimit=0\n"
               "HighLimit=0xFFFFFFFF\nDefaultValue=$NODEID+0x180\nPDOMapping=1\nObjFlags=0\n\n";
  }
  return list + objects;
}

void OpenDatabase(benchmark::State& state) {
  const std::string content = MakeDatabase(static_cast<int>(state.range(0)));
  const std::wstring path = Write("ostrel-bench.dbc", content);
  const auto manager = NDatabases::MakeManager();
  for (auto _ : state) {
    NRuntime::ComPtr<NSdk::ICanDatabase> database;
    if (manager->OpenFile(path.c_str(), database.Out()) != S_OK) state.SkipWithError("not opened");
  }
  state.counters["bytes"] = static_cast<double>(content.size());
  fs::remove(path);
}

void LoadDescription(benchmark::State& state) {
  const std::string content = MakeDescription(static_cast<int>(state.range(0)));
  const std::wstring path = Write("ostrel-bench.eds", content);
  const auto loader = NDescriptions::MakeLoader();
  for (auto _ : state) {
    if (loader->Load(path.c_str()) != CODESCRLDR::kLoaded) state.SkipWithError("not loaded");
  }
  state.counters["bytes"] = static_cast<double>(content.size());
  fs::remove(path);
}

BENCHMARK(OpenDatabase)->Arg(1'000)->Arg(10'000)->Unit(benchmark::kMillisecond);
BENCHMARK(LoadDescription)->Arg(3'000)->Arg(30'000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
