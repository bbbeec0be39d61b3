#include "ig/settings.h"

#include <charconv>
#include <optional>

#include "com/task_text.h"

namespace NIg {
namespace {

constexpr wchar_t kNameKey[] = L"Name";
constexpr wchar_t kSequenceRelativeKey[] = L"LastCOIGSequenceRel";
constexpr wchar_t kSequenceAbsoluteKey[] = L"LastCOIGSequenceAbs";

std::optional<std::wstring> Read(NSdk::IPersistReader& reader, const wchar_t* key) {
  NCom::TaskText value;
  if (reader.ReadText(key, value.Receive()) != S_OK) return std::nullopt;
  return value.Text();
}

std::optional<std::uint32_t> ToNumber(const std::wstring& text) {
  std::string narrow;
  for (const wchar_t character : text) narrow += character < 0x80 ? static_cast<char>(character) : '?';
  std::uint32_t number = 0;
  const char* end = narrow.data() + narrow.size();
  const auto [stop, error] = std::from_chars(narrow.data(), end, number);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

}  // namespace

void LoadSettings(NSdk::IPersistReader& reader, GeneratorSettings& settings) {
  if (const auto name = Read(reader, kNameKey)) settings.name = *name;
  if (const auto path = Read(reader, kSequenceRelativeKey)) settings.sequence.relative = *path;
  if (const auto path = Read(reader, kSequenceAbsoluteKey)) settings.sequence.absolute = *path;
  for (const NumberField& field : kNumberFields) {
    const auto text = Read(reader, field.key);
    const auto number = text ? ToNumber(*text) : std::nullopt;
    if (number && *number >= field.minimum && *number <= field.maximum) {
      settings.numbers.*field.member = *number;
    }
  }
}

HRESULT SaveSettings(NSdk::IPersistWriter& writer, const GeneratorSettings& settings) {
  HRESULT result = writer.WriteText(kNameKey, settings.name.c_str());
  for (const NumberField& field : kNumberFields) {
    if (FAILED(result)) return result;
    result = writer.WriteText(field.key, std::to_wstring(settings.numbers.*field.member).c_str());
  }
  if (SUCCEEDED(result)) result = writer.WriteText(kSequenceRelativeKey, settings.sequence.relative.c_str());
  if (SUCCEEDED(result)) result = writer.WriteText(kSequenceAbsoluteKey, settings.sequence.absolute.c_str());
  return result;
}

}  // namespace NIg
