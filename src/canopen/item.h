#pragma once
// A message item: one entry of the generator's lists. It describes itself, opens its editor and is copied;
// the generator turns it into frames (frames.h), the sequence file stores its fields (item_kinds.h).

#include <cstdint>
#include <filesystem>
#include <string>

namespace NCanopen {

/// What GetTypeCode() answers. The gap before CYCLETX is intended: callers compare the numbers.
enum ItemCode : std::uint32_t {
  kItemSdo = 1,
  kItemPdo = 2,
  kItemEmcy = 3,
  kItemNmt = 4,
  kItemSync = 5,
  kItemHeartbeat = 6,
  kItemGuard = 7,
  kItemRtr = 8,
  kItemPause = 9,
  kItemCyclicState = 16,
};

/// What an editor is told about the place of the item that it edits.
struct EditContext {
  bool inCyclicList = false;         // only then cycle and delay can be edited
  std::uint32_t channel = 0;         // CAN channel of the block, counted from 1; 0 = not known
  std::filesystem::path baseFolder;  // "file:" data is relative to it
};

class ZMsgItemInfo {
 public:
  virtual ~ZMsgItemInfo() = default;

  /// Short name of the kind, also its element name in a sequence file: "PDO".
  virtual const char* GetTypeName() const = 0;
  /// One line for the "Attributes" column; numbers follow the display switch of the block.
  virtual std::string GetAttributesText() const = 0;
  /// "%lu ms", or "-" for a kind without a cycle.
  virtual std::string GetCycleText() const = 0;
  virtual std::string GetDelayText() const = 0;
  /// Milliseconds; 0 for a kind without a cycle.
  virtual std::uint32_t GetCycle() const = 0;
  virtual std::uint32_t GetDelay() const = 0;
  /// Runs the editor of the kind, modal to `parentWindow` (a native window handle). `context` is borrowed and
  /// may be null. True when the user ended it with OK; the item is changed then, and only then.
  virtual bool Edit(void* parentWindow, const EditContext* context) = 0;
  /// An ItemCode.
  virtual std::uint32_t GetTypeCode() const = 0;

  /// 1 = takes part in transmission, 0 = skipped. A file may hold other values, which are kept and count
  /// as 1.
  std::uint32_t GetEnabled() const { return mEnabled; }
  void SetEnabled(std::uint32_t enabled) { mEnabled = enabled; }
  bool IsEnabled() const { return mEnabled != 0; }

  /// The display switch of the owning block; borrowed, outlives the item. Null counts as decimal.
  const bool* HexDisplay() const { return mHexDisplay; }
  bool ShowsHexadecimal() const { return mHexDisplay != nullptr && *mHexDisplay; }

 protected:
  explicit ZMsgItemInfo(const bool* hexDisplay) : mHexDisplay(hexDisplay) {}
  ZMsgItemInfo(const ZMsgItemInfo&) = default;
  ZMsgItemInfo& operator=(const ZMsgItemInfo&) = default;

 private:
  const bool* mHexDisplay;
  std::uint32_t mEnabled = 1;
};

/// The editor dialogs, which live on a higher floor and only where there are windows.
class IItemEditors {
 public:
  /// As ZMsgItemInfo::Edit.
  virtual bool Edit(ZMsgItemInfo& item, void* parentWindow, const EditContext* context) = 0;

 protected:
  ~IItemEditors() = default;
};

/// Registers the editors for the whole module; null withdraws them. `editors` is borrowed until then. Without
/// editors every Edit() ends as a dialog that was cancelled.
void SetItemEditors(IItemEditors* editors);

/// Runs the registered editors; the body of every Edit().
bool EditItem(ZMsgItemInfo& item, void* parentWindow, const EditContext* context);

}  // namespace NCanopen
