#pragma once

#include <windows.h>

#include <commctrl.h>

#include <optional>

#include "common/win/image_list.h"
#include "common/win/row_tip.h"
#include "ig/generator_node.h"

namespace NIg {

/// What a list asks of its window.
class MessageListOwner {
 public:
  /// A key was pressed in the list. True: it was meant for the window.
  virtual bool OnListKey(NSdk::GeneratorList list, WPARAM key) = 0;
  /// The user has clicked the check box of a row.
  virtual void OnCheckBox(NSdk::GeneratorList list, std::size_t row) = 0;

 protected:
  ~MessageListOwner() = default;
};

/// One of the lists of the generator's window. It is virtual: what it shows is asked for when it is painted,
/// check boxes included, so a list of any length costs what can be seen.
class MessageList {
 public:
  MessageList(MessageListOwner& owner, ZCANopenIGNode& block, NSdk::GeneratorList list)
      : mOwner(owner), mBlock(block), mList(list) {}
  ~MessageList() { Detach(); }
  MessageList(const MessageList&) = delete;
  MessageList& operator=(const MessageList&) = delete;

  void Attach(HWND control);
  void Detach();

  HWND Control() const { return mControl; }
  NSdk::GeneratorList Which() const { return mList; }

  /// Rows have come, gone or changed.
  void Refresh();
  void RedrawRow(std::size_t row);
  /// Makes a row visible, now and then while many follow each other quickly.
  void Follow(std::size_t row);

  Rows Selected() const;
  std::optional<std::size_t> Focused() const;
  /// Selects these rows alone; the first gets the focus.
  void Select(const Rows& rows);
  void SelectAll();
  /// Where rows are inserted: behind the selected ones, at the end when none are.
  std::size_t InsertPosition() const;

  /// Where what is dropped at a place of the screen goes; empty: it is not over the list.
  std::optional<std::size_t> DropPosition(POINT screen) const;
  /// The line between rows where they would go; empty takes it away.
  void ShowDropMark(std::optional<std::size_t> position);
  /// Rolls rows into view while something is held over the first or last one.
  void ScrollTowards(POINT screen);

  std::optional<LRESULT> OnNotify(NMHDR& notification);

 private:
  static bool Concerns(UINT message);
  static LRESULT CALLBACK Procedure(HWND control, UINT message, WPARAM wide, LPARAM lng, UINT_PTR id,
                                    DWORD_PTR list);
  std::optional<LRESULT> Handle(UINT message, WPARAM wide, LPARAM lng);
  const NCanopen::ItemList& Items() const { return mBlock.Items(mList); }
  void AddColumns();
  void MakeSpacer();
  void ShowImages(bool show);
  void SetSelected(std::size_t row, bool selected);
  void ChangeSelection(const Rows& rows);
  void AnswerCell(LVITEMW& item) const;
  std::wstring CellText(std::size_t row, int column) const;
  LRESULT Draw(const NMLVCUSTOMDRAW& draw) const;

  MessageListOwner& mOwner;
  ZCANopenIGNode& mBlock;
  const NSdk::GeneratorList mList;
  HWND mControl = nullptr;
  HWND mMark = nullptr;
  std::vector<int> mColumns;  // text identifiers of the headings
  NCommon::ImageList mImages;
  HIMAGELIST mSpacer = nullptr;
  bool mShowsImages = false;
  NCommon::RowTip mTip;
  ULONGLONG mFollowed = 0;  // when a row was made visible last, in ms
};

}  // namespace NIg
