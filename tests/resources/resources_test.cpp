#include <gtest/gtest.h>

#include "com/assertion.h"
#include "resources/resource_ids.h"
#include "resources/string_table.h"
#include "resources/text.h"

namespace {

// On Windows this compares what the resource compiler made of the table with what C++ reads.
TEST(Resources, EveryTextOfTheTableIsLoaded) {
  const auto table = NResources::StringTable();
  ASSERT_FALSE(table.empty());
  for (const auto& entry : table) EXPECT_EQ(NResources::LoadText(entry.id), entry.text) << entry.id;
}

TEST(Resources, NumbersAndEscapesAreThePrescribedOnes) {
  const struct {
    std::uint32_t id;
    const wchar_t* text;
  } rows[] = {
      {103, L"Insert/activate CANopen IG to enable this button"},
      {210, L"Preoperational"},
      {400, L"Clear"},
      {456, L"EMCY Manufacturer Specific"},
      {764, L"CANopen Interactive Generator Block"},
      {769, L"Please enter a value in the range from %X to %X (hex.)\n"},
      {772, L"Invalid syntax or value range"},
      {822,
       LR"(CANopen NMT message cannot be transmitted because the network "%s"
does not contain CANopen interactive generator block.
Please stop the measurement and insert this block in the simulation setup.)"},
      {838,
       LR"(Please enter a value less than or equal to %X (hex.)
Use the trailing "x" to specify extended CAN-ID (e.g. 800x))"},
      {1612, L"CANopen NMT Management"},
  };
  for (const auto& row : rows) EXPECT_EQ(NResources::LoadText(row.id), row.text) << row.id;
  EXPECT_EQ(NResources::LoadText(IDS_NMT_NEEDS_IG), NResources::LoadText(IDS_NMT_ALL_NODES_TIP));
}

TEST(Resources, AMissingTextRaisesTheAssertion) {
  for (const std::uint32_t id : {0u, 1u, 102u + 0x10000u, 999u, 0xFFFFFFFFu}) {
    try {
      NResources::LoadText(id);
      ADD_FAILURE() << id;
    } catch (const NCom::ZAssertion& assertion) {
      EXPECT_STREQ(assertion.what(), "E:\"noOfChar\"");
    }
  }
}

}  // namespace
