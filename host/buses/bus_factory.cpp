#include "host/buses/bus_factory.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

#include "host/buses/bus_name.h"

namespace NBuses {
namespace {

constexpr std::uint32_t kLowestBitRate = 1000, kHighestBitRate = 1000000;
constexpr std::size_t kMeaningColumn = 21;  // of the help text

struct BusKind {
  std::string_view name;
  std::string_view form;  // for the help text
  std::string_view meaning;
  std::vector<std::string_view> options;
};

const std::vector<BusKind>& Kinds() {
  static const std::vector<BusKind> kinds = {
      {"virtual",
       "virtual[:NAME]",
       "a bus inside this program; channels with the same NAME share it;\n"
       "                     option bitrate=BPS: frames take their time on it",
       {"bitrate"}},
  };
  return kinds;
}

[[noreturn]] void Refuse(std::string_view word, const std::string& reason) {
  throw std::runtime_error("bus \"" + std::string(word) + "\": " + reason);
}

template <class Range, class Name>
std::string Join(const Range& range, Name name) {
  std::string text;
  for (const auto& element : range) text += (text.empty() ? "" : ", ") + std::string(name(element));
  return text;
}

const BusKind& FindKind(std::string_view word, const BusName& name) {
  for (const BusKind& kind : Kinds()) {
    if (kind.name == name.kind) return kind;
  }
  const std::string known = Join(Kinds(), [](const BusKind& kind) { return kind.name; });
  Refuse(word, "unknown kind \"" + name.kind + "\" (known: " + known + ")");
}

void CheckOptions(std::string_view word, const BusName& name, const BusKind& kind) {
  for (const auto& [option, value] : name.options) {
    if (std::find(kind.options.begin(), kind.options.end(), option) != kind.options.end()) continue;
    const std::string known = Join(kind.options, [](std::string_view text) { return text; });
    Refuse(word, "unknown option \"" + option + "\" (" + std::string(kind.name) + " has " +
                     (known.empty() ? "none" : known) + ")");
  }
}

std::uint32_t ParseBitRate(std::string_view word, const std::string& text) {
  std::uint32_t rate = 0;
  const char* const end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, rate);
  if (error != std::errc() || stopped != end || rate < kLowestBitRate || rate > kHighestBitRate) {
    Refuse(word, "bitrate=" + text + ": bits per second from 1000 to 1000000 are wanted");
  }
  return rate;
}

}  // namespace

std::unique_ptr<NRuntime::CanAdapter> BusFactory::Make(std::string_view word) {
  const BusName name = ParseBusName(word);
  CheckOptions(word, name, FindKind(word, name));
  std::shared_ptr<VirtualBus> bus = mVirtualBuses.Get(name.address);
  for (const auto& [option, bitRate] : name.options) {
    if (bus->SetBitRate(ParseBitRate(word, bitRate))) continue;
    Refuse(word, "the bit rate of this bus is " + std::to_string(bus->BitRate()) + " already");
  }
  return std::make_unique<VirtualPort>(std::move(bus));
}

std::string DescribeBusKinds() {
  std::string text;
  for (const BusKind& kind : Kinds()) {
    std::string form = "  " + std::string(kind.form);
    form.resize(std::max(form.size() + 1, kMeaningColumn), ' ');
    text += form + std::string(kind.meaning) + "\n";
  }
  return text;
}

}  // namespace NBuses
