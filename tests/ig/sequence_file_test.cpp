#include "ig/sequence_file.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>

#include "canopen/flow_items.h"
#include "canopen/message_items.h"
#include "ig/sequence_file_text.h"
#include "tests/test_folder.h"

namespace NIg {
namespace {

using NCanopen::ItemList;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace fs = std::filesystem;

// Kind, attributes line, and whether it is switched off: all that a row of a list shows.
std::vector<std::string> Rows(const ItemList& items) {
  std::vector<std::string> rows;
  for (const auto& item : items) {
    rows.push_back(std::string(item->GetTypeName()) + ": " + item->GetAttributesText() +
                   (item->IsEnabled() ? "" : " (off)"));
  }
  return rows;
}

class SequenceFile : public testing::Test {
 protected:
  int Save() { return SaveSequenceFile(mPath, mSequence, mCyclic, &mFault); }
  int Load() { return LoadSequenceFile(mPath, mSequence, mCyclic, &mHexDisplay, &mFault); }
  int LoadText(const std::string& text) {
    std::ofstream(mPath, std::ios::binary | std::ios::trunc) << text;
    return Load();
  }
  int LoadElements(const std::string& sequence, const std::string& cyclic) {
    mSequence.clear();
    mCyclic.clear();
    return LoadText("<CANopenIG><Sequence>" + sequence + "</Sequence><CyclicMsgs>" + cyclic +
                    "</CyclicMsgs></CANopenIG>");
  }

  template <class Item>
  void Append(ItemList& list, void (*change)(decltype(Item::record)&)) {
    auto item = std::make_unique<Item>(&mHexDisplay);
    change(item->record);
    list.push_back(std::move(item));
  }
  // Every kind, every field off its default.
  void AppendMessages(ItemList& list);

