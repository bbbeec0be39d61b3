#include "editors/data_composer.h"

#include <limits>

#include "common/text.h"
#include "editors/integer_text.h"
#include "resources/print.h"
#include "resources/resource_ids.h"
#include "resources/text.h"

namespace NEditors {
namespace {

constexpr std::uint32_t kMaxPdoSize = 8;

bool IsInteger(DataType type) { return type == kDataUnsigned || type == kDataSigned; }

/// Leading zeros and blanks go; the number 0 keeps a digit.
std::string WithoutLeadingZeros(std::string_view text) {
  const auto first = text.find_first_not_of("0 ");
  if (first != std::string_view::npos) return std::string(text.substr(first));
  return text.find('0') != std::string_view::npos ? "0" : "";
}

/// So that a decimal number is never read as octal.
std::string WithoutOctalZeros(std::string_view text) {
  if (text.starts_with('-')) return "-" + WithoutLeadingZeros(text.substr(1));
  return WithoutLeadingZeros(text);
}

std::string ToLower(std::string text) {
  for (char& character : text) {
    if (character >= 'A' && character <= 'Z') character = static_cast<char>(character - 'A' + 'a');
  }
  return text;
}

/// The bits of an integer that is written in lower-case "0x" or in decimal, whatever its leading zeros.
std::optional<std::uint64_t> ReadInteger(std::string_view text, DataType type) {
  if (text.starts_with("0x")) return ReadUnsigned(text, NumberBase::Hexadecimal);
  if (type == kDataUnsigned) return ReadUnsigned(text, NumberBase::Decimal);
  if (text.find_first_of("xX") != std::string_view::npos) return std::nullopt;
  const auto number = ReadSigned(WithoutOctalZeros(text));
  return number ? std::optional(static_cast<std::uint64_t>(*number)) : std::nullopt;
}

std::string DecimalText(std::uint64_t bits, DataType type) {
  return type == kDataSigned ? std::to_string(static_cast<std::int64_t>(bits)) : std::to_string(bits);
}

}  // namespace

std::optional<std::string> AutomaticSize(std::string_view value, DataType type, const DataPurpose& purpose) {
  if (purpose.limit) {
    return *purpose.limit == 0 ? std::nullopt : std::optional(std::to_string(*purpose.limit));
  }
  std::string complete(value);
  if (purpose.hexadecimal && IsInteger(type) && !complete.empty() && !HasHexadecimalPrefix(complete)) {
    complete.insert(0, "0x");
  }
  std::uint32_t size = 0;
  if (!GetNaturalLength(complete, type, size, purpose.folder)) return "N/A";
  if (complete.empty() && type != kDataString && type != kDataByteArray) return std::nullopt;
  return std::to_string(size);
}

DataComposer::DataComposer(const DataDefinition& definition, DataPurpose purpose)
    : mPurpose(std::move(purpose)),
      mValue(definition.text),
      mSize(std::to_string(definition.size)),
      mAutomatic(definition.automatic) {
  const DataType type = GetDataType(definition.text);
  if (type != kDataUntyped) mType = type;
  StripDataPrefix(mValue);
  if (IsInteger(mType)) ShowInteger(definition.size);
}

// Only what is a number and nothing else is rewritten.
void DataComposer::ShowInteger(std::uint32_t size) {
  const auto bits = ReadInteger(mValue, mType);
  if (!bits) return;
  if (!mPurpose.hexadecimal) {
    mValue = DecimalText(*bits, mType);
    return;
  }
  mValue = NResources::Print("%X", *bits);
  const std::uint64_t digits = std::uint64_t{2} * size;
  if (mValue.size() > digits) mValue.erase(0, mValue.size() - digits);
}

void DataComposer::SetType(DataType type) {
  mType = type;
  UpdateSize();
}

void DataComposer::SetValue(std::string value) {
  mValue = std::move(value);
  UpdateSize();
}

void DataComposer::SetAutomatic(bool automatic) {
  mAutomatic = automatic;
  UpdateSize();
}

void DataComposer::SetFile(const std::filesystem::path& file) {
  const auto relative =
      mPurpose.folder.empty() ? std::filesystem::path{} : file.lexically_relative(mPurpose.folder);
  mType = kDataFile;
  mAutomatic = true;
  SetValue(NCommon::PathToItemText(relative.empty() ? file : relative));
}

void DataComposer::UpdateSize() {
  if (!mAutomatic) return;
  if (auto size = AutomaticSize(mValue, mType, mPurpose)) mSize = std::move(*size);
}

/// The value as it is parsed.
std::string DataComposer::CompleteValue() const {
  if (!IsInteger(mType)) return mValue;
  if (HasHexadecimalPrefix(mValue)) {
    if (!mValue.starts_with("0x")) return mValue;
    return "0x" + WithoutLeadingZeros(std::string_view(mValue).substr(2));
  }
  if (!mPurpose.hexadecimal) return WithoutOctalZeros(mValue);
  std::string complete = "0x" + WithoutLeadingZeros(mValue);
  // A negative number is shown as its bits, and 64 of them are no signed number in hexadecimal.
  if (mType == kDataSigned && !ReadSigned(complete)) {
    if (const auto bits = ReadUnsigned(complete, NumberBase::Hexadecimal)) return DecimalText(*bits, mType);
  }
  return complete;
}

std::wstring DataComposer::LimitMessage(std::uint32_t naturalSize) const {
  return NResources::Print(
      NResources::LoadText(mPurpose.isPdo ? IDS_DATA_EXCEEDS_PDO : IDS_DATA_EXCEEDS_OBJECT), naturalSize,
      *mPurpose.limit);
}

/// False: the size is refused.
bool DataComposer::CheckSize(std::uint32_t naturalSize, std::uint32_t size, ComposerAnswer& answer) const {
  if (mAutomatic) {
    if (naturalSize <= size || !mPurpose.limit) return true;
    answer.warnings.push_back(LimitMessage(naturalSize));
    answer.focus = ComposerField::Value;
    return false;
  }
  if (mPurpose.limit && naturalSize > *mPurpose.limit) answer.warnings.push_back(LimitMessage(naturalSize));
  if (naturalSize <= size) return true;
  answer.warnings.push_back(
      NResources::Print(NResources::LoadText(IDS_DATA_EXCEEDS_LENGTH), naturalSize, size));
  answer.focus = ComposerField::Size;
  return false;
}

std::string DataComposer::Normalise(std::string value) const {
  if (!IsInteger(mType)) return value;
  value = ToLower(std::move(value));
  const bool isHexadecimal = value.starts_with("0x");
  const auto bits = ReadInteger(value, mType);
  if (!bits || isHexadecimal != mPurpose.hexadecimal) return value;
  return isHexadecimal ? NResources::Print("0x%x", *bits) : DecimalText(*bits, mType);
}

ComposerAnswer DataComposer::Accept() {
  ComposerAnswer answer;
  std::string value = CompleteValue();
  std::uint32_t naturalSize = 0;
  GetNaturalLength(value, mType, naturalSize, mPurpose.folder);  // what has none is refused by the parser

  const auto size = ReadUnsigned(mSize, NumberBase::Decimal,
                                 mPurpose.isPdo ? kMaxPdoSize : std::numeric_limits<std::uint32_t>::max());
  if (!size) {
    answer.balloon = NResources::LoadText(IDS_ENTRY_SYNTAX);
    answer.focus = ComposerField::Size;
    return answer;
  }
  if (!CheckSize(naturalSize, static_cast<std::uint32_t>(*size), answer)) return answer;

  std::string text = value;
  AddDataPrefix(text, mType);
  std::vector<std::uint8_t> bytes;
  if (!ParseTypedData(text, bytes, static_cast<std::uint32_t>(*size), mPurpose.folder)) {
    answer.balloon = NResources::LoadText(IDS_ENTRY_SYNTAX);
    answer.focus = ComposerField::Value;
    return answer;
  }
  value = Normalise(std::move(value));
  AddDataPrefix(value, mType);
  answer.result = DataDefinition{std::move(value), static_cast<std::uint32_t>(*size), mAutomatic};
  return answer;
}

}  // namespace NEditors
