#include "host/buses/bus_factory.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <stdexcept>

#include "host/buses/socketcan.h"
#include "host/buses/socketcand_client.h"

namespace NBuses {

// A row per kind: what the help says of it, and how it is made.
struct BusFactory::Kind {
  std::string_view name;
  std::string_view form;
  std::string_view meaning;
  std::vector<std::string_view> options;
  Adapter (BusFactory::*make)(std::string_view word, const BusName& name);
};

namespace {

constexpr std::string_view kLinuxKind = "socketcan";

}  // namespace

const std::vector<BusFactory::Kind>& BusFactory::Kinds() {
  static const std::vector<Kind> kinds = [] {
    std::vector<Kind> all = {
        {"virtual",
         "virtual[:NAME]",
         "a bus inside this program, shared by channels with\n"
         "                         the same NAME; option bitrate=BPS: frames take\n"
         "                         their time on it",
         {"bitrate"},
         &BusFactory::MakeVirtual},
        {"replay",
         "replay:FILE",
         "a log of candump; options speed=FACTOR or speed=max,\n"
         "                         iface=NAME for the frames of one interface",
         {"speed", "iface"},
         &BusFactory::MakeReplay},
        {kLinuxKind,
         "socketcan:IFACE",
         "an interface of this machine, can0 for example",
         {},
         &BusFactory::MakeSocketCan},
        {"socketcand",
         "socketcand:HOST/IFACE",
         "an interface of another machine; HOST may be\n"
         "                         HOST:PORT",
         {},
         &BusFactory::MakeSocketcand},
    };
    if (!HasSocketCan()) std::erase_if(all, [](const Kind& kind) { return kind.name == kLinuxKind; });
    return all;
  }();
  return kinds;
}

namespace {

constexpr std::size_t kMeaningColumn = 25;  // of the help text
constexpr std::uint32_t kLowestBitRate = 1000, kHighestBitRate = 1000000;
constexpr std::size_t kLongestInterface = 64;
constexpr std::size_t kLongestLinuxInterface = 15;
constexpr double kLowestSpeed = 0.01, kHighestSpeed = 1000;

[[noreturn]] void Refuse(std::string_view word, const std::string& reason) {
  throw std::runtime_error("bus \"" + std::string(word) + "\": " + reason);
}

template <class Range, class Name>
std::string Join(const Range& range, Name name) {
  std::string text;
  for (const auto& element : range) text += (text.empty() ? "" : ", ") + std::string(name(element));
  return text;
}

void CheckOptions(std::string_view word, const BusName& name, const std::vector<std::string_view>& options) {
  for (const auto& [option, value] : name.options) {
    if (std::find(options.begin(), options.end(), option) != options.end()) continue;
    const std::string known = Join(options, [](std::string_view text) { return text; });
    Refuse(word, "unknown option \"" + option + "\" (" + name.kind + " has " +
                     (known.empty() ? "none" : known) + ")");
  }
}

std::optional<std::string> Option(const BusName& name, std::string_view option) {
  for (const auto& [key, value] : name.options) {
    if (key == option) return value;
  }
  return std::nullopt;
}

std::uint32_t ParseBitRate(std::string_view word, const std::string& text) {
  std::uint32_t rate = 0;
  const char* end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, rate);
  if (error != std::errc() || stopped != end || rate < kLowestBitRate || rate > kHighestBitRate) {
    Refuse(word, "bitrate=" + text + ": bits per second from 1000 to 1000000 are wanted");
  }
  return rate;
}

double ParseSpeed(std::string_view word, const std::string& text) {
  double speed = 0;
  const char* end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, speed, std::chars_format::fixed);
  // The comparison is written so that "nan" fails it.
  if (error != std::errc() || stopped != end || !(speed >= kLowestSpeed && speed <= kHighestSpeed)) {
    Refuse(word, "speed=" + text + ": max or a factor from 0.01 to 1000 is wanted");
  }
  return speed;
}

}  // namespace

