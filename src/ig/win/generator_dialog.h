#pragma once

#include <list>

#include "common/win/dialog.h"
#include "common/win/splitter.h"
#include "ig/generator_layout.h"
#include "ig/generator_node.h"
#include "ig/list_commands.h"
#include "ig/win/message_list.h"
#include "ig/win/template_tree.h"

namespace NIg {

/// The generator's window (IDD_IG): template tree, sequence and cyclic list, and the buttons that run them.
///
/// What a running block wants of it comes as private messages to itself, so that a control changes in the
/// window's own turn. What these point at, the window keeps: a message from elsewhere finds nothing.
class GeneratorDialog final : public GeneratorView, private NCommon::Dialog, private MessageListOwner {
 public:
  explicit GeneratorDialog(ZCANopenIGNode& block);
  ~GeneratorDialog() override { Destroy(); }

  // GeneratorView
  HRESULT Create(NSdk::IWindowSite* site) override;
  void Destroy() override;
  void* Handle() const override { return Window(); }
  void SetCaption(const std::wstring& caption) override;
  void ListsReplaced() override;
  void ItemChanged(const ItemPlace& place) override;
  void ActivityChanged() override;
  void TextsChanged() override;

  // GeneratorWindow
  void EnableControl(WindowControl control, bool enable) override;
  void StopTimer(const NCom::ComPtr<NSdk::ITimer>& timer) override;
  void SelectItem(WindowControl list, std::size_t position) override;
  void SetText(WindowControl control, const std::wstring& text) override;
  std::wstring Text(WindowControl control) const override;

 private:
  // Dialog
  bool OnInit() override;
  bool OnCommand(int id, int notification) override;
  std::optional<LRESULT> OnNotify(NMHDR& notification) override;
  void OnSize(int width, int height) override;
  void OnTimer(UINT_PTR id) override;
  void OnDestroy() override;
  std::optional<LRESULT> OnMessage(UINT message, WPARAM wide, LPARAM lng) override;

  // MessageListOwner
  bool OnListKey(NSdk::GeneratorList list, WPARAM key) override;
  void OnCheckBox(NSdk::GeneratorList list, std::size_t row) override;

  // generator_dialog.cpp
  void Measure();
  void Arrange();
  void AttachSplitters();
  void AttachSplitter(NCommon::Splitter& splitter, int id, NCommon::Splitter::Bar bar,
                      NCommon::SplitPosition& share, const SplitSpan& span);
  void RefreshTemplates();
  bool OnButton(int id);
  void ShowButtons();
  void Tell(UINT message, WPARAM wide, LPARAM lng);
  std::optional<LRESULT> OnPrivateMessage(UINT message, WPARAM wide, LPARAM lng);
  HWND ControlOf(WPARAM idOrWindow) const;
  void SelectNow(HWND control, LPARAM row);
  MessageList& List(NSdk::GeneratorList list) { return list == NSdk::kCyclicList ? mCyclic : mSequence; }
  MessageList* ListOf(HWND control);

  // generator_commands.cpp
  CommandContext ContextFor(int command);
  bool Can(int command) { return IsAvailable(command, ContextFor(command)); }
  void Execute(int command);
  bool OnKey(WPARAM key, bool inTree);
  void Edit();
  void InsertTemplate(NSdk::GeneratorList list);
  void Delete(MessageList& list, const Rows& rows);
  bool Copy(MessageList& list, const Rows& rows);
  void Paste(MessageList& list);
  void Toggle(MessageList& list, const Rows& rows);
  void TakeBack(const std::optional<EditedRows>& edited);
  void ShowEdited(NSdk::GeneratorList list, const Rows& rows);
  void ShowMenu(HWND control, POINT place);

  // generator_drag.cpp
  void BeginDrag(const NCanopen::ZMsgItemInfo* chosen, std::optional<NSdk::GeneratorList> from);
  void DragTo(POINT screen);
  void ScrollWhileDragging();
  void Drop(POINT screen);
  void EndDrag();
  bool IsDragging() const { return mDragged.under; }
  MessageList* DropTarget(POINT screen, std::size_t& position);
  bool TakesDragged(NSdk::GeneratorList list);

  // What is being dragged: a template, or the selected rows of a list.
  struct Dragged {
    bool under = false;  // way
    const NCanopen::ZMsgItemInfo* chosen = nullptr;
    NSdk::GeneratorList from = NSdk::kSequenceList;
  };

  ZCANopenIGNode& mBlock;
  NCom::ComPtr<NSdk::IWindowSite> mSite;
  TemplateTree mTree;
  MessageList mSequence{*this, mBlock, NSdk::kSequenceList};
  MessageList mCyclic{*this, mBlock, NSdk::kCyclicList};
  NSdk::GeneratorList mActive = NSdk::kSequenceList;  // that had the focus last

  LayoutMetrics mMetrics;
  GeneratorLayout mLayout;
  NCommon::SplitPosition mTreeShare{0.35};
  NCommon::SplitPosition mListShare{0.5};
  NCommon::Splitter mTreeSplitter, mListSplitter;

  Dragged mDragged;
  bool mAtOnce = false;  // the window is being made: what the block wants is done and not posted
  // What posted messages point at.
  std::list<std::wstring> mPostedTexts;
  std::list<NCom::ComPtr<NSdk::ITimer>> mPostedTimers;
  std::wstring mExecuteText;  // as last asked for, which may not be shown yet
};

}  // namespace NIg
