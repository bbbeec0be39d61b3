#pragma once
// Files and a shorthand for tests of typed data.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "editors/typed_data.h"
#include "tests/test_folder.h"

namespace NTests {

using Bytes = std::vector<std::uint8_t>;

// With files of known contents.
struct DataFolder : NTest::TestFolder {
  DataFolder() {
    Write("four.bin", "\x01\xFFz\n");
    Write("empty.bin", "");
    Write("folder/inner.bin", "in");
  }
  void Write(const char* name, const std::string& contents) const {
    NTest::WriteFile(*this / name, contents);
  }
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
