#pragma once
// Makes the rows of the field tables from members of a record.

#include <cstddef>
#include <utility>

#include "canopen/item_kinds.h"
#include "canopen/record_item.h"
#include "canopen/records.h"

namespace NCanopen {

template <class Pointer>
struct MemberTypes;
template <class R, class V>
struct MemberTypes<V R::*> {
  using Record = R;
  using Value = V;
};

template <class Record>
const Record& RecordOf(const ZMsgItemInfo& item) {
  return static_cast<const RecordItem<Record>&>(item).record;
}
template <class Record>
Record& RecordOf(ZMsgItemInfo& item) {
  return static_cast<RecordItem<Record>&>(item).record;
}

/// A number of 8, 16 or 32 bits.
template <auto Member>
constexpr ItemField Number(const char* key, Encoding encoding, Entry entry,
                           InFile inFile = InFile::Optional) {
  using Record = typename MemberTypes<decltype(Member)>::Record;
  using Value = typename MemberTypes<decltype(Member)>::Value;
  return {key,
          encoding,
          inFile,
          entry,
          [](const ZMsgItemInfo& item) -> std::uint32_t { return RecordOf<Record>(item).*Member; },
          [](ZMsgItemInfo& item, std::uint32_t value) {
            if (!std::in_range<Value>(value)) return false;
            RecordOf<Record>(item).*Member = static_cast<Value>(value);
            return true;
          }};
}

template <auto Member>
constexpr ItemField Text(const char* key) {
  using Record = typename MemberTypes<decltype(Member)>::Record;
  ItemField field = {key, Encoding::Text, InFile::Optional, {}};
  field.text = [](const ZMsgItemInfo& item) -> const std::string& { return RecordOf<Record>(item).*Member; };
  // NOLINTNEXTLINE(performance-unnecessary-value-param): it is moved on
  field.setText = [](ZMsgItemInfo& item, std::string value) {
    RecordOf<Record>(item).*Member = std::move(value);
  };
  return field;
}

template <std::size_t Position>
constexpr ItemField ManufacturerByte(const char* key, Entry entry) {
  return {key,
          Encoding::Hexadecimal,
          InFile::Optional,
          entry,
          [](const ZMsgItemInfo& item) -> std::uint32_t {
            return RecordOf<EmcyRecord>(item).manufacturer[Position];
          },
          [](ZMsgItemInfo& item, std::uint32_t value) {
            if (!std::in_range<std::uint8_t>(value)) return false;
            RecordOf<EmcyRecord>(item).manufacturer[Position] = static_cast<std::uint8_t>(value);
            return true;
          }};
}

/// The state byte as a whole.
constexpr ItemField WholeState(const char* key, Entry entry) {
  return {key,
          Encoding::Decimal,
          InFile::Optional,
          entry,
          [](const ZMsgItemInfo& item) -> std::uint32_t { return StateByte(RecordOf<StateRecord>(item)); },
          [](ZMsgItemInfo& item, std::uint32_t value) {
            if (!std::in_range<std::uint8_t>(value)) return false;
            SetStateByte(RecordOf<StateRecord>(item), static_cast<std::uint8_t>(value));
            return true;
          }};
}

/// Bits 0..6 of the state byte; the low seven bits of a value count.
constexpr ItemField StateBits(const char* key, Entry entry) {
  return {key,
          Encoding::Decimal,
          InFile::Required,
          entry,
          [](const ZMsgItemInfo& item) -> std::uint32_t { return StateOf(RecordOf<StateRecord>(item)); },
          [](ZMsgItemInfo& item, std::uint32_t value) {
            SetState(RecordOf<StateRecord>(item), static_cast<std::uint8_t>(value & kNodeStateMask));
            return true;
          }};
}

/// Bit 7 of the state byte; the lowest bit of a value counts.
constexpr ItemField StateToggle(const char* key, Entry entry) {
  return {
      key,
      Encoding::Decimal,
      InFile::Required,
      entry,
      [](const ZMsgItemInfo& item) -> std::uint32_t { return ToggleOf(RecordOf<StateRecord>(item)) ? 1 : 0; },
      [](ZMsgItemInfo& item, std::uint32_t value) {
        SetToggle(RecordOf<StateRecord>(item), (value & 1) != 0);
        return true;
      }};
}

}  // namespace NCanopen
