#include "host/bench/options.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <stdexcept>

#include "host/buses/bus_factory.h"
#include "host/runtime/text.h"

namespace NBench {
namespace {

constexpr std::uint32_t kLastChannel = 255;
constexpr std::uint32_t kLongestDelay_ms = 100000;
constexpr double kLongestRun_s = 1e8;

constexpr char kPlayHelp[] =
    "Plays a sequence file through the module's generator on a CAN bus.\n"
    "\n"
    "The run ends with the sequence. With --cyclic it goes on until the cyclic list has been stopped by the "
    "sequence or "
    "by Ctrl+C; with --for it lasts the time given, whatever is still to be sent.";

constexpr char kExamples[] =
    "Examples:\n"
    "  ostrel-bench play first-steps.seq\n"
    "      each item of the sequence once, every frame as it leaves\n"
    "  ostrel-bench play first-steps.seq --cyclic --for 5 --log out.log\n"
    "      5 seconds with the cyclic list, into a log for can-utils and other tools\n"
    "  ostrel-bench play first-steps.seq --json > frames.json\n"
    "      for a script\n";

std::string StatusHelp() {
  return "Exit status: 0 transmitted, 1 not everything was transmitted, 2 bad input, 130 stopped before the "
         "end of "
         "the sequence.\n";
}

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
std::uint32_t ChooseChannel(const std::string& text, const std::vector<ChannelOption>& channels) {
  std::string known;
  std::uint32_t lowest = channels.front().number;
  const auto wanted = ParseNumber(text, 1, kLastChannel);
  for (const ChannelOption& channel : channels) {
    if (wanted && channel.number == *wanted) return *wanted;
    lowest = std::min(lowest, channel.number);
    known += (known.empty() ? "" : ", ") + std::to_string(channel.number);
  }
  if (!text.empty()) {
    Refuse("--channel", text,
           "there is no such CAN channel (" + std::string(channels.size() > 1 ? "channels: " : "channel: ") +
               known + ")");
  }
  return lowest;
}

// The options as text, before anything is checked.
struct Texts {
  std::string sequence, channel, duration, delay = "10", log, variant = "halvard", module;
  std::vector<std::string> channels;
  bool cyclic = false, json = false, times = false;
};

CLI::App* AddPlay(CLI::App& app, Texts& texts) {
  CLI::App* play = app.add_subcommand("play", "Play a sequence file on a CAN bus");
  play->description(kPlayHelp);
  play->footer("Buses:\n" + NBuses::DescribeBusKinds() + "\n" + kExamples + "\n" + StatusHelp());
  play->add_option("FILE.seq", texts.sequence, "Sequence file")->required();
  play->add_option("--can", texts.channels,
                   "CAN channel NUMBER is on BUS; may be given several times (1=virtual)")
      ->option_text("NUMBER=BUS")
      ->allow_extra_args(false);
  play->add_option("--channel", texts.channel, "Channel on which the generator sends (the lowest one)")
      ->option_text("NUMBER");
  play->add_flag("--cyclic", texts.cyclic, "Send the cyclic list as well, from the beginning");
  play->add_option("--for", texts.duration, "How long to run")->option_text("SECONDS");
  play->add_option("--delay", texts.delay, "Pause between two items of the sequence (10)")->option_text("MS");
  play->add_option("--log", texts.log, "Write what is seen on all channels as a candump log")
      ->option_text("OUT.log");
  play->add_option("--variant", texts.variant, "Kind of host to be: halvard or tesmond (halvard)")
      ->option_text("NAME");
  play->add_option("--module", texts.module, "Module to load (the Ostrel.hpi beside this program)")
      ->option_text("PATH");
  play->add_flag("--json", texts.json, "One JSON document at the end instead of text");
  play->add_flag("--times", texts.times, "Print the time of each frame, in seconds since the start");
  return play;
}

PlayOptions Check(const Texts& texts) {
  PlayOptions options;
  options.sequence = NRuntime::ToPath(texts.sequence);
  options.host.channels = ParseChannels(texts.channels);
  options.channel = ChooseChannel(texts.channel, options.host.channels);
  options.cyclic = texts.cyclic;
  options.json = texts.json;
  options.times = texts.times;
  options.host.variant = ParseVariant(texts.variant);
  const auto delay = ParseNumber(texts.delay, 1, kLongestDelay_ms);
  if (!delay) {
    Refuse("--delay", texts.delay,
           "a number of milliseconds from " + Range(1, kLongestDelay_ms) + " is wanted");
  }
  options.delay_ms = *delay;
  if (!texts.duration.empty()) options.duration = ParseSeconds(texts.duration);
  if (!texts.log.empty()) options.log = NRuntime::ToPath(texts.log);
  if (!texts.module.empty()) options.host.module = NRuntime::ToPath(texts.module);
  return options;
}

std::string FirstLine(const std::string& text) { return text.substr(0, text.find('\n')); }

}  // namespace

CommandLine ParseCommandLine(const std::vector<std::string>& arguments) {
  CLI::App app("Reference host of the Ostrel module for the command line.", "ostrel-bench");
  app.set_version_flag("--version", "ostrel-bench " OSTREL_VERSION, "Print the version");
  app.set_help_flag("-h,--help", "Print this help");
  app.require_subcommand(0, 1);
  app.footer(std::string(kExamples) + "\nostrel-bench COMMAND --help tells more about a command.");
  Texts texts;
  const CLI::App* play = AddPlay(app, texts);
  try {
    app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
  } catch (const CLI::CallForHelp&) {
    return {std::nullopt, (play->parsed() ? play : &app)->help()};
  } catch (const CLI::CallForVersion& version) {
    return {std::nullopt, std::string(version.what()) + '\n'};
  } catch (const CLI::ParseError& error) {
    throw std::runtime_error(FirstLine(error.what()));
  }
  if (!play->parsed()) throw std::runtime_error("a command is wanted; ostrel-bench --help lists them");
  return {Check(texts), {}};
}

}  // namespace NBench
