#include "host/bench/options.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <stdexcept>

#include "host/bench/console.h"
#include "host/buses/bus_factory.h"
#include "host/runtime/text.h"

namespace NBench {
namespace {

constexpr std::uint32_t kLastChannel = 255;
constexpr std::uint32_t kLongestDelay_ms = 100000;
constexpr double kLongestRun_s = 1e8;

constexpr char kHelp[] = R"(Reference host of the Ostrel module for the command line.

Usage: ostrel-bench COMMAND [OPTIONS]

Commands:
  play FILE.seq   Play a sequence file on a CAN bus

Options:
  -h, --help      Print this help; behind a command, the help of that command
  --version       Print the version

Example:
  ostrel-bench play first-steps.seq
)";

constexpr char kPlayHelp[] = R"(Plays a sequence file through the module's generator on a CAN bus.

Usage: ostrel-bench play FILE.seq [OPTIONS]

The run ends with the sequence. With --cyclic it goes on until Ctrl+C, or until
the sequence has stopped the cyclic list. With --for it lasts the time given.

What is sent, and how:
  --can NUMBER=BUS   Put CAN channel NUMBER on a bus; may be given several times
                     (default: 1=virtual)
  --channel NUMBER   Channel on which the generator sends (default: the lowest)
  --cyclic           Send the cyclic list too, from the beginning
  --for SECONDS      Run for this long
  --delay MS         Pause between two items, 1 to 100000 (default: 10)
  --device NODE      Put a simulated CANopen device on the generator's bus, an I/O
                     device with this node-ID; may be given several times
  --variant NAME     Kind of host to be, halvard or tesmond (default: halvard)
  --module PATH      Module to load (default: Ostrel.hpi beside this program)

What is shown:
  --frames           The frames on the bus
  --transfers        SDO transfers in words. Without either, a terminal shows both
                     and everything else the frames
  --times            The time of each frame in front of it, in seconds
  --words            What each frame means in CANopen behind it
  --json             One JSON document at the end, nothing else
  --log OUT.log      Write the frames of all channels to a candump log; channel 1
                     is called can1 there

Buses:
)";

constexpr char kPlayFooter[] = R"(
Exit status: 0 transmitted, 1 not everything was transmitted, 2 bad input,
130 stopped by Ctrl+C before the end of the sequence.

Examples:
  ostrel-bench play first-steps.seq
      Each item of the sequence once, every frame as it leaves.
  ostrel-bench play first-steps.seq --cyclic --for 5 --log out.log
      Five seconds with the cyclic list, into a log for can-utils.
  ostrel-bench play first-steps.seq --device 5 --transfers
      Against a simulated device, its SDO transfers in words.
  ostrel-bench play first-steps.seq --json > frames.json
      For a script.
)";

[[noreturn]] void Refuse(const std::string& option, const std::string& value, const std::string& wanted) {
  throw std::runtime_error(option + " " + (value.empty() ? "\"\"" : value) + ": " + wanted);
}

std::optional<std::uint32_t> ParseNumber(const std::string& text, std::uint32_t low, std::uint32_t high) {
  std::uint32_t number = 0;
  const char* end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stopped != end || number < low || number > high) return std::nullopt;
  return number;
}

std::string Range(std::uint32_t low, std::uint32_t high) {
  return std::to_string(low) + " to " + std::to_string(high);
}

std::chrono::nanoseconds ParseSeconds(const std::string& text) {
  double seconds = 0;
  const char* end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, seconds, std::chars_format::fixed);
  // The comparison is written so that "nan" fails it.
  if (error != std::errc() || stopped != end || !(seconds > 0 && seconds <= kLongestRun_s)) {
    Refuse("--for", text, "a number of seconds greater than 0 is wanted");
  }
  return std::max(std::chrono::nanoseconds(1), std::chrono::nanoseconds(std::llround(seconds * 1e9)));
}

NSdk::HostVariant ParseVariant(const std::string& text) {
  if (text == "halvard") return NSdk::kHostHalvard;
  if (text == "tesmond") return NSdk::kHostTesmond;
  Refuse("--variant", text, "halvard or tesmond is wanted");
}

ChannelOption ParseChannel(const std::string& text) {
  const std::size_t equals = text.find('=');
  const auto number = ParseNumber(text.substr(0, equals), 1, kLastChannel);
  if (equals == std::string::npos || !number) {
    Refuse("--can", text, "NUMBER=BUS is wanted, with a channel number from " + Range(1, kLastChannel));
  }
  return {*number, text.substr(equals + 1)};
}

std::vector<ChannelOption> ParseChannels(const std::vector<std::string>& texts) {
  if (texts.empty()) return {{1, "virtual"}};
  std::vector<ChannelOption> channels;
  for (const std::string& text : texts) {
    ChannelOption channel = ParseChannel(text);
    const auto same = [&](const ChannelOption& other) { return other.number == channel.number; };
    if (std::any_of(channels.begin(), channels.end(), same)) {
      Refuse("--can", text, "channel " + std::to_string(channel.number) + " is given twice");
    }
    channels.push_back(std::move(channel));
  }
  return channels;
}

