#pragma once
// An item as its editor shows it: a text or a mark per field, what depends on what, the checks in their
// order, and the frame that would be sent. The dialogs only carry texts between this and their controls.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "canopen/item.h"
#include "canopen/item_kinds.h"
#include "editors/data_composer.h"
#include "editors/editor_tables.h"
#include "editors/field_choices.h"
#include "sdk/can_frame.h"

namespace NEditors {

struct FormContext {
  bool hexadecimal = false;  ///< numbers of fields that follow the display
  bool inCyclicList = false;
  std::filesystem::path folder = {};           ///< of "file:" data
  std::vector<NSdo::DatabaseNode> nodes = {};  ///< of the block's network
};

struct FormField {
  std::string text;      ///< item text
  bool checked = false;  ///< of a check box; of radio buttons: the first is chosen
  bool enabled = true;
  bool readOnly = false;
};

/// The first field in fault.
struct FormFault {
  std::size_t field = 0;
  std::wstring message;
};

class ItemForm {
 public:
  ItemForm(const NCanopen::ZMsgItemInfo& item, FormContext context);

  /// In the order of the checks; a field's position here is its number below.
  std::span<const EditorField> Fields() const { return mRows; }
  const FormField& Field(std::size_t field) const { return mFields[field]; }
  /// Empty: the editor has no such field.
  std::optional<std::size_t> Find(std::string_view key) const;
  std::vector<FieldChoice> ChoicesOf(std::size_t field) const;

  /// The user has typed or picked something; other fields may follow.
  void SetText(std::size_t field, std::string text);
  void SetChecked(std::size_t field, bool checked);
  /// A row of ChoicesOf(field).
  void Choose(std::size_t field, const FieldChoice& choice);

  /// For the data composer, and what it gave back.
  DataDefinition Definition() const;
  DataPurpose Purpose() const;
  void SetDefinition(const DataDefinition& definition);

  /// Checks the fields one after the other.
  std::optional<FormFault> Check() const;
  /// The same, and writes the values into the item when all pass. `item` is of the form's kind.
  std::optional<FormFault> Store(NCanopen::ZMsgItemInfo& item) const;

  /// The frame that the item would send, of an SDO the first one. Empty: a field is in fault, or the item
  /// sends none.
  std::optional<NSdk::CanFrame> Preview() const;

 private:
  bool IsCyclicField(const EditorField& row) const;
  FormField Load(const EditorField& row) const;
  std::string NumberText(const NCanopen::ItemField& field, std::uint32_t number) const;
  std::string TextOf(std::string_view key) const;
  bool IsChecked(std::string_view key) const;
  void SetTextOf(std::string_view key, std::string text);
  std::optional<std::uint32_t> NumberOf(std::string_view key) const;
  std::optional<std::uint32_t> CobIdOf(std::string_view key) const;
  void UpdateDependents();
  std::string_view SizeKey() const;
  std::optional<std::wstring> Take(std::size_t field, NCanopen::ZMsgItemInfo& item) const;
  std::optional<std::wstring> TakeNumber(const NCanopen::ItemField& target, const std::string& text,
                                         NCanopen::ZMsgItemInfo& item) const;
  std::optional<std::wstring> CheckData(const std::string& text) const;
  std::optional<std::vector<std::uint8_t>> Encode(const std::string& text) const;
  std::optional<FormFault> TakeAll(NCanopen::ZMsgItemInfo& item) const;

  FormContext mContext;
  std::unique_ptr<NCanopen::ZMsgItemInfo> mItem;  ///< as it was given
  std::span<const EditorField> mRows;
  std::vector<FormField> mFields;
};

/// "185  [2]  34 12": identifier, data length and bytes, all but the length in hexadecimal; "R" for a remote
/// frame.
std::string FrameText(const NSdk::CanFrame& frame);

}  // namespace NEditors
