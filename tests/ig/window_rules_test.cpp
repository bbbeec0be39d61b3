// What the generator's window goes by, without a window.

#include <gtest/gtest.h>

#include <set>

#include "canopen/flow_items.h"
#include "canopen/message_items.h"
#include "ig/generator_layout.h"
#include "ig/item_clipboard.h"
#include "ig/list_commands.h"
#include "ig/transmission_results.h"
#include "resources/resource_ids.h"

namespace {

using namespace NIg;

TEST(GeneratorLayout, FitsEverySizeFromTheLeastOn) {
  const LayoutMetrics metrics = {11, 7, 18, 23, 113, 7, 90, 39};
  for (const double share : {0.0, 0.35, 1.0}) {
    const NCommon::SplitPosition split(share);
    for (int width = 200; width <= 1400; width += 37) {
      for (int height = 180; height <= 900; height += 31) {
        std::set<int> shown;
        const auto layout = LayOut(width, height, metrics, split, split);
        for (const PlacedControl& placed : layout.controls) {
          const NCommon::Area& area = placed.area;
          if (area.Width() == 0 || area.Height() == 0) continue;
          ASSERT_TRUE(shown.insert(placed.id).second);
          ASSERT_TRUE(area.left >= 0 && area.top >= 0 && area.right <= width && area.bottom <= height)
              << placed.id << " at " << width << " x " << height;
          for (const PlacedControl& other : layout.controls) {
            const bool apart = other.area.right <= area.left || other.area.left >= area.right ||
                               other.area.bottom <= area.top || other.area.top >= area.bottom;
            ASSERT_TRUE(apart || other.id == placed.id || other.area.Width() == 0 || other.area.Height() == 0)
                << placed.id << " and " << other.id << " at " << width << " x " << height;
          }
        }
        for (const int id : {IDC_IG_TEMPLATES, IDC_IG_SEQUENCE, IDC_IG_CYCLIC, IDC_IG_EXECUTE, IDC_IG_START,
                             IDC_IG_REFRESH, IDC_IG_CONFIGURE, IDC_IG_OPEN, IDC_IG_SAVE}) {
          ASSERT_TRUE(shown.contains(id)) << id << " at " << width << " x " << height;
        }
      }
    }
  }
}

TEST(ItemClipboard, CarriesEveryFieldOfEveryKind) {
  NCanopen::ItemList items;
  std::uint32_t value = 1;
  for (const NCanopen::ItemKind& kind : NCanopen::ItemKinds()) {
    items.push_back(kind.make(nullptr));
    items.back()->SetEnabled(value % 2);
    for (const NCanopen::ItemField& field : kind.fields) {
      if (field.setNumber) field.setNumber(*items.back(), ++value % 2);
      if (field.setText) field.setText(*items.back(), "string:a b=\n\t\"\xFF");
    }
  }
  std::vector<const NCanopen::ZMsgItemInfo*> written;
  for (const auto& item : items) written.push_back(item.get());
  const NCanopen::ItemList read = ReadItems(WriteItems(written), nullptr);
  ASSERT_EQ(read.size(), items.size());
  for (std::size_t at = 0; at < items.size(); ++at) {
    const NCanopen::ItemKind& kind = NCanopen::KindOf(*items[at]);
    ASSERT_STREQ(read[at]->GetTypeName(), kind.name);
    EXPECT_EQ(read[at]->GetEnabled(), items[at]->GetEnabled());
    for (const NCanopen::ItemField& field : kind.fields) {
      if (field.number) {
        EXPECT_EQ(field.number(*read[at]), field.number(*items[at])) << kind.name << field.key;
      } else {
        EXPECT_EQ(field.text(*read[at]), field.text(*items[at])) << kind.name << field.key;
      }
    }
  }
}

TEST(ListCommands, KnowWhereTheyCanMove) {
  const struct {
    std::size_t count, selected, first, last;
    bool up, down;
  } rows[] = {{3, 1, 0, 0, false, true}, {3, 1, 2, 2, true, false}, {3, 3, 0, 2, false, false},
              {4, 2, 0, 2, true, true},  {4, 2, 1, 3, true, true},  {4, 0, 0, 0, false, false}};
  for (const auto& row : rows) {
    CommandContext context;
    context.count = row.count;
    context.selected = row.selected;
    context.firstSelected = row.first;
    context.lastSelected = row.last;
    EXPECT_EQ(IsAvailable(ID_IG_ITEM_UP, context), row.up) << row.first << row.last;
    EXPECT_EQ(IsAvailable(ID_IG_ITEM_DOWN, context), row.down) << row.first << row.last;
    context.locked = true;
    for (int command = ID_IG_INSERT_SEQUENCE; command <= ID_IG_REDO; ++command) {
      EXPECT_EQ(IsAvailable(command, context), command == ID_IG_ITEM_COPY && row.selected > 0) << command;
    }
  }
}

TEST(TransmissionResults, TellHowAnItemFared) {
  TransmissionResults results;
  const ItemPlace place = {NSdk::kSequenceList, 2};
  const struct {
    SdoTransferResult transfer;
    const wchar_t* text;
    ResultImage image;
  } rows[] = {
      {{NSdk::kTransferDone, 4, 0}, L"SDO done, 4 bytes", ResultImage::Good},
      {{NSdk::kTransferAborted, 0, 0x06090011},
       L"SDO aborted: 06090011, sub-index does not exist",
       ResultImage::Bad},
      {{NSdk::kTransferAborted, 0, 0x12345678},
       L"SDO aborted: 12345678, unknown abort code",
       ResultImage::Bad},
      {{NSdk::kTransferAborted, 0, 0}, L"SDO aborted: 00000000, unknown abort code", ResultImage::Bad},
      {{NSdk::kTransferAborted, 0, 0x08000023},
       L"SDO aborted: 08000023, no object dictionary",
       ResultImage::Bad},
      {{NSdk::kTransferAborted, 0, 0x05040000}, L"SDO time-out", ResultImage::Bad},
      {{NSdk::kTransferDropped, 3, 0}, L"SDO cut off", ResultImage::Bad},
  };
  for (const auto& row : rows) {
    results.Sent(place, true);
    EXPECT_EQ(results.Text(place), L"SDO transfer...");
    results.Ended(place, row.transfer);
    EXPECT_EQ(results.Image(place), ResultImage::Sending) << "the sequence has not gone on";
    results.SequenceOver();
    EXPECT_EQ(results.Text(place), row.text);
    EXPECT_EQ(results.Image(place), row.image);
  }
  EXPECT_EQ(results.Text({NSdk::kCyclicList, 2}) + results.Text({NSdk::kSequenceList, 9}), L"");
  results.Clear(NSdk::kSequenceList);
  EXPECT_EQ(results.Text(place), L"");
}

}  // namespace
