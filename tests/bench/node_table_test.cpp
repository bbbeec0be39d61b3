#include <gmock/gmock.h>

#include "host/bench/node_table.h"
#include "host/bench/node_words.h"

namespace {

using NBench::ScannedNode;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

ScannedNode MakeNode(std::uint32_t id, const std::string& name) {
  ScannedNode node;
  node.id = id;
  node.channel = 1;
  node.state = NSdk::kNodePreOperational;
  node.alive = true;
  node.cells = {std::to_string(id), "Preoperational", "1", name, " ", "?"};
  node.name = name;
  return node;
}

NBench::NodeTable MakeTable(std::vector<ScannedNode> nodes) {
  return {{"ID", "State", "CAN", "Name", "Master", "Priority"}, std::move(nodes)};
}

std::size_t Widest(const std::vector<std::string>& lines) {
  std::size_t widest = 0;
  for (const std::string& line : lines) widest = std::max(widest, line.size());
  return widest;
}

TEST(NodeTable, TextFromTheBusIsHarmlessOnAScreen) {
  const std::pair<const char*, const wchar_t*> cases[] = {
      {"I/O \"5\" ~", L"I/O \"5\" ~"},
      {"a\x1B[2J\r\n\tb\x7F", L"a?[2J???b?"},
      {"Ger\xC3\xA4t \xD0\x96", L"Ger\u00E4t \u0416"},
      {"\xC2\x9B\x31m \xC2\xAD", L"?1m ?"},                // a control of one code, a soft hyphen
      {"\xE2\x80\xAE.\xCC\x81.\xEF\xBB\xBF.", L"?.?.?."},  // right to left, combining, no character
      {"\xFF\xC3", L"??"},                                 // no UTF-8
      {"\xE6\x97\xA5.", L"?."},                            // takes two columns
  };
  for (const auto& [text, shown] : cases) EXPECT_EQ(NBench::Printable(text), shown);
}

TEST(NodeTable, FitsItsPlaceAndGivesUpWhatMattersLeast) {
  ScannedNode io = MakeNode(5, "Simulated I/O device");
  io.errorRegister = 0x11;
  io.profile = 401;
  io.serial = 5;
  const auto table = MakeTable({io, MakeNode(127, std::string(300, 'n'))});
  for (const std::size_t width : {600, 132, 100, 79, 59, 40, 20, 1}) {
    EXPECT_LE(Widest(NBench::TableLines(table, width)), width);
  }
  EXPECT_THAT(NBench::TableLines(table, 600)[1], HasSubstr("11h generic, communication"));
  const auto usual = NBench::TableLines(table, 79);
  EXPECT_EQ(usual[0], "ID  State          CAN Name                   Mast Prio Alive Err Prof Vend Ser");
  EXPECT_EQ(usual[1], "5   Preoperational 1   Simulated I/O device        ?    yes   11h 401  --   5");
  const auto narrow = NBench::TableLines(table, 59);
  EXPECT_THAT(narrow[0], testing::AllOf(HasSubstr("Prof"), Not(HasSubstr("Prio"))));
  EXPECT_THAT(narrow[1], HasSubstr("Simulated I/"));
}

TEST(NodeTable, KeepsToTheHeightOfATerminal) {
  std::vector<ScannedNode> nodes;
  for (std::uint32_t id = 1; id <= 30; ++id) nodes.push_back(MakeNode(id, "--"));
  const auto lines = NBench::LiveLines(MakeTable(nodes), {80, 10}, "at the end");
  ASSERT_EQ(lines.size(), 10u);
  EXPECT_THAT(lines[7], testing::StartsWith("7 "));
  EXPECT_EQ(lines[8], "and 23 nodes more");
  EXPECT_EQ(lines[9], "at the end");
  EXPECT_THAT(NBench::LiveLines(MakeTable({}), {80, 10}, "none yet"), ElementsAre("none yet"));
}

TEST(NodeChanges, AreToldOnceEach) {
  ScannedNode before = MakeNode(5, "--");
  before.name.reset();
  ScannedNode after = before;
  after.state = NSdk::kNodeOperational;
  after.cells[NSdk::kColumnState] = "Operational";
  after.alive = false;
  after.errorRegister = 0x81;
  after.name = "\x1B]0;x\a";
  after.vendorId = 0x1A;
  after.cells[NSdk::kColumnMaster] = "x";
  after.cells[NSdk::kColumnPriority] = "3";
  std::vector<std::string> lines;
  ScannedNode odd = MakeNode(4, "--");
  odd.state = 17;
  odd.cells[NSdk::kColumnState].clear();
  odd.name.reset();
  for (const auto& change : NBench::DescribeChanges({before}, {odd, after}))
    lines.push_back(ChangeLine(change));
  EXPECT_THAT(lines, ElementsAre("  can1  node 4: heard, state 17", "  can1  node 5: state Operational",
                                 "  can1  node 5: silent",
                                 "  can1  node 5: error register 81h (generic, manufacturer)",
                                 "  can1  node 5: NMT master", "  can1  node 5: priority as NMT master 3",
                                 "  can1  node 5: name \"?]0;x?\"", "  can1  node 5: vendor-ID 1Ah"));
  EXPECT_TRUE(NBench::DescribeChanges({odd, after}, {odd, after}).empty());
}

}  // namespace