// Without --channel the generator sends on the lowest channel that there is.
std::uint32_t ChooseChannel(const std::optional<std::string>& text,
                            const std::vector<ChannelOption>& channels) {
  std::string known;
  std::uint32_t lowest = channels.front().number;
  const auto wanted = text ? ParseNumber(*text, 1, kLastChannel) : std::nullopt;
  for (const ChannelOption& channel : channels) {
    if (wanted && channel.number == *wanted) return *wanted;
    lowest = std::min(lowest, channel.number);
    known += (known.empty() ? "" : ", ") + std::to_string(channel.number);
  }
  if (text) {
    Refuse("--channel", *text,
           "there is no such CAN channel (" + std::string(channels.size() > 1 ? "channels: " : "channel: ") +
               known + ")");
  }
  return lowest;
}

// Two devices of one node-ID would answer each other's requests.
std::vector<DeviceOption> ParseDevices(const std::vector<std::string>& texts, std::uint32_t channel) {
  std::vector<DeviceOption> devices;
  for (const std::string& text : texts) {
    NDevices::DeviceWord word = NDevices::ParseDeviceWord(text);
    for (const DeviceOption& other : devices) {
      if (other.device.nodeId == word.nodeId) Refuse("--device", text, "this node-ID is given twice");
    }
    devices.push_back({channel, std::move(word)});
  }
  return devices;
}

// The options as text, before anything is checked.
struct Texts {
  std::string sequence, delay = "10", variant = "halvard";
  std::optional<std::string> channel, duration, log, module;
  std::vector<std::string> channels, devices;
  bool cyclic = false, json = false, times = false, words = false;
  bool frames = false, transfers = false;
};

// The help texts are written out above: the library's own have neither order nor line ends.
CLI::App* AddPlay(CLI::App& app, Texts& texts) {
  CLI::App* play = app.add_subcommand("play");
  play->add_option("FILE.seq", texts.sequence)->required();
  play->add_option("--can", texts.channels)->allow_extra_args(false);
  play->add_option("--device", texts.devices)->allow_extra_args(false);
  play->add_option("--channel", texts.channel);
  play->add_flag("--cyclic", texts.cyclic);
  play->add_option("--for", texts.duration);
  play->add_option("--delay", texts.delay);
  play->add_option("--log", texts.log);
  play->add_option("--variant", texts.variant);
  play->add_option("--module", texts.module);
  play->add_flag("--json", texts.json);
  play->add_flag("--frames", texts.frames);
  play->add_flag("--transfers", texts.transfers);
  play->add_flag("--times", texts.times);
  play->add_flag("--words", texts.words);
  return play;
}

PlayOptions Check(const Texts& texts) {
  PlayOptions options;
  options.sequence = NRuntime::ToPath(texts.sequence);
  options.host.channels = ParseChannels(texts.channels);
  options.channel = ChooseChannel(texts.channel, options.host.channels);
  options.host.devices = ParseDevices(texts.devices, options.channel);
  options.cyclic = texts.cyclic;
  options.json = texts.json;
  // A program that reads the output expects frames alone; a person sees the transfers as well.
  const bool chosen = texts.frames || texts.transfers;
  options.view = {chosen ? texts.frames : true, chosen ? texts.transfers : IsTerminal(stdout), texts.times,
                  texts.words};
  options.host.variant = ParseVariant(texts.variant);
  const auto delay = ParseNumber(texts.delay, 1, kLongestDelay_ms);
  if (!delay) {
    Refuse("--delay", texts.delay,
           "a number of milliseconds from " + Range(1, kLongestDelay_ms) + " is wanted");
  }
  options.delay_ms = *delay;
  if (texts.duration) options.duration = ParseSeconds(*texts.duration);
  if (texts.log) options.log = NRuntime::ToPath(*texts.log);
  if (texts.module) options.host.module = NRuntime::ToPath(*texts.module);
  return options;
}

std::string FirstLine(const std::string& text) { return text.substr(0, text.find('\n')); }

}  // namespace

CommandLine ParseCommandLine(const std::vector<std::string>& arguments) {
  CLI::App app("", "ostrel-bench");
  app.set_version_flag("--version", "ostrel-bench " OSTREL_VERSION "\n");
  app.allow_windows_style_options(false);  // "/folder/file.seq" is a file on Windows too
  app.require_subcommand(0, 1);
  Texts texts;
  const CLI::App* play = AddPlay(app, texts);
  try {
    app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
  } catch (const CLI::CallForHelp&) {
    return {std::nullopt, play->parsed() ? kPlayHelp + NBuses::DescribeBusKinds() + kPlayFooter : kHelp};
  } catch (const CLI::CallForVersion& version) {
    return {std::nullopt, version.what()};
  } catch (const CLI::ArgumentMismatch& error) {
    const std::string text = FirstLine(error.what());
    const bool missing = text.find("missing") != std::string::npos;
    throw std::runtime_error(missing ? text.substr(0, text.find(':')) + ": a value is wanted behind it"
                                     : text);
  } catch (const CLI::ParseError& error) {
    throw std::runtime_error(FirstLine(error.what()));
  }
  if (!play->parsed()) throw std::runtime_error("a command is wanted; ostrel-bench --help lists them");
  return {Check(texts), {}};
}

}  // namespace NBench