const BusFactory::Kind& BusFactory::FindKind(std::string_view word, const BusName& name) {
  for (const Kind& kind : Kinds()) {
    if (kind.name == name.kind) return kind;
  }
  const std::string known = Join(Kinds(), [](const Kind& kind) { return kind.name; });
  if (name.kind == kLinuxKind) {
    Refuse(word,
           "SocketCAN is a part of Linux; from here an interface of a Linux machine is reached with "
           "socketcand:HOST/" +
               (name.address.empty() ? "IFACE" : name.address));
  }
  Refuse(word, "unknown kind \"" + name.kind + "\" (known: " + known + ")");
}

BusFactory::Adapter BusFactory::Make(std::string_view word) {
  const BusName name = ParseBusName(word);
  const Kind& kind = FindKind(word, name);
  CheckOptions(word, name, kind.options);
  return (this->*kind.make)(word, name);
}

BusFactory::Adapter BusFactory::MakeVirtual(std::string_view word, const BusName& name) {
  std::shared_ptr<VirtualBus> bus = mVirtualBuses.Get(name.address);
  const auto bitRate = Option(name, "bitrate");
  if (bitRate && !bus->SetBitRate(ParseBitRate(word, *bitRate))) {
    Refuse(word, "the bit rate of this bus is " + std::to_string(bus->BitRate()) + " already");
  }
  return std::make_unique<VirtualPort>(std::move(bus));
}

BusFactory::Adapter BusFactory::MakeReplay(std::string_view word, const BusName& name) {
  if (name.address.empty()) Refuse(word, "the name of a log is wanted: replay:FILE");
  const std::string speed = Option(name, "speed").value_or("1");
  if (speed == "max") {
    SkipWaits(word);
  } else {
    KeepRealTime(word);
  }
  return std::make_unique<ReplayPort>(
      mReplays.Get(name.address, speed == "max" ? 1 : ParseSpeed(word, speed)), Option(name, "iface"));
}

BusFactory::Adapter BusFactory::MakeSocketCan(std::string_view word, const BusName& name) {
  if (name.address.empty() || name.address.size() > kLongestLinuxInterface) {
    Refuse(word, "the name of an interface is wanted, up to 15 characters: socketcan:can0");
  }
  if (!mIoLoop) Refuse(word, "there are no interfaces here");
  KeepRealTime(word);
  return NBuses::MakeSocketCan(*mIoLoop, name.address);
}

BusFactory::Adapter BusFactory::MakeSocketcand(std::string_view word, const BusName& name) {
  const std::size_t slash = name.address.rfind('/');
  const auto server = ReadHostAndPort(std::string_view(name.address).substr(0, slash));
  const std::string interfaceName = slash == std::string::npos ? "" : name.address.substr(slash + 1);
  const bool isClean = interfaceName.find_first_of(" \t\r\n<>") == std::string::npos;
  if (!server || server->port == 0 || interfaceName.empty() || !isClean ||
      interfaceName.size() > kLongestInterface) {
    Refuse(word, "an address is written HOST[:PORT]/INTERFACE, 127.0.0.1:29536/can1 for example");
  }
  if (!mIoLoop) Refuse(word, "there is no network here");
  KeepRealTime(word);
  return std::make_unique<SocketcandClient>(*mIoLoop, *server, interfaceName);
}

void BusFactory::SkipWaits(std::string_view word) {
  if (!mRealTimeBus.empty()) {
    Refuse(word, "speed=max sets the clock, but \"" + mRealTimeBus + "\" goes by the real one");
  }
  if (mFastReplay.empty()) mFastReplay = word;
  if (mIoLoop) mIoLoop->SkipWaits();
}

void BusFactory::KeepRealTime(std::string_view word) {
  if (!mFastReplay.empty()) {
    Refuse(word, "it goes by the real clock, but \"" + mFastReplay + "\" sets its own with speed=max");
  }
  if (mRealTimeBus.empty()) mRealTimeBus = word;
}

std::string DescribeBusKinds() {
  std::string text;
  for (const BusFactory::Kind& kind : BusFactory::Kinds()) {
    std::string form = "  " + std::string(kind.form);
    form.resize(std::max(form.size() + 1, kMeaningColumn), ' ');
    text += form + std::string(kind.meaning) + "\n";
  }
  return text;
}

}  // namespace NBuses
