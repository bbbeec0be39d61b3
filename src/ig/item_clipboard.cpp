#include "ig/item_clipboard.h"

#include <charconv>
#include <optional>

namespace NIg {
namespace {

using NCanopen::ItemField;
using NCanopen::ItemKind;
using NCanopen::ZMsgItemInfo;

constexpr std::string_view kEnabled = "Enabled";
constexpr char kDigits[] = "0123456789ABCDEF";

std::string ToDigits(const std::string& text) {
  std::string digits;
  for (const char character : text) {
    const auto byte = static_cast<unsigned char>(character);
    digits += {kDigits[byte >> 4], kDigits[byte & 15]};
  }
  return digits;
}

std::optional<std::uint32_t> ToNumber(std::string_view text, int base = 10) {
  std::uint32_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, base);
  if (text.empty() || error != std::errc() || stop != end) return std::nullopt;
  return number;
}

std::optional<std::string> FromDigits(std::string_view digits) {
  if (digits.size() % 2 != 0) return std::nullopt;
  std::string text;
  for (std::size_t at = 0; at < digits.size(); at += 2) {
    const auto byte = ToNumber(digits.substr(at, 2), 16);
    if (!byte || *byte == 0) return std::nullopt;  // no text holds a zero
    text += static_cast<char>(*byte);
  }
  return text;
}

// The part before a separator; it and the separator leave the text.
std::string_view TakeWord(std::string_view& text, char separator) {
  const std::size_t end = text.find(separator);
  const std::string_view word = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  return word;
}

void ReadField(ZMsgItemInfo& item, const ItemKind& kind, std::string_view key, std::string_view value) {
  const auto number = ToNumber(value);
  if (key == kEnabled) {
    if (number) item.SetEnabled(*number);
    return;
  }
  const ItemField* const field = FindField(kind, key);
  if (!field) return;
  if (field->setNumber && number) field->setNumber(item, *number);
  if (!field->setText) return;
  if (auto text = FromDigits(value)) field->setText(item, std::move(*text));
}

std::unique_ptr<ZMsgItemInfo> ReadItem(std::string_view line, const bool* hexDisplay) {
  const ItemKind* const kind = NCanopen::FindItemKind(TakeWord(line, ' '));
  if (!kind) return nullptr;
  auto item = kind->make(hexDisplay);
  while (!line.empty()) {
    std::string_view value = TakeWord(line, ' ');
    const std::string_view key = TakeWord(value, '=');
    ReadField(*item, *kind, key, value);
  }
  return item;
}

}  // namespace

std::string WriteItems(std::span<const ZMsgItemInfo* const> items) {
  std::string text;
  for (const ZMsgItemInfo* item : items) {
    const ItemKind& kind = NCanopen::KindOf(*item);
    text.append(kind.name).append(" ").append(kEnabled).append("=");
    text += std::to_string(item->GetEnabled());
    for (const ItemField& field : kind.fields) {
      text.append(" ").append(field.key).append("=");
      text += field.number ? std::to_string(field.number(*item)) : ToDigits(field.text(*item));
    }
    text += '\n';
  }
  return text;
}

NCanopen::ItemList ReadItems(std::string_view text, const bool* hexDisplay) {
  NCanopen::ItemList items;
  text = text.substr(0, kMaxClipboardSize);
  while (!text.empty() && items.size() < kMaxClipboardItems) {
    if (auto item = ReadItem(TakeWord(text, '\n'), hexDisplay)) items.push_back(std::move(item));
  }
  return items;
}

}  // namespace NIg
