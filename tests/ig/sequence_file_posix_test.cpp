// What only this platform can do to a sequence file.
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <fstream>

#include "canopen/flow_items.h"
#include "ig/sequence_file.h"
#include "ig/sequence_file_text.h"

namespace NIg {
namespace {

namespace fs = std::filesystem;

// The size limit of the process stands for a full disk.
TEST(SequenceFilePosix, LeavesNoHalfWrittenFile) {
  NCanopen::ItemList items;
  for (int count = 0; count < 1000; ++count)
    items.push_back(std::make_unique<NCanopen::ZPauseItemInfo>(nullptr));
  const fs::path path = fs::path(testing::TempDir()) / "ostrel-full.seq";
  std::ofstream(path) << "old";
  rlimit limit;
  getrlimit(RLIMIT_FSIZE, &limit);
  const rlimit small = {20000, limit.rlim_max};
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  setrlimit(RLIMIT_FSIZE, &small);
  std::string fault;
  const int result = SaveSequenceFile(path, items, {}, &fault);
  setrlimit(RLIMIT_FSIZE, &limit);
  std::signal(SIGXFSZ, handler);
  EXPECT_EQ(result, 1);
  EXPECT_EQ(fault, "the file cannot be written completely");
  EXPECT_FALSE(fs::exists(path));
}

TEST(SequenceFilePosix, DoesNotWaitForAPipe) {
  const fs::path pipe = fs::path(testing::TempDir()) / "ostrel-pipe.seq";
  fs::remove(pipe);
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  NCanopen::ItemList items;
  std::string fault;
  EXPECT_EQ(LoadSequenceFile(pipe, items, items, nullptr, &fault), 0);
  EXPECT_EQ(fault, "this is not a file");
  EXPECT_EQ(SaveSequenceFile(pipe, items, items, &fault), 1);
  EXPECT_NE(fault, "");
  EXPECT_TRUE(fs::is_fifo(pipe));
  fs::remove(pipe);
}

// Item texts are UTF-8; whatever is not becomes "?".
TEST(SequenceFilePosix, DecodesUtf8) {
  const struct {
    std::string bytes;
    XmlText text;
    bool exact;
  } rows[] = {
      {"a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80z", u"a\u00E4\u20AC\U0001F600z", true},
      {"\xEF\xBF\xBF\xF4\x8F\xBF\xBF", u"\uFFFF\U0010FFFF", true},
      {"\xC0\x80", u"??", false},            // longer than needed
      {"\xE0\x9F\xBF", u"???", false},       // longer than needed
      {"\xED\xA0\x80", u"???", false},       // surrogate
      {"\xF4\x90\x80\x80", u"????", false},  // beyond the last character
      {"\xC3", u"?", false},                 // cut off
      {"\xF0\x9F\x98", u"?", false},         // cut off
      {"\xEF\xBF\xBD", u"\uFFFD", true},     // what stands for such elsewhere, meant as it is
      {"\xC3z\x80\xFFy", u"?z??y", false},   // goes on behind it
  };
  for (const auto& row : rows) {
    bool exact = !row.exact;
    EXPECT_EQ(FromLocal(row.bytes, &exact), row.text) << row.bytes;
    EXPECT_EQ(exact, row.exact) << row.bytes;
    if (row.exact) {
      EXPECT_EQ(ToLocal(row.text), row.bytes);
    }
  }
  EXPECT_EQ(ToLocal(XmlText{XMLCh{0xD83D}, XMLCh{'a'}, XMLCh{0xDE00}, XMLCh{0xD83D}}), "?a??");
}

}  // namespace
}  // namespace NIg
