#pragma once
// What the dialog "Data definition" does with what is typed into it: it composes the typed data text of a PDO
// or SDO. Field texts are 8-bit, messages are wide as the string table holds them.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "editors/typed_data.h"

namespace NEditors {

/// What the dialog is given, and gives back when it ends with OK.
struct DataDefinition {
  std::string text;        ///< typed data text
  std::uint32_t size = 0;  ///< bytes that are sent
  bool automatic = false;  ///< the size follows the data
};

/// What the data is for.
struct DataPurpose {
  bool isPdo = false;        ///< at most 8 bytes; a limit comes from the PDO's mapping
  bool hexadecimal = false;  ///< integers are shown and typed in hexadecimal
  std::optional<std::uint32_t> limit =
      {};                             ///< bytes that the mapping or the node's object dictionary declares
  std::filesystem::path folder = {};  ///< files are relative to it; empty: not known
};

enum class ComposerField { Value, Size };

/// Outcome of OK.
struct ComposerAnswer {
  std::vector<std::wstring> warnings;  ///< for message boxes, shown first
  std::wstring balloon;                ///< for a balloon at `focus`; empty: none
  std::optional<ComposerField> focus;  ///< the field in fault; empty where there is none
  /// Set when the dialog closes. Nothing else is to be taken from it before.
  std::optional<DataDefinition> result;
};

/// State of the dialog. It shows the values of its queries anew after each call that changes something.
class DataComposer {
 public:
  DataComposer(const DataDefinition& definition, DataPurpose purpose);

  DataType Type() const { return mType; }
  const std::string& Value() const { return mValue; }
  const std::string& Size() const { return mSize; }
  bool IsAutomatic() const { return mAutomatic; }
  bool CanTypeSize() const { return !mAutomatic; }
  bool CanBrowse() const { return mType == kDataFile; }

  void SetType(DataType type);
  void SetValue(std::string value);
  void SetSize(std::string size) { mSize = std::move(size); }
  void SetAutomatic(bool automatic);
  /// The user has chosen a file.
  void SetFile(const std::filesystem::path& file);

  ComposerAnswer Accept();

 private:
  void ShowInteger(std::uint32_t size);
  void UpdateSize();
  std::string CompleteValue() const;
  bool CheckSize(std::uint32_t naturalSize, std::uint32_t size, ComposerAnswer& answer) const;
  std::wstring LimitMessage(std::uint32_t naturalSize) const;
  std::string Normalise(std::string value) const;

  DataPurpose mPurpose;
  DataType mType = kDataUnsigned;
  std::string mValue, mSize;
  bool mAutomatic = false;
};

/// What the field for the size shows when it follows the data: the limit, else the natural size of the value
/// or "N/A". `value` is the text without its prefix, as it is typed. Empty: the field is left as it is.
std::optional<std::string> AutomaticSize(std::string_view value, DataType type, const DataPurpose& purpose);

}  // namespace NEditors
