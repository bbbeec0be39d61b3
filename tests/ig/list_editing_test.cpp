#include "ig/list_editing.h"

#include <gtest/gtest.h>

#include <ctime>
#include <random>

#include "canopen/flow_items.h"
#include "canopen/message_items.h"
#include "ig/message_templates.h"

namespace {

using NIg::ListEditing;
using NIg::Rows;
using NSdk::kCyclicList;
using NSdk::kSequenceList;

struct Lists {
  NCanopen::ItemList sequence, cyclic;
  ListEditing editing{sequence, cyclic};

  // PDOs are told apart by their DLC, disabled ones by a minus sign.
  void Fill(std::uint32_t count) {
    for (std::uint32_t number = 0; number < count; ++number) {
      auto item = std::make_unique<NCanopen::ZPDOItemInfo>(nullptr);
      item->record.dlc = number;
      sequence.push_back(std::move(item));
    }
    editing.Forget();
  }
  static std::string Show(const NCanopen::ItemList& list) {
    std::string text;
    for (const auto& item : list) {
      if (!item->IsEnabled()) text += '-';
      const auto* pdo = dynamic_cast<const NCanopen::ZPDOItemInfo*>(item.get());
      text += pdo ? std::to_string(pdo->record.dlc) : "P";
    }
    return text;
  }
  std::string Sequence() const { return Show(sequence); }
  std::string Cyclic() const { return Show(cyclic); }
};

TEST(ListEditing, RowsMoveWithTheirNeighbours) {
  Lists lists;
  lists.Fill(6);
  EXPECT_EQ(lists.editing.MoveUp(kSequenceList, {0, 2, 3, 5}), (Rows{0, 1, 2, 4}));
  EXPECT_EQ(lists.Sequence(), "023154");
  EXPECT_EQ(lists.editing.MoveDown(kSequenceList, {0, 1, 2, 4}), (Rows{1, 2, 3, 5}));
  EXPECT_EQ(lists.Sequence(), "102345");
  EXPECT_EQ(lists.editing.MoveTo(kSequenceList, {0, 4}, kSequenceList, 3), (Rows{2, 3}));
  EXPECT_EQ(lists.Sequence(), "021435");
  EXPECT_EQ(lists.editing.MoveTo(kSequenceList, {1, 3}, kCyclicList, 0), (Rows{0, 1}));
  EXPECT_EQ(lists.Sequence() + "/" + lists.Cyclic(), "0135/24");
}

TEST(ListEditing, TheCyclicListTakesMessagesOnly) {
  Lists lists;
  const NCanopen::ZPauseItemInfo pause(nullptr);
  const NCanopen::ZPDOItemInfo pdo(nullptr);
  EXPECT_EQ(lists.editing.Insert(kCyclicList, 0, std::vector<const NCanopen::ZMsgItemInfo*>{&pause}), Rows{});
  EXPECT_FALSE(lists.editing.CanUndo());
  EXPECT_EQ(lists.editing.Insert(kSequenceList, 0, std::vector<const NCanopen::ZMsgItemInfo*>{&pause, &pdo}),
            (Rows{0, 1}));
  EXPECT_EQ(lists.editing.MoveTo(kSequenceList, {0, 1}, kCyclicList, 0), Rows{0});
  EXPECT_EQ(lists.Sequence() + "/" + lists.Cyclic(), "P/0");
}

TEST(ListEditing, KnowsWhetherTheListsAreSaved) {
  Lists lists;
  lists.Fill(3);
  EXPECT_FALSE(lists.editing.IsModified());
  EXPECT_EQ(lists.editing.Delete(kSequenceList, {1, 2}), Rows{0});
  EXPECT_TRUE(lists.editing.IsModified());
  lists.editing.Undo();
  EXPECT_FALSE(lists.editing.IsModified());
  lists.editing.SetEnabled(kSequenceList, {1}, false);
  lists.editing.MarkSaved();
  lists.editing.Undo();
  EXPECT_TRUE(lists.editing.IsModified());
  const auto redone = lists.editing.Redo();
  ASSERT_TRUE(redone);
  EXPECT_EQ(redone->rows, Rows{1});
  EXPECT_FALSE(lists.editing.IsModified());
  // Another change in place of the saved one: the saved state is gone for good.
  lists.editing.Undo();
  lists.editing.SetEnabled(kSequenceList, {2}, false);
  EXPECT_TRUE(lists.editing.IsModified());
  EXPECT_FALSE(lists.editing.CanRedo());
}

TEST(ListEditing, EverythingCanBeTakenBack) {
  Lists lists;
  lists.Fill(8);
  std::mt19937 random(20);
  const auto state = [&] { return lists.Sequence() + "/" + lists.Cyclic(); };
  for (int step = 0; step < 400; ++step) {
    const auto list = random() % 2 == 0 ? kSequenceList : kCyclicList;
    const auto other = random() % 2 == 0 ? kSequenceList : kCyclicList;
    const std::size_t size = (list == kSequenceList ? lists.sequence : lists.cyclic).size();
    const std::size_t otherSize = (other == kSequenceList ? lists.sequence : lists.cyclic).size();
    Rows rows;
    for (std::size_t row = 0; row < size; ++row) {
      if (random() % 3 == 0) rows.push_back(row);
    }
    if (rows.empty()) continue;
    switch (random() % 5) {
      case 0:
        lists.editing.MoveUp(list, rows);
        break;
      case 1:
        lists.editing.MoveDown(list, rows);
        break;
      case 2:
        lists.editing.MoveTo(list, rows, other, random() % (otherSize + 1));
        break;
      case 3:
        lists.editing.SetEnabled(list, rows, random() % 2 == 0);
        break;
      default: {
        std::vector<const NCanopen::ZMsgItemInfo*> items;
        for (const auto row : rows)
          items.push_back((list == kSequenceList ? lists.sequence : lists.cyclic)[row].get());
        if (size < 30)
          lists.editing.Insert(other, otherSize / 2, items);
        else
          lists.editing.Delete(list, rows);
      }
    }
  }
  const std::string last = state();
  while (lists.editing.Undo()) {
  }
  EXPECT_EQ(state(), "01234567/");
  while (lists.editing.Redo()) {
  }
  EXPECT_EQ(state(), last);
}

TEST(ListEditing, TenThousandRowsDoNotMakeItSlow) {
  Lists lists;
  lists.Fill(10000);
  Rows every, second;
  for (std::size_t row = 0; row < 10000; ++row) {
    every.push_back(row);
    if (row % 2 == 1) second.push_back(row);
  }
  // Processor time: what others do on the machine does not count.
  const auto seconds = [](auto action) {
    const std::clock_t start = std::clock();
    action();
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
  };
  constexpr double kFarTooLong_s = 0.5;
  EXPECT_LT(seconds([&] { lists.editing.MoveUp(kSequenceList, second); }), kFarTooLong_s);
  EXPECT_LT(seconds([&] { lists.editing.SetEnabled(kSequenceList, every, false); }), kFarTooLong_s);
  EXPECT_LT(seconds([&] { lists.editing.Delete(kSequenceList, second); }), kFarTooLong_s);
  EXPECT_LT(seconds([&] { lists.editing.Undo(); }), kFarTooLong_s);
  EXPECT_EQ(lists.sequence.size(), 10000u);
}

TEST(MessageTemplates, ListKindsAndNodes) {
  const std::vector<NSdo::DatabaseNode> nodes = {{L"Drive", 5, {}, {}, {{0x40001285, 1}, {0xA0000800, 4}}},
                                                 {L"Nobody", 200, {}, {}, {}}};
  const auto roots = NIg::MakeTemplates(nullptr, nodes);
  const auto labels = [](const std::vector<NIg::MessageTemplate>& entries) {
    std::wstring text;
    for (const auto& entry : entries) text += entry.label + L";";
    return text;
  };
  EXPECT_EQ(labels(roots), L"Message templates;Flow control;");
  EXPECT_EQ(labels(roots[0].children), L"SDO;PDO;HBEAT;GUARD;NMT;SYNC;EMCY;RTR;");
  EXPECT_EQ(labels(roots[1].children), L"PAUSE;CYCLETX;");
  const NIg::MessageTemplate& pdos = roots[0].children[1];
  EXPECT_EQ(labels(pdos.children), L"Node 5, Drive;");
  EXPECT_EQ(labels(pdos.children[0].children), L"N5_TPDO2 (285);N5_TPDO5 (800x);");
  const auto& item = static_cast<const NCanopen::ZPDOItemInfo&>(*pdos.children[0].children[1].item);
  EXPECT_EQ(item.record.cobId, 0x20000800u);
  EXPECT_EQ(item.record.nodeId, 5u);
  EXPECT_TRUE(roots[0].children[3].children.empty()) << "guarding has no entries for nodes";
}

}  // namespace
