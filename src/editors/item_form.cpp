#include "editors/item_form.h"

#include <algorithm>

#include "canopen/fields.h"
#include "canopen/frames.h"
#include "canopen/item_kinds.h"
#include "editors/first_sdo_frame.h"
#include "editors/integer_text.h"
#include "editors/number_entry.h"
#include "resources/print.h"
#include "resources/resource_ids.h"
#include "resources/text.h"

namespace NEditors {
namespace {

using NCanopen::ItemField;
using NCanopen::ZMsgItemInfo;

const ItemField& FieldOf(const ZMsgItemInfo& item, const EditorField& row) {
  return *NCanopen::FindField(NCanopen::KindOf(item), row.key);
}

/// What a field takes of an entry such as "5 (Drive)".
std::string UpToBlank(const std::string& text) { return text.substr(0, text.find(' ')); }

/// Callers of the parser take a text without prefix for a byte array.
std::string Typed(std::string text) {
  if (GetDataType(text) == kDataUntyped) AddDataPrefix(text, kDataByteArray);
  return text;
}

bool IsHexadecimal(const ItemField& field, bool display) {
  switch (field.entry.base) {
    case NCanopen::NumberBase::Decimal:
      return false;
    case NCanopen::NumberBase::Hexadecimal:
      return true;
    case NCanopen::NumberBase::FollowsDisplay:
      return display;
  }
  return false;
}

/// A field of 16 bits takes no more, whatever its bounds.
bool IsWord(const ItemField& field) {
  return field.entry.check == NCanopen::Check::AtMost && field.entry.maximum == 0xFFFF;
}

}  // namespace

ItemForm::ItemForm(const ZMsgItemInfo& item, FormContext context)
    : mContext(std::move(context)), mItem(NCanopen::CopyItem(item)), mRows(EditorFields(item.GetTypeCode())) {
  for (const EditorField& row : mRows) mFields.push_back(Load(row));
  UpdateDependents();
}

bool ItemForm::IsCyclicField(const EditorField& row) const {
  return FieldOf(*mItem, row).inFile == NCanopen::InFile::CyclicOnly;
}

std::string ItemForm::NumberText(const ItemField& field, std::uint32_t number) const {
  if (field.entry.check == NCanopen::Check::CanId) return NCanopen::CobIdText(number);
  return IsHexadecimal(field, mContext.hexadecimal) ? NResources::Print("%X", number)
                                                    : std::to_string(number);
}

FormField ItemForm::Load(const EditorField& row) const {
  const ItemField& field = FieldOf(*mItem, row);
  FormField shown;
  if (field.text != nullptr) {
    shown.text = field.text(*mItem);
  } else if (row.control == FieldControl::CheckBox || row.control == FieldControl::Radio) {
    shown.checked = field.number(*mItem) != 0;
  } else if (IsCyclicField(row) && !mContext.inCyclicList) {
    shown.text = std::string(1, std::string_view(row.key) == "SendCycle" ? '-' : '0');
    shown.enabled = false;
  } else {
    shown.text = NumberText(field, field.number(*mItem));
  }
  return shown;
}

std::optional<std::size_t> ItemForm::Find(std::string_view key) const {
  const auto found = std::ranges::find_if(mRows, [key](const EditorField& row) { return row.key == key; });
  return found != mRows.end() ? std::optional(static_cast<std::size_t>(found - mRows.begin())) : std::nullopt;
}

std::string ItemForm::TextOf(std::string_view key) const {
  const auto field = Find(key);
  return field ? mFields[*field].text : std::string();
}

bool ItemForm::IsChecked(std::string_view key) const {
  const auto field = Find(key);
  return field && mFields[*field].checked;
}

void ItemForm::SetTextOf(std::string_view key, std::string text) {
  if (const auto field = Find(key)) mFields[*field].text = std::move(text);
}

std::optional<std::uint32_t> ItemForm::NumberOf(std::string_view key) const {
  const auto field = Find(key);
  if (!field) return std::nullopt;
  std::uint32_t number = 0;
  std::wstring message;
  const bool hexadecimal = IsHexadecimal(FieldOf(*mItem, mRows[*field]), mContext.hexadecimal);
  if (!ParseNumber(UpToBlank(mFields[*field].text), hexadecimal, number, message)) return std::nullopt;
  return number;
}

std::optional<std::uint32_t> ItemForm::CobIdOf(std::string_view key) const {
  std::uint32_t cobId = 0;
  std::wstring message;
  if (!ParseCanId(UpToBlank(TextOf(key)), cobId, message, /*extendedAllowed=*/true)) return std::nullopt;
  return cobId;
}

std::vector<FieldChoice> ItemForm::ChoicesOf(std::size_t field) const {
  ChoiceContext context{mContext.nodes, 0, mContext.hexadecimal};
  if (const auto node = NumberOf("NodeID")) context.nodeId = *node;
  return ListChoices(mRows[field].choices, context);
}

void ItemForm::SetText(std::size_t field, std::string text) {
  mFields[field].text = std::move(text);
  UpdateDependents();
}

void ItemForm::SetChecked(std::size_t field, bool checked) {
  mFields[field].checked = checked;
  UpdateDependents();
}

void ItemForm::Choose(std::size_t field, const FieldChoice& choice) {
  mFields[field].text = choice.text;
  if (choice.object != nullptr) {
    const NSdo::NodeObject& object = *choice.object;
    mFields[field].text = NResources::Print("%X", object.index);
    SetTextOf("SubIndex", mContext.hexadecimal ? NResources::Print("%X", object.subindex)
                                               : std::to_string(object.subindex));
    if (!object.variableLength) SetTextOf("ObjectSize", std::to_string(object.size));
  }
  UpdateDependents();
}

std::string_view ItemForm::SizeKey() const { return Find("DLC") ? "DLC" : "ObjectSize"; }

void ItemForm::UpdateDependents() {
  if (const auto automatic = Find("AutoCANID")) {
    const auto node = NumberOf("NodeID");
    const bool follows = mFields[*automatic].checked && node && *node != 0;
    if (follows && NCanopen::IsNodeId(*node)) {
      SetTextOf("COBIDTx", NCanopen::CobIdText(NCanopen::SdoRequestCobId(*node)));
      SetTextOf("COBIDRx", NCanopen::CobIdText(NCanopen::SdoResponseCobId(*node)));
    }
    mFields[*Find("COBIDTx")].readOnly = mFields[*Find("COBIDRx")].readOnly = follows;
  }
  if (const auto automatic = Find("AutoSize")) {
    FormField& size = mFields[*Find(SizeKey())];
    size.readOnly = mFields[*automatic].checked;
    const bool sendsData = !IsChecked("Upload");
    mFields[*Find("Data")].enabled = sendsData;
    if (!size.readOnly || !sendsData) return;
    std::string value = Typed(TextOf("Data"));
    const DataType type = GetDataType(value);
    StripDataPrefix(value);
    std::uint32_t length = 0;
    size.text = GetNaturalLength(value, type, length, mContext.folder) ? std::to_string(length) : "N/A";
  }
}

DataDefinition ItemForm::Definition() const {
  return {TextOf("Data"), NumberOf(SizeKey()).value_or(0), IsChecked("AutoSize")};
}

DataPurpose ItemForm::Purpose() const {
  DataPurpose purpose;
  purpose.isPdo = mItem->GetTypeCode() == NCanopen::kItemPdo;
  purpose.hexadecimal = mContext.hexadecimal;
  purpose.folder = mContext.folder;
  const NSdo::DatabaseNode* node = FindNode(mContext.nodes, NumberOf("NodeID").value_or(0));
  if (node == nullptr) return purpose;
  if (purpose.isPdo) {
    if (const auto cobId = CobIdOf("COBID")) purpose.limit = MappedPdoSize(*node, *cobId);
  } else if (const auto index = NumberOf("Index")) {
    purpose.limit = ObjectSize(*node, *index, NumberOf("SubIndex").value_or(0));
  }
  return purpose;
}

void ItemForm::SetDefinition(const DataDefinition& definition) {
  mFields[*Find("AutoSize")].checked = definition.automatic;
  SetTextOf("Data", definition.text);
  SetTextOf(SizeKey(), std::to_string(definition.size));
  UpdateDependents();
  // What the composer has settled stands, a limit of the description included.
  SetTextOf(SizeKey(), std::to_string(definition.size));
}

std::optional<std::vector<std::uint8_t>> ItemForm::Encode(const std::string& text) const {
  // With a size in fault the data is looked at by itself; the size has its own turn.
  std::string value = Typed(text);
  std::uint32_t size = 0;
  if (const auto entered = NumberOf(SizeKey())) {
    size = *entered;
  } else {
    std::string stripped = value;
    StripDataPrefix(stripped);
    GetNaturalLength(stripped, GetDataType(value), size, mContext.folder);
  }
  std::vector<std::uint8_t> bytes;
  return ParseTypedData(value, bytes, size, mContext.folder) ? std::optional(std::move(bytes)) : std::nullopt;
}

std::optional<std::wstring> ItemForm::CheckData(const std::string& text) const {
  if (IsChecked("Upload") || Encode(text)) return std::nullopt;
  return NResources::LoadText(IDS_ENTRY_SYNTAX);
}

std::optional<std::wstring> ItemForm::TakeNumber(const ItemField& target, const std::string& text,
                                                 ZMsgItemInfo& item) const {
  const NCanopen::Entry& entry = target.entry;
  const bool hexadecimal = IsHexadecimal(target, mContext.hexadecimal);
  std::uint32_t number = 0;
  std::uint16_t word = 0;
  std::wstring message;
  bool passed = false;
  if (entry.check == NCanopen::Check::CanId) {
    passed = ParseCanId(text, number, message, /*extendedAllowed=*/true);
  } else if (IsWord(target)) {
    passed = ParseNumber(text, hexadecimal, word, message);
    number = word;
  } else if (entry.check == NCanopen::Check::Range) {
    passed = CheckRange(text, hexadecimal, number, entry.minimum, entry.maximum, message);
  } else {
    passed = CheckMax(text, hexadecimal, number, entry.maximum, message);
  }
  if (!passed) return message;
  target.setNumber(item, number);
  return std::nullopt;
}

std::optional<std::wstring> ItemForm::Take(std::size_t field, ZMsgItemInfo& item) const {
  const EditorField& row = mRows[field];
  const FormField& entered = mFields[field];
  const ItemField& target = FieldOf(item, row);
  switch (row.control) {
    case FieldControl::CheckBox:
    case FieldControl::Radio:
      target.setNumber(item, entered.checked ? 1 : 0);
      return std::nullopt;
    case FieldControl::Data:
      if (auto fault = CheckData(entered.text)) return fault;
      target.setText(item, entered.text);
      return std::nullopt;
    case FieldControl::Number:
    case FieldControl::List:
      break;
  }
  if (IsCyclicField(row)) {
    if (!mContext.inCyclicList) return std::nullopt;
    // Whatever is no number of milliseconds is told the bound.
    const auto time = ReadUnsigned(UpToBlank(entered.text), NumberBase::Decimal, target.entry.maximum);
    if (!time) return NResources::Print(NResources::LoadText(IDS_ENTRY_MAX), target.entry.maximum);
    target.setNumber(item, static_cast<std::uint32_t>(*time));
    return std::nullopt;
  }
  return TakeNumber(target, UpToBlank(entered.text), item);
}

std::optional<FormFault> ItemForm::TakeAll(ZMsgItemInfo& item) const {
  for (std::size_t field = 0; field < mRows.size(); ++field) {
    if (auto message = Take(field, item)) return FormFault{field, std::move(*message)};
  }
  return std::nullopt;
}

std::optional<FormFault> ItemForm::Check() const { return TakeAll(*NCanopen::CopyItem(*mItem)); }

std::optional<FormFault> ItemForm::Store(ZMsgItemInfo& item) const {
  if (auto fault = Check()) return fault;
  return TakeAll(item);
}

std::optional<NSdk::CanFrame> ItemForm::Preview() const {
  const auto item = NCanopen::CopyItem(*mItem);
  if (TakeAll(*item)) return std::nullopt;
  if (item->GetTypeCode() == NCanopen::kItemPdo) {
    const auto bytes = Encode(TextOf("Data"));
    return bytes ? std::optional(
                       NCanopen::PdoFrame(NCanopen::RecordOf<NCanopen::PdoRecord>(*item).cobId, *bytes))
                 : std::nullopt;
  }
  if (item->GetTypeCode() == NCanopen::kItemSdo) {
    const auto& record = NCanopen::RecordOf<NCanopen::SdoRecord>(*item);
    const auto bytes = record.upload != 0 ? std::optional(std::vector<std::uint8_t>{}) : Encode(record.data);
    return bytes ? FirstSdoFrame(record, *bytes) : std::nullopt;
  }
  return NCanopen::FrameOf(*item);
}

std::string FrameText(const NSdk::CanFrame& frame) {
  const bool extended = (frame.flags & NSdk::kFrameExtended) != 0;
  const std::uint32_t size = std::min<std::uint32_t>(frame.flags & NSdk::kFrameDlcMask, sizeof frame.data);
  std::string text = NResources::Print(
      "%s  [%d] ", NCanopen::CobIdText(frame.identifier | (extended ? NCanopen::kCobIdExtended : 0)), size);
  if ((frame.flags & NSdk::kFrameRemote) != 0) return text + " R";
  for (std::uint32_t position = 0; position < size; ++position)
    text += NResources::Print(" %02X", frame.data[position]);
  return text;
}

}  // namespace NEditors
