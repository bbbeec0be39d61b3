#include "host/buses/bus_name.h"

#include <algorithm>
#include <stdexcept>

#include "host/runtime/word_parts.h"

namespace NBuses {
namespace {

using NRuntime::TakeUpTo;

[[noreturn]] void Refuse(std::string_view word, const std::string& reason) {
  throw std::runtime_error("bus \"" + std::string(word) + "\": " + reason);
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
  const auto head = NRuntime::TakeHead(rest);
  if (!head) Refuse(word, "the quotation mark of the address is not closed");
  std::string_view address = *head;
  const bool hasAddress = address.find(':') != std::string_view::npos;
  BusName name;
  name.kind = TakeUpTo(address, ':');
  name.address = NRuntime::Unquoted(address);
  if (name.kind.empty()) Refuse(word, "a bus is written KIND[:ADDRESS][,OPTION=VALUE...]");
  if (hasAddress && name.address.empty()) Refuse(word, "nothing stands after the colon");
  while (!rest.empty()) AddOption(word, name, ParseOption(word, TakeUpTo(rest, ',')));
  if (trailingComma) Refuse(word, "nothing stands after the last comma");
  return name;
}

std::string BusWord(const BusName& name) {
  std::string word = name.kind;
  if (!name.address.empty()) word += ':' + NRuntime::QuotedIfNeeded(name.address);
  for (const auto& [option, value] : name.options) word += ',' + option + '=' + value;
  return word;
}

}  // namespace NBuses
