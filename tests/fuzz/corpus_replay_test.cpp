// Replays what fuzzing found worth keeping through a fuzz target, without the fuzzer: every file of the
// folder OSTREL_CORPUS.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

TEST(Corpus, Replays) {
  int count = 0;
  for (const auto& file : std::filesystem::directory_iterator(OSTREL_CORPUS)) {
    std::ifstream stream(file.path(), std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    SCOPED_TRACE(file.path().string());
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    ++count;
  }
  EXPECT_GT(count, 0);
}
