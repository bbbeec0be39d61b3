#include "canopen/vocabulary.h"

#include <gmock/gmock.h>

#include <set>

namespace NCanopen {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::SizeIs;

TEST(CobId, IsShownWithoutItsFlagBits) {
  EXPECT_EQ(CobIdText(0x181), "181");
  EXPECT_EQ(CobIdText(0), "0");
  EXPECT_EQ(CobIdText(0x20000800), "800x");
  EXPECT_EQ(CobIdText(0x3FFFFFFF), "1FFFFFFFx");
  EXPECT_EQ(CobIdText(kCobIdInvalid | 0x6FF), "6FF");
  EXPECT_EQ(CobIdText(kCobIdInvalid | kCobIdExtended | 0x6FF), "6FFx");
}

TEST(CobId, FollowsThePredefinedConnectionSet) {
  EXPECT_EQ(EmcyCobId(1), 0x81u);
  EXPECT_EQ(TpdoCobId(5, 1), 0x185u);
  EXPECT_EQ(TpdoCobId(127, 4), 0x4FFu);
  EXPECT_EQ(SdoRequestCobId(127), 0x67Fu);
  EXPECT_EQ(SdoResponseCobId(127), 0x5FFu);
  EXPECT_EQ(ErrorControlCobId(127), 0x77Fu);
}

TEST(Choices, OfferFourPdosOfANodeOnly) {
  for (const std::uint32_t nodeId : {0u, 128u, 0xFFFFFFFFu})
    EXPECT_THAT(PdoChoices(nodeId), IsEmpty()) << nodeId;
  EXPECT_THAT(PdoChoices(1), ElementsAre(Field(&CobIdChoice::label, "181 (Node 1 TPDO 0)"),
                                         Field(&CobIdChoice::label, "281 (Node 1 TPDO 1)"),
                                         Field(&CobIdChoice::label, "381 (Node 1 TPDO 2)"),
                                         Field(&CobIdChoice::label, "481 (Node 1 TPDO 3)")));
  const auto last = PdoChoices(127).at(3);
  EXPECT_EQ(last.cobId, 0x4FFu);
  EXPECT_EQ(last.label, "4FF (Node 127 TPDO 3)");
}

TEST(Choices, AreLabelled) {
  EXPECT_EQ(DatabasePdoLabel(0x20012345, 7, 1), "12345x (N7_TPDO1)");
  EXPECT_EQ(EmcyLabel(5), "85 (EMCY_005)");
  EXPECT_EQ(ErrorControlLabel(127), "77F (HBGuard_127)");
  EXPECT_EQ(DefaultSdoLabel(1), "601 (Default)");
  EXPECT_EQ(SdoServerLabel(0x640, 10), "640 (Server A)");
  EXPECT_EQ(NodeLabel(12, "Drive"), "12 (Drive)");
}

TEST(Tables, HaveEveryCodeOnce) {
  EXPECT_THAT(NmtCommands(), SizeIs(5));
  EXPECT_THAT(NodeStates(), SizeIs(4));
  ASSERT_THAT(EmcyClasses(), SizeIs(32));
  std::uint32_t previous = 0;
  for (const CodeLabel& entry : EmcyClasses().subspan(1)) {
    EXPECT_GT(entry.code, previous) << entry.label;
    previous = entry.code;
  }
}

// A class label names its range; the code that is stored must be the first of it.
TEST(Tables, EmcyCodesAgreeWithTheRangesInTheirLabels) {
  unsigned ranges = 0;
  for (const CodeLabel& entry : EmcyClasses()) {
    const std::string label = entry.label;
    const auto bracket = label.find('[');
    if (bracket == std::string::npos) continue;
    ++ranges;
    EXPECT_EQ(std::stoul(label.substr(bracket + 1), nullptr, 16), entry.code) << label;
    EXPECT_TRUE(label.ends_with("FF]")) << label;
  }
  EXPECT_EQ(ranges, 25u);
}

}  // namespace
}  // namespace NCanopen
