// Sparse, device and pipe files, which only POSIX systems make at no cost.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/editors/data_folder.h"

namespace {

using NTests::Bytes;
using NTests::DataFolder;
using NTests::Parse;

TEST(TypedData, AFileOfFourGibibytesHasNoLengthButItsFrontCanBeSent) {
  const DataFolder data;
  std::uint32_t size = 0;
  const auto file = data.Path() / "empty.bin";
  std::filesystem::resize_file(file, 0xFFFF'FFFFu);
  EXPECT_TRUE(NEditors::GetNaturalLength("empty.bin", NEditors::kDataFile, size, data.Path()));
  EXPECT_EQ(size, 0xFFFF'FFFFu);
  std::filesystem::resize_file(file, 0x1'0000'0000u);
  EXPECT_FALSE(NEditors::GetNaturalLength("empty.bin", NEditors::kDataFile, size, data.Path()));
  EXPECT_EQ(Parse("file:empty.bin", 3, data.Path()), (Bytes{0, 0, 0}));
}

// A device would be read without end and a pipe would block.
TEST(TypedData, OpensRegularFilesOnly) {
  const DataFolder data;
  EXPECT_FALSE(Parse("file:/dev/zero", 4, data.Path()));
  ASSERT_EQ(mkfifo((data.Path() / "pipe").c_str(), 0600), 0);
  EXPECT_FALSE(Parse("file:pipe", 4, data.Path()));
}

}  // namespace
