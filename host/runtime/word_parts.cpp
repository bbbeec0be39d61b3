#include "host/runtime/word_parts.h"

#include <algorithm>

namespace NRuntime {

std::string_view TakeUpTo(std::string_view& text, char separator) {
  const std::size_t end = text.find(separator);
  const std::string_view taken = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  return taken;
}

std::optional<std::string_view> TakeHead(std::string_view& word) {
  const std::size_t colon = word.find(':');
  const bool quoted = word.find(',') > colon && word.substr(colon + 1).starts_with('"');
  if (colon == std::string_view::npos || !quoted) return TakeUpTo(word, ',');
  const std::size_t first = colon + 2;
  const std::size_t end = std::min(word.find("\",", first), word.size() - 1);
  if (end < first || word[end] != '"') return std::nullopt;
  const std::string_view head = word.substr(0, end + 1);
  word.remove_prefix(std::min(end + 2, word.size()));
  return head;
}

std::string_view Unquoted(std::string_view address) {
  return address.starts_with('"') ? address.substr(1, address.size() - 2) : address;
}

std::string QuotedIfNeeded(const std::string& address) {
  const bool quoted = address.starts_with('"') || address.find(',') != std::string::npos;
  return quoted ? '"' + address + '"' : address;
}

}  // namespace NRuntime
