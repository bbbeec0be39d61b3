#pragma once
// Every item kind and every field of its record in one table: what sequence file, editors, lists and tests go
// by.

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "canopen/item.h"

namespace NCanopen {

/// Items are owned by the list that shows them.
using ItemList = std::vector<std::unique_ptr<ZMsgItemInfo>>;

/// How a field is written in a sequence file.
enum class Encoding {
  Hexadecimal,  // "0x%X"
  Decimal,      // "%lu"
  Text,         // as it stands
};

/// A field's part in a sequence file.
enum class InFile {
  Optional,     // written; when it is missing the default stays
  Required,     // written; when it is missing the item is discarded
  WrittenOnly,  // written and not read back
  CyclicOnly,   // written and read in the cyclic list, where it is required
  Absent,
};

/// Number base of a field in its editor.
enum class NumberBase { Decimal, Hexadecimal, FollowsDisplay };

/// Which check an editor makes; each has messages of its own.
enum class Check {
  AtMost,  // value <= maximum
  Range,   // minimum <= value <= maximum
  CanId,   // hexadecimal with a trailing "x" for an extended identifier
  None,    // a check box, a typed-data text, or no control at all
};

struct Entry {
  NumberBase base = NumberBase::Decimal;
  Check check = Check::None;
  std::uint32_t minimum = 0;
  std::uint32_t maximum = 0;
};

/// One field of a kind's record. Either the number or the text functions are set; all of them require an item
/// of that kind. The default is what a new item holds.
struct ItemField {
  const char* key = "";
  Encoding encoding = Encoding::Decimal;
  InFile inFile = InFile::Optional;
  Entry entry;
  std::uint32_t (*number)(const ZMsgItemInfo& item) = nullptr;
  /// False, and nothing changed, when the value does not fit the field.
  bool (*setNumber)(ZMsgItemInfo& item, std::uint32_t value) = nullptr;
  const std::string& (*text)(const ZMsgItemInfo& item) = nullptr;
  void (*setText)(ZMsgItemInfo& item, std::string value) = nullptr;
};

struct ItemKind {
  const char* name;
  std::uint32_t code;
  bool isMessage;                     // may stand in the cyclic list
  std::span<const ItemField> fields;  // in the order of the sequence file
  std::unique_ptr<ZMsgItemInfo> (*make)(const bool* hexDisplay);
  /// The item as copied into a list; of another kind than this, only the display switch is taken.
  std::unique_ptr<ZMsgItemInfo> (*copy)(const ZMsgItemInfo& source);
  /// Null for a kind that belongs to no node. `cobId` 0 derives the COB-ID; NMT and EMCY always derive it.
  std::unique_ptr<ZMsgItemInfo> (*makeForNode)(const bool* hexDisplay, std::uint32_t nodeId,
                                               std::uint32_t cobId);
};

std::span<const ItemKind> ItemKinds();
/// Null when there is no such kind.
const ItemKind* FindItemKind(std::string_view name);
const ItemKind* FindItemKind(std::uint32_t code);
const ItemKind& KindOf(const ZMsgItemInfo& item);
/// Null when the kind has no such field.
const ItemField* FindField(const ItemKind& kind, std::string_view key);

std::unique_ptr<ZMsgItemInfo> CopyItem(const ZMsgItemInfo& item);

}  // namespace NCanopen
