// Replays what fuzzing found worth keeping through the fuzz target, without the fuzzer.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

TEST(DeviceCorpus, Replays) {
  const std::filesystem::path corpus = std::filesystem::path(OSTREL_SOURCE_DIR) / "fuzz/corpus/device";
  int count = 0;
  for (const auto& file : std::filesystem::directory_iterator(corpus)) {
    std::ifstream stream(file.path(), std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    SCOPED_TRACE(file.path().string());
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    ++count;
  }
  EXPECT_GT(count, 0);
}
