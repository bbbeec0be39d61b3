#include "host/buses/bus_name.h"

#include <algorithm>
#include <stdexcept>

namespace NBuses {
namespace {

[[noreturn]] void Refuse(std::string_view word, const std::string& reason) {
  throw std::runtime_error("bus \"" + std::string(word) + "\": " + reason);
}

// Takes the text up to a separator off the front, and the separator with it.
std::string_view TakeUpTo(std::string_view& text, char separator) {
  const std::size_t end = text.find(separator);
  const std::string_view taken = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  return taken;
}

// Takes what stands before the options off the front: KIND[:ADDRESS].
std::string_view TakeHead(std::string_view word, std::string_view& text) {
  const std::size_t colon = text.find(':');
  const bool quoted = text.find(',') > colon && text.substr(colon + 1).starts_with('"');
  if (colon == std::string_view::npos || !quoted) return TakeUpTo(text, ',');
  const std::size_t first = colon + 2;
  const std::size_t end = std::min(text.find("\",", first), text.size() - 1);
  if (end < first || text[end] != '"') Refuse(word, "the quotation mark of the address is not closed");
  const std::string_view head = text.substr(0, end + 1);
  text.remove_prefix(std::min(end + 2, text.size()));
  return head;
}

std::string_view WithoutQuotes(std::string_view address) {
  return address.starts_with('"') ? address.substr(1, address.size() - 2) : address;
}

BusName::Option ParseOption(std::string_view word, std::string_view text) {
  const std::size_t equals = text.find('=');
  if (equals == std::string_view::npos || equals == 0 || equals + 1 == text.size()) {
    Refuse(word, "an option is written NAME=VALUE, not \"" + std::string(text) + "\"");
  }
  return {std::string(text.substr(0, equals)), std::string(text.substr(equals + 1))};
}

void AddOption(std::string_view word, BusName& name, BusName::Option option) {
  const auto same = [&](const BusName::Option& other) { return other.first == option.first; };
  if (std::any_of(name.options.begin(), name.options.end(), same)) {
    Refuse(word, "the option \"" + option.first + "\" is given twice");
  }
  name.options.push_back(std::move(option));
}

}  // namespace

BusName ParseBusName(std::string_view word) {
  const bool trailingComma = !word.empty() && word.back() == ',';
  std::string_view rest = word;
  std::string_view address = TakeHead(word, rest);
  const bool hasAddress = address.find(':') != std::string_view::npos;
  BusName name;
  name.kind = TakeUpTo(address, ':');
  name.address = WithoutQuotes(address);
  if (name.kind.empty()) Refuse(word, "a bus is written KIND[:ADDRESS][,OPTION=VALUE...]");
  if (hasAddress && name.address.empty()) Refuse(word, "nothing stands after the colon");
  while (!rest.empty()) AddOption(word, name, ParseOption(word, TakeUpTo(rest, ',')));
  if (trailingComma) Refuse(word, "nothing stands after the last comma");
  return name;
}

std::string BusWord(const BusName& name) {
  const bool quoted = name.address.starts_with('"') || name.address.find(',') != std::string::npos;
  const std::string quote = quoted ? "\"" : "";
  std::string word = name.kind;
  if (!name.address.empty()) word += ':' + quote + name.address + quote;
  for (const auto& [option, value] : name.options) word += ',' + option + '=' + value;
  return word;
}

}  // namespace NBuses
