#pragma once
// Files and a shorthand for tests of typed data.

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "editors/typed_data.h"

namespace NTests {

using Bytes = std::vector<std::uint8_t>;

// A folder with files of known contents, removed at the end.
class DataFolder {
 public:
  DataFolder() {
    const auto* test = testing::UnitTest::GetInstance()->current_test_info();
    mPath = std::filesystem::temp_directory_path() / (std::string("ostrel-editors-") + test->name());
    std::filesystem::remove_all(mPath);
    std::filesystem::create_directories(mPath / "folder");
    Write("four.bin", "\x01\xFFz\n");
    Write("empty.bin", "");
    Write("folder/inner.bin", "in");
  }
  ~DataFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(mPath, ignored);
  }
  const std::filesystem::path& Path() const { return mPath; }

  void Write(const char* name, const std::string& contents) const {
    std::ofstream(mPath / name, std::ios::binary) << contents;
  }

 private:
  std::filesystem::path mPath;
};

// What a text is encoded into; a failure must leave the result untouched.
inline std::optional<Bytes> Parse(const std::string& text, std::uint32_t size,
                                  const std::filesystem::path& folder = {}) {
  const Bytes untouched = {0xEE};
  Bytes bytes = untouched;
  if (NEditors::ParseTypedData(text, bytes, size, folder)) return bytes;
  EXPECT_EQ(bytes, untouched) << text;
  return std::nullopt;
}

}  // namespace NTests
