#include "host/bench/shell_commands.h"

#include <algorithm>
#include <charconv>
#include <set>

#include "host/bench/console.h"
#include "host/bench/node_table.h"
#include "host/bench/node_words.h"
#include "host/bench/options.h"
#include "host/bench/text_table.h"
#include "host/runtime/text.h"

namespace NBench {
namespace {

constexpr std::uint32_t kLastNode = 127;
constexpr std::uint32_t kLastNetwork = 4;
constexpr double kLongestSleep_s = 1e6;
constexpr NRuntime::Time kPatience = std::chrono::seconds(10);

using Words = std::vector<std::string>;

// What may stand behind the name of a command.
enum class Place { Nothing, Switch, File, Nmt, Generator, Command, NodeAndState };

struct Row {
  const char* name;
  const char* arguments;
  std::size_t least, most;  // number of arguments
  Place place;
  const char* summary;
  void (*run)(Shell& shell, const Words& arguments);
};

constexpr std::size_t kAnyNumber = 1000;

// For a message: nothing that a terminal would act on, and no more than fits a line.
std::string OnScreen(const std::string& word) {
  constexpr std::size_t kLongest = 60;
  std::wstring text = Printable(word);
  if (text.size() > kLongest) text = text.substr(0, kLongest - 3) + L"...";
  return NRuntime::ToUtf8(text);
}

[[noreturn]] void Refuse(const std::string& word, const std::string& wanted) {
  throw std::runtime_error("\"" + OnScreen(word) + "\": " + wanted);
}

bool ParseSwitch(const std::string& word) {
  if (word != "on" && word != "off") Refuse(word, "on or off is wanted");
  return word == "on";
}

NRuntime::Time ParseDuration(const std::string& word) {
  double seconds = -1;
  const char* const end = word.data() + word.size();
  const auto [stopped, error] = std::from_chars(word.data(), end, seconds, std::chars_format::fixed);
  if (error != std::errc() || stopped != end || !(seconds >= 0 && seconds <= kLongestSleep_s)) {
    Refuse(word, "a number of seconds is wanted");
  }
  return NRuntime::Time(static_cast<NRuntime::Time::rep>(seconds * 1e9));
}

std::uint32_t ParseNode(const std::string& word) {
  const auto nodeId = ParseNumber(word, 1, kLastNode);
  if (!nodeId) Refuse(word, "a node-ID from " + Range(1, kLastNode) + " is wanted");
  return *nodeId;
}

// States of a node as the NMT commands call them.
constexpr struct {
  const char* word;
  std::uint32_t state;
} kStates[] = {{"boot-up", NSdk::kNodeBootUp},
               {"stopped", NSdk::kNodeStopped},
               {"operational", NSdk::kNodeOperational},
               {"preoperational", NSdk::kNodePreOperational}};

std::uint32_t ParseState(const std::string& word) {
  for (const auto& [known, state] : kStates) {
    if (word == known) return state;
  }
  Refuse(word, "boot-up, stopped, operational or preoperational is wanted");
}

// ---- the commands

void RunStart(Shell& shell, const Words&) { shell.session.Start(); }
void RunStop(Shell& shell, const Words&) { shell.session.Stop(); }
void RunLoad(Shell& shell, const Words& words) { shell.session.Load(NRuntime::ToPath(words[0])); }

void RunSequence(Shell& shell, const Words& words) {
  if (!words.empty()) RunLoad(shell, words);
  const std::uint32_t sent = shell.session.Run();
  shell.session.Settle();
  shell.print(CountText(sent, "item") + " sent\n");
}

void RunCyclic(Shell& shell, const Words& words) { shell.session.SetCyclic(ParseSwitch(words[0])); }
void RunTrace(Shell& shell, const Words& words) { shell.session.SetTrace(ParseSwitch(words[0])); }
void RunSleep(Shell& shell, const Words& words) { shell.session.Sleep(ParseDuration(words[0])); }

// nmt KIND (all | NODE...) [network N]
void RunNmt(Shell& shell, const Words& words) {
  Words targets(words.begin() + 1, words.end());
  std::uint32_t network = 1;
  if (targets.size() >= 2 && targets[targets.size() - 2] == "network") {
    const auto number = ParseNumber(targets.back(), 1, kLastNetwork);
    if (!number) Refuse(targets.back(), "a network from " + Range(1, kLastNetwork) + " is wanted");
    network = *number;
    targets.resize(targets.size() - 2);
  }
  if (targets.empty()) throw std::runtime_error("nmt: all or a node-ID is wanted behind " + words[0]);
  shell.session.Nmt(ParseNmtOrder(words[0], targets, network));
}

void RunWait(Shell& shell, const Words& words) {
  const std::uint32_t nodeId = ParseNode(words[0]);
  const std::uint32_t state = ParseState(words[1]);
  shell.session.WaitForNode(nodeId, state, words.size() > 2 ? ParseDuration(words[2]) : kPatience);
}

void RunTable(Shell& shell, const Words&) {
  std::string text;
  for (const std::string& line : TableLines(shell.session.Table(), SizeOfTerminal(stdout).columns - 1)) {
    text += line + '\n';
  }
  shell.print(text);
}

void RunBlocks(Shell& shell, const Words&) {
  const auto& names = shell.session.Generators();
  std::string text;
  for (std::size_t i = 0; i < names.size(); ++i) {
    text +=
        (i == shell.session.InUse() ? "* " : "  ") + std::to_string(i + 1) + "  " + OnScreen(names[i]) + '\n';
  }
  shell.print(text);
}

void RunUse(Shell& shell, const Words& words) {
  const auto number = ParseNumber(words[0], 1, 0xFFFF);
  if (!number) Refuse(words[0], "the number of a generator is wanted; blocks lists them");
  shell.session.Use(*number - 1);
}

void RunSave(Shell& shell, const Words& words) {
  shell.save(words.empty() ? std::nullopt : std::optional(NRuntime::ToPath(words[0])));
}

void RunQuit(Shell& shell, const Words&) { shell.quit = true; }
void RunHelp(Shell& shell, const Words& words);

constexpr Row kRows[] = {
    {"start", "", 0, 0, Place::Nothing, "Start the measurement; the simulated devices boot", RunStart},
    {"stop", "", 0, 0, Place::Nothing, "Stop it", RunStop},
    {"load", "FILE.seq", 1, 1, Place::File, "Load a sequence into the generator", RunLoad},
    {"run", "[FILE.seq]", 0, 1, Place::File, "Run the sequence and wait for its end", RunSequence},
    {"cyclic", "on|off", 1, 1, Place::Switch, "Send the generator's cyclic list, or no longer", RunCyclic},
    {"nmt", "COMMAND all|NODE...", 2, kAnyNumber, Place::Nmt,
     "operational, preoperational, stop or reset; behind it: network N", RunNmt},
    {"wait", "NODE STATE [SECONDS]", 2, 3, Place::NodeAndState,
     "Wait until a node is boot-up, stopped, operational or preoperational", RunWait},
    {"sleep", "SECONDS", 1, 1, Place::Nothing, "Do nothing but listen", RunSleep},
    {"table", "", 0, 0, Place::Nothing, "The nodes that were heard", RunTable},
    {"trace", "on|off", 1, 1, Place::Switch, "Show frames with their meaning, or no longer", RunTrace},
    {"blocks", "", 0, 0, Place::Nothing, "The generators; * marks the one in use", RunBlocks},
    {"use", "NUMBER", 1, 1, Place::Generator, "Choose the generator that load, run and cyclic mean", RunUse},
    {"save", "[FILE.json]", 0, 1, Place::File, "Save the configuration", RunSave},
    {"help", "[COMMAND]", 0, 1, Place::Command, "This list, or one line of it", RunHelp},
    {"quit", "", 0, 0, Place::Nothing, "Leave; so does the end of the input", RunQuit},
};

const Row* FindRow(const std::string& name) {
  const auto found =
      std::find_if(std::begin(kRows), std::end(kRows), [&](const Row& row) { return name == row.name; });
  return found == std::end(kRows) ? nullptr : found;
}

const Row& NeedRow(const std::string& name) {
  const Row* const row = FindRow(name);
  if (!row) Refuse(name, "no such command; help lists them");
  return *row;
}

std::string Usage(const Row& row) {
  return std::string(row.name) + (*row.arguments ? " " : "") + row.arguments;
}

void RunHelp(Shell& shell, const Words& words) {
  std::vector<std::vector<std::wstring>> lines;
  const auto add = [&](const Row& row) {
    lines.push_back({NRuntime::ToWide(Usage(row)), NRuntime::ToWide(row.summary)});
  };
  if (!words.empty()) {
    add(NeedRow(words[0]));
  } else {
    std::for_each(std::begin(kRows), std::end(kRows), add);
  }
  shell.print(ColumnsText(lines));
}

// ---- completion

Words NodeWords(ShellSession& session) {
  std::set<std::uint32_t> nodes;
  for (const auto& [place, name] : session.GetHost().Names()) nodes.insert(place.second);
  for (const ScannedNode& node : session.Table().nodes) nodes.insert(node.id);
  Words words;
  for (const std::uint32_t node : nodes) words.push_back(std::to_string(node));
  return words;
}

Words NmtWords(ShellSession& session, std::size_t position) {
  if (position == 0) return NmtKinds();
  Words words = NodeWords(session);
  words.emplace_back(position == 1 ? "all" : "network");
  return words;
}

Words NodeAndStateWords(ShellSession& session, std::size_t position) {
  if (position == 0) return NodeWords(session);
  Words words;
  if (position > 1) return words;
  for (const auto& known : kStates) words.emplace_back(known.word);
  return words;
}

Words CommandWords() {
  Words words;
  for (const Row& row : kRows) words.emplace_back(row.name);
  return words;
}

Words WordsAt(ShellSession& session, Place place, std::size_t position) {
  switch (place) {
    case Place::Switch:
      return {"on", "off"};
    case Place::Nmt:
      return NmtWords(session, position);
    case Place::NodeAndState:
      return NodeAndStateWords(session, position);
    case Place::Command:
      return CommandWords();
    case Place::Generator: {
      Words words;
      for (std::size_t i = 1; i <= session.Generators().size(); ++i) words.push_back(std::to_string(i));
      return words;
    }
    case Place::Nothing:
    case Place::File:
      break;
  }
  return {};
}

}  // namespace

std::vector<std::string> SplitLine(const std::string& line) {
  Words words;
  bool quoted = false, begun = false;
  for (const char character : line) {
    const bool blank = character == ' ' || character == '\t';
    if (character == '#' && !begun) break;
    if (blank && !quoted) {
      begun = false;
      continue;
    }
    if (!std::exchange(begun, true)) words.emplace_back();
    if (character == '"') {
      quoted = !quoted;
    } else {
      words.back() += character;
    }
  }
  if (quoted) throw std::runtime_error("a quotation mark is missing");
  return words;
}

void ExecuteLine(Shell& shell, const std::string& line) {
  Words words = SplitLine(line);
  if (words.empty()) return;
  const Row& row = NeedRow(words[0]);
  words.erase(words.begin());
  if (words.size() < row.least || words.size() > row.most) {
    throw std::runtime_error("\"" + Usage(row) + "\" is wanted");
  }
  row.run(shell, words);
}

Completion CompleteLine(ShellSession& session, const std::string& before) {
  Words words;
  try {
    words = SplitLine(before);
  } catch (const std::runtime_error&) {
    words = SplitLine(before + '"');  // inside a name with blanks
    if (!words.empty()) words.pop_back();
  }
  if (words.empty()) return {CommandWords(), false};
  const Row* const row = FindRow(words[0]);
  const std::size_t position = words.size() - 1;
  if (!row || position >= row->most) return {};
  return {WordsAt(session, row->place, position), row->place == Place::File};
}

}  // namespace NBench