  bool mHexDisplay = true;
  const NTest::TestFolder mFolder;
  fs::path mPath = mFolder / u8"Pr\u00FCfung 1.seq";
  ItemList mSequence;
  ItemList mCyclic;
  std::string mFault;
};

void SequenceFile::AppendMessages(ItemList& list) {
  const std::size_t begin = list.size();
  Append<NCanopen::ZPDOItemInfo>(list,
                                 [](auto& r) { r = {0x20000800, "string:\"<&>'\ta\n", 5, 0, 51, 1, 8, 1}; });
  Append<NCanopen::ZSDOItemInfo>(list, [](auto& r) {
    r = {0x640, 0x5C0, "file:a b.bin", 127, 52, 2, 0xFFFF, 0xAB, 1, 1, 4294967295, 1, 0};
  });
  Append<NCanopen::ZNMTItemInfo>(list, [](auto& r) { r = {129, 0, 53, 3}; });
  Append<NCanopen::ZSyncItemInfo>(list, [](auto& r) { r = {0x90, 54, 4}; });
  Append<NCanopen::ZEmcyItemInfo>(list, [](auto& r) {
    r = {0x9F, 31, 0x8130, 0x11, {1, 2, 3, 4, 255}, 55, 5};
  });
  Append<NCanopen::ZHBeatItemInfo>(list, [](auto& r) { r = {0x77F, 0x85, 127, 56, 6}; });
  Append<NCanopen::ZGuardingItemInfo>(list, [](auto& r) { r = {0x77F, 0x84, 1, 57, 7}; });
  Append<NCanopen::ZRTRItemInfo>(list, [](auto& r) { r = {1, 0x77F, 3, 58, 8}; });
  list[begin]->SetEnabled(0);
}

TEST_F(SequenceFile, WritesAndReadsTheSample) {
  AppendMessages(mSequence);
  Append<NCanopen::ZPauseItemInfo>(mSequence, [](auto& r) { r = {2000000}; });
  Append<NCanopen::ZCycSendStateItemInfo>(mSequence, [](auto& r) { r = {0}; });
  AppendMessages(mCyclic);
  std::ofstream(mPath) << std::string(100000, 'x');  // what stands there is replaced entirely
  ASSERT_EQ(Save(), 1);
  EXPECT_EQ(mFault, "");
  const fs::path sample = fs::path(OSTREL_TEST_DATA) / "seq" / "all_kinds.seq";
  EXPECT_EQ(NTest::ReadFile(mPath), NTest::ReadFile(sample));

  ItemList sequence;
  ItemList cyclic;
  ASSERT_EQ(LoadSequenceFile(sample, sequence, cyclic, &mHexDisplay, &mFault), 1) << mFault;
  EXPECT_EQ(Rows(sequence), Rows(mSequence));
  EXPECT_EQ(Rows(cyclic), Rows(mCyclic));
  for (std::size_t at = 0; at < cyclic.size(); ++at) {
    EXPECT_EQ(cyclic[at]->GetCycle(), mCyclic[at]->GetCycle());
    EXPECT_EQ(cyclic[at]->GetDelay(), mCyclic[at]->GetDelay());
    // In the sequence list times are not stored.
    const auto fresh = NCanopen::KindOf(*sequence[at]).make(nullptr);
    EXPECT_EQ(sequence[at]->GetCycle(), fresh->GetCycle());
    for (const auto& field : NCanopen::KindOf(*cyclic[at]).fields) {
      if (field.encoding == NCanopen::Encoding::Text) {
        EXPECT_EQ(field.text(*cyclic[at]), field.text(*mCyclic[at]));
        continue;
      }
      EXPECT_EQ(field.number(*cyclic[at]), field.number(*mCyclic[at]))
          << cyclic[at]->GetTypeName() << field.key;
    }
  }
}

TEST_F(SequenceFile, WritesEmptyLists) {
  ASSERT_EQ(Save(), 1);
  EXPECT_THAT(NTest::ReadFile(mPath), HasSubstr("<Sequence/>\r\n"));
  EXPECT_THAT(NTest::ReadFile(mPath), HasSubstr("<CyclicMsgs/>\r\n"));
  EXPECT_EQ(Load(), 1) << mFault;
}

TEST_F(SequenceFile, AppendsWhatItReads) {
  AppendMessages(mSequence);
  ASSERT_EQ(Save(), 1);
  ASSERT_EQ(Load(), 1);
  EXPECT_THAT(mSequence, SizeIs(16));
}

// Which element gives which row: in the sequence list, and in the cyclic list with both times.
struct ElementRow {
  const char* element;
  const char* row;  // "" = skipped
};
constexpr ElementRow kElementRows[] = {
    {R"(<PAUSE Enabled="1"/>)", "PAUSE: 1000 ms"},
    {R"(<PAUSE PauseMilliSec="5"/>)", ""},
    {R"(<PAUSE Enabled="" PauseMilliSec=""/>)", "PAUSE: 1000 ms"},
    {R"(<PAUSE Enabled="2" PauseMilliSec="5" More="x"><PAUSE Enabled="1"/></PAUSE>)", "PAUSE: 5 ms"},
    {R"(<CYCLETX StartFlag="0" Enabled="0"/>)", "CYCLETX: Stop (off)"},
    {R"(<pause Enabled="1"/>)", ""},
    {R"(<PAUSES Enabled="1"/>)", ""},
    {R"(<Item Enabled="1"/>)", ""},
    {R"(<SYNC Enabled="1"/>)", ""},
    {R"(<SYNC Enabled="1" COBID=""/>)", "SYNC: COBID 80"},
    {R"(<SYNC Enabled="1" COBID="0x20000081"/>)", "SYNC: COBID 81x"},
    {R"(<SYNC Enabled="1" COBID="385"/>)", "SYNC: COBID 80"},
    {R"(<PDO Enabled="1"/>)", "PDO: Node-ID 1, COBID 181, DLC 0, Data "},
    {R"(<PDO Enabled="1" NodeID="7" DLC="x" Data=" 01 02 "/>)",
     "PDO: Node-ID 7, COBID 181, DLC 0, Data  01 02 "},
    {R"(<SDO Enabled="1" Upload="1" Index="0x2000"/>)", "SDO: Upload, Node-ID 1, COBID 601, Object 2000sub0"},
    {R"(<NMT Enabled="1" NodeID="256" NMTState="2"/>)", "NMT: Node-ID 1, CS 2"},
    {R"(<EMCY Enabled="1" ErrCode="0x10000" Errreg="0xff"/>)",
     "EMCY: Node-ID 1, COBID 81, ErrCode 0, ErrReg FF, ManSpecific 0,0,0,0,0"},
    {R"(<HBEAT Enabled="1" NMTState="5"/>)", "HBEAT: Node-ID 1, COBID 701, State 5"},
    {R"(<RTR Enabled="1" DLC="8" NodeID="9"/>)", "RTR: COBID 181, DLC 8"},
    // A guarding item's node-ID is not read, and all else is required.
    {R"(<GUARD Enabled="1" NodeID="9" COBID="0x709" NMTState="133" ToggleBitStartValue="3"/>)",
     "GUARD: Node-ID 1, COBID 709, State 5, Toggle 1"},
    {R"(<GUARD Enabled="1" COBID="0x709" NMTState="x" ToggleBitStartValue="2"/>)",
     "GUARD: Node-ID 1, COBID 709, State 7F, Toggle 0"},
    {R"(<GUARD Enabled="1" NMTState="5" ToggleBitStartValue="1"/>)", ""},
    {R"(<GUARD Enabled="1" COBID="0x709" ToggleBitStartValue="1"/>)", ""},
    {R"(<GUARD Enabled="1" COBID="0x709" NMTState="5"/>)", ""},
};

TEST_F(SequenceFile, ReadsElements) {
  for (const ElementRow& row : kElementRows) {
    SCOPED_TRACE(row.element);
    const std::vector<std::string> expected =
        *row.row ? std::vector<std::string>{row.row} : std::vector<std::string>{};
    std::string timed = row.element;
    timed.insert(timed.find(' '), R"( SendCycle="10" SendDelay="20")");
    ASSERT_EQ(LoadElements(row.element, timed), 1) << mFault;
    EXPECT_EQ(Rows(mSequence), expected);
    EXPECT_EQ(Rows(mCyclic), expected);
  }
}

TEST_F(SequenceFile, RequiresTimesInTheCyclicListAlone) {
  const std::string both = R"(<SYNC COBID="0x80" Enabled="1" SendCycle="10" SendDelay="20"/>)";
  const std::string neither = R"(<SYNC COBID="0x80" Enabled="1"/>)";
  const std::string noDelay = R"(<SYNC COBID="0x80" Enabled="1" SendCycle="10"/>)";
  const std::string noCycle = R"(<SYNC COBID="0x80" Enabled="1" SendDelay="20"/>)";
  const std::string unreadable = R"(<SYNC COBID="0x80" Enabled="1" SendCycle="x" SendDelay="20"/>)";
  ASSERT_EQ(LoadElements(both + neither, both + neither + noDelay + noCycle + unreadable), 1);
  ASSERT_THAT(mSequence, SizeIs(2));
  EXPECT_EQ(mSequence[0]->GetCycle(), 150u);
  ASSERT_THAT(mCyclic, SizeIs(2));
  EXPECT_EQ(mCyclic[0]->GetCycle(), 10u);
  EXPECT_EQ(mCyclic[0]->GetDelay(), 20u);
  EXPECT_EQ(mCyclic[1]->GetCycle(), 150u);
}

TEST_F(SequenceFile, FindsItsListsByName) {
  const std::string pause = R"(<PAUSE Enabled="1"/>)";
  const struct {
    std::string document;
    std::size_t sequence;
  } rows[] = {
      {"<Other><Deeper><Sequence>" + pause + "</Sequence></Deeper></Other>", 1},
      {"<Sequence>" + pause + pause + "</Sequence>", 2},
      {"<a><Sequence>" + pause + "</Sequence><Sequence/></a>", 0},
      {"<a><Sequence>" + pause + "<Sequence/></Sequence></a>", 0},
      {"<CANopenIG/>", 0},
      {"<a>text<Sequence>text<!-- " + pause + " -->" + pause + "<?pi " + pause + "?>text</Sequence>text</a>",
       1},
      {"\xEF\xBB\xBF<!DOCTYPE a><a><Sequence>" + pause + "</Sequence></a>", 1},
  };
  for (const auto& row : rows) {
    mSequence.clear();
    EXPECT_EQ(LoadText(row.document), 1) << row.document << mFault;
    EXPECT_THAT(mSequence, SizeIs(row.sequence)) << row.document;
    EXPECT_THAT(mCyclic, IsEmpty());
  }
}

TEST(SequenceFileNumbers, AreScanned) {
  using NCanopen::Encoding;
  const struct {
    Encoding encoding;
    const char* text;
    std::optional<std::uint32_t> value;
  } rows[] = {
      {Encoding::Decimal, "0", 0},
      {Encoding::Decimal, "4294967295", 4294967295},
      {Encoding::Decimal, "4294967296", {}},
      {Encoding::Decimal, "99999999999999999999999", {}},
      {Encoding::Decimal, " \t\r\n+12 ms", 12},
      {Encoding::Decimal, "-1", 4294967295},
      {Encoding::Decimal, "0x10", 0},  // the digits end at the "x"
      {Encoding::Decimal, "1.9", 1},
      {Encoding::Decimal, "", {}},
      {Encoding::Decimal, " ", {}},
      {Encoding::Decimal, "+", {}},
      {Encoding::Decimal, "- 1", {}},
      {Encoding::Decimal, "+-1", {}},
      {Encoding::Decimal, "x1", {}},
      {Encoding::Hexadecimal, "0x181", 0x181},
      {Encoding::Hexadecimal, "0xaBcDeF", 0xABCDEF},
      {Encoding::Hexadecimal, "0x00000000181", 0x181},
      {Encoding::Hexadecimal, "0xFFFFFFFF", 0xFFFFFFFF},
      {Encoding::Hexadecimal, "0x100000000", {}},
      {Encoding::Hexadecimal, "0x181x", 0x181},
      {Encoding::Hexadecimal, "181", {}},
      {Encoding::Hexadecimal, "385", {}},
      {Encoding::Hexadecimal, "0X181", {}},
      {Encoding::Hexadecimal, " 0x181", {}},
      {Encoding::Hexadecimal, "0x 181", 0x181},
      {Encoding::Hexadecimal, "0x", {}},
      {Encoding::Hexadecimal, "0xG", {}},
  };
  for (const auto& row : rows) EXPECT_EQ(ParseNumberText(row.text, row.encoding), row.value) << row.text;
}

// ---- data text

// What a "string:" or a "bytearr:" sends.
std::string Bytes(const std::string& text) {
  if (text.starts_with("string:")) return text.substr(7);
  std::string bytes;
  for (std::size_t at = 8; at + 1 < text.size(); at += 2) {
    bytes += static_cast<char>(std::stoi(text.substr(at, 2), nullptr, 16));
  }
  return bytes;
}

TEST_F(SequenceFile, KeepsTheBytesOfAnyString) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
  std::vector<std::string> strings = {all, all.substr(32, 95), "\x7F\t\r\n ", "]]>&amp;&#1;"};
  for (const char byte : all) strings.push_back("a" + std::string(1, byte) + "b");
  for (const std::string& bytes : strings) {
    auto item = std::make_unique<NCanopen::ZPDOItemInfo>(nullptr);
    item->record.data = "string:" + bytes;
    mSequence.push_back(std::move(item));
  }
  ASSERT_EQ(Save(), 1);
  EXPECT_EQ(mFault, "");
  mSequence.clear();
  ASSERT_EQ(Load(), 1) << mFault;
  ASSERT_THAT(mSequence, SizeIs(strings.size()));
  for (std::size_t at = 0; at < strings.size(); ++at) {
    EXPECT_EQ(Bytes(dynamic_cast<NCanopen::ZPDOItemInfo&>(*mSequence[at]).record.data), strings[at]) << at;
  }
}

TEST_F(SequenceFile, TellsWhichTextItHadToChange) {
  Append<NCanopen::ZSDOItemInfo>(mSequence, [](auto& r) { r.data = "file:a\x01.bin"; });
  ASSERT_EQ(Save(), 1);
  EXPECT_THAT(mFault, HasSubstr("SDO"));
  mSequence.clear();
  ASSERT_EQ(Load(), 1) << mFault;
  EXPECT_EQ(dynamic_cast<NCanopen::ZSDOItemInfo&>(*mSequence[0]).record.data, "file:a?.bin");
}

// ---- files that are not what they should be

std::string Repeated(const std::string& text, int count) {
  std::string all;
  for (int at = 0; at < count; ++at) all += text;
  return all;
}

std::string ManyNames(const char* before, const char* after) {
  std::string all = "<a>";
  for (int at = 0; at < 1500; ++at) all += before + std::to_string(at) + after;
  return all + "</a>";
}

TEST_F(SequenceFile, RefusesHostileDocuments) {
  const std::string secret = (fs::path(OSTREL_TEST_DATA) / "seq" / "all_kinds.seq").generic_string();
  const std::string kOwnType = "no document type of its own";
  const struct {
    std::string document;
    std::string fault;
  } rows[] = {
      {"", "invalid document"},
      {"no XML at all", "line 1, column 1"},
      {std::string(1000, '\0'), "invalid document"},
      {"<CANopenIG><Sequence>", "line 1"},
      {"<CANopenIG><Sequence></CANopenIG>", "Sequence"},
      {"<CANopenIG>\n<Sequence><PDO Data='<'/></Sequence></CANopenIG>", "line 2"},
      {"<CANopenIG><Sequence><PDO Data='\xC3'/></Sequence></CANopenIG>", "byte"},
      {"<CANopenIG><Sequence><PDO Data='&unknown;'/></Sequence></CANopenIG>", "unknown"},
      {"<?xml version='1.0' encoding='nonsense'?><CANopenIG/>", "NONSENSE"},
      {"<!DOCTYPE a [<!ENTITY b SYSTEM 'file://" + secret + "'>]><a>&b;</a>", kOwnType},
      {"<!DOCTYPE a [<!ENTITY % b '<!ENTITY c \"d\">'> %b;]><a/>", kOwnType},
      {"<!DOCTYPE a [<!ENTITY b 'bb'><!ENTITY c '&b;&b;'>]><a>&c;</a>", kOwnType},
      {"<!DOCTYPE a [<!ATTLIST PDO Enabled CDATA '1'>]><a/>", kOwnType},
      {Repeated("<a>", 100000) + Repeated("</a>", 100000), "too deeply"},
      {"<a>" + Repeated("<b/>", 3000000) + "</a>", "too many elements"},
      {ManyNames("<b", "/>"), "different names"},
      {ManyNames("<b c", "=''/>"), "different names"},
  };
  AppendMessages(mSequence);
  for (const auto& row : rows) {
    SCOPED_TRACE(row.document.substr(0, 100));
    EXPECT_EQ(LoadText(row.document), 0);
    EXPECT_THAT(mFault, HasSubstr(row.fault));
    EXPECT_THAT(mSequence, SizeIs(8));
    EXPECT_THAT(mCyclic, IsEmpty());
  }
}

TEST_F(SequenceFile, RefusesCrowdedElements) {
  for (const int count : {1500, 200000}) {
    std::string element = "<a";
    for (int at = 0; at < count; ++at) element += " b" + std::to_string(at) + "=''";
    EXPECT_EQ(LoadText(element + "/>"), 0);
    EXPECT_THAT(mFault, HasSubstr("too many attributes"));
  }
}

TEST_F(SequenceFile, LeavesAnExternalDocumentTypeUnread) {
  mSequence.clear();
  const std::string body = "<a><Sequence><PAUSE Enabled='1'/></Sequence></a>";
  for (const char* address : {"http://127.0.0.1:1/a.dtd", "file:///dev/zero", "missing.dtd"}) {
    EXPECT_EQ(LoadText(std::string("<!DOCTYPE a SYSTEM '") + address + "'>" + body), 1) << mFault;
  }
  EXPECT_THAT(mSequence, SizeIs(3));
}

TEST_F(SequenceFile, TakesAHugeText) {
  const std::string digits(2'000'000, '7');
  ASSERT_EQ(LoadElements("<PDO Enabled='1' DLC='" + digits + "' Data='" + digits + "'/>", ""), 1) << mFault;
  EXPECT_EQ(dynamic_cast<NCanopen::ZPDOItemInfo&>(*mSequence[0]).record.data, digits);
}

TEST_F(SequenceFile, OpensOnlyFiles) {
  EXPECT_EQ(Load(), 0);
  EXPECT_EQ(mFault, "there is no such file");
  fs::create_directory(mPath);
  EXPECT_EQ(Load(), 0);
  EXPECT_EQ(mFault, "this is not a file");
  EXPECT_EQ(LoadSequenceFile({}, mSequence, mCyclic, nullptr), 0);
  fs::remove(mPath);
  std::ofstream(mPath).close();
  fs::resize_file(mPath, kMaxSequenceFileSize + 1);
  EXPECT_EQ(Load(), 0);
  EXPECT_THAT(mFault, HasSubstr("too large"));
}

// ---- writing that does not work

TEST_F(SequenceFile, ReportsWhatCannotBeWritten) {
  const fs::path folder = mPath;
  fs::create_directory(folder);  // an empty folder is easily deleted by mistake
  EXPECT_EQ(Save(), 1);
  EXPECT_NE(mFault, "");
  EXPECT_TRUE(fs::is_directory(folder));

  mPath = mFolder / "missing" / "lists.seq";
  EXPECT_EQ(Save(), 1);
  EXPECT_NE(mFault, "");
  EXPECT_FALSE(fs::exists(mPath));

  mPath.clear();
  EXPECT_EQ(Save(), 1);
  EXPECT_NE(mFault, "");
}

}  // namespace
}  // namespace NIg
