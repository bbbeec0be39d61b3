#include "host/bench/shell.h"

#include <utility>

#include "host/bench/console.h"
#include "host/bench/generator_block.h"
#include "host/bench/interrupts.h"
#include "host/bench/shell_commands.h"
#include "host/bench/shell_configuration.h"
#include "host/runtime/text.h"

namespace NBench {
namespace {

constexpr char kShellHelp[] = R"(A host that is driven by commands, one line each: typed at a terminal, with
editing, history and completion, or from a script. "help" lists them.

Usage: ostrel-bench shell [SCRIPT] [OPTIONS]
       ostrel-bench shell [OPTIONS] < SCRIPT

An error stops a script, and its line is named; at a terminal the shell goes on.
"#" opens a comment, quotation marks hold a name with blanks together. Ctrl+C
ends what a command waits for, or drops the line; Ctrl+D leaves.

Options:
)";

constexpr char kShellFooter[] = R"(
Exit status: 0 all was done, 1 a command of a script has failed, 2 a line of a
script or the command line is at fault, 130 stopped by Ctrl+C.

Examples:
  ostrel-bench shell --device 5 --device 9
  echo 'start
  nmt operational all
  sleep 1
  table' | ostrel-bench shell --device 5
)";

struct Input {
  std::optional<std::filesystem::path> script;
  bool interactive = false;
};

// Where lines come from, what becomes of them, and in which order it is written.
class Runner {
 public:
  Runner(const ShellOptions& options, const Input& input);
  ~Runner() { mSource.reset(); }  // it waits on the loop of the session
  Runner(const Runner&) = delete;
  Runner& operator=(const Runner&) = delete;
  ExitStatus Run();

 private:
  std::unique_ptr<LineSource> MakeSource(const Input& input);
  ExitStatus RunLine(const std::string& line);
  std::string Place() const;
  void Print(const std::string& text);
  void Tell(const std::string& text);

  Output mOutput;
  Wishes mWishes;
  const Input mInput;
  std::unique_ptr<LineSource> mSource;  // empty at first: the module may have a message while it is loaded
  std::uint32_t mLine = 0;
  ShellConfiguration mConfiguration;
  ShellSession mSession;
  Interrupts mInterrupts;
  Shell mShell;
};

Runner::Runner(const ShellOptions& options, const Input& input)
    : mInput(input),
      mConfiguration(options.host),
      mSession(options, mWishes,
               {[this](const std::string& text) { Print(text); },
                [this](const std::string& text) { Tell(text); }}),
      mInterrupts(mSession.GetHost().Loop(),
                  [this](Interrupts::Kind kind) {
                    (kind == Interrupts::Kind::Interrupt ? mWishes.interrupted : mWishes.terminated) = true;
                    mSession.GetHost().Loop().Stop();
                  }),
      mShell{mSession, [this](const std::string& text) { Print(text); },
             [this](const auto& file) { mConfiguration.Save(mSession, file); }} {
  mSource = MakeSource(input);
}

std::unique_ptr<LineSource> Runner::MakeSource(const Input& input) {
  NRuntime::AsioLoop& loop = mSession.GetHost().Loop();
  if (input.script) return MakeFileSource(*input.script);
  if (!input.interactive) return MakePipeSource(loop, mWishes);
  return MakeTerminalSource(
      loop, mWishes, [this](const std::string& before) { return CompleteLine(mSession, before); },
      HistoryFile());
}

ExitStatus Runner::Run() {
  if (mInput.interactive) Print("Ostrel " OSTREL_VERSION "; help lists the commands\n");
  ExitStatus status = kOk;
  while (status == kOk && !mShell.quit && !mOutput.Failed()) {
    const auto line = mSource->Next();
    if (mWishes.terminated || (mWishes.interrupted && !mInput.interactive)) return kInterrupted;
    if (!line) break;
    ++mLine;
    status = RunLine(*line);
    const bool stopped = std::exchange(mWishes.interrupted, false) && !mInput.interactive;
    if (stopped || mWishes.terminated) return kInterrupted;
    if (mInput.interactive) status = kOk;
  }
  return mOutput.End() ? status : kFailed;
}

// What the module and the buses had to say meanwhile counts as well; it was told at once.
ExitStatus Runner::RunLine(const std::string& line) {
  const std::uint32_t errors = mSession.Errors();
  try {
    ExecuteLine(mShell, line);
    mSession.Settle();
  } catch (const ShellFailure& failure) {
    Tell(failure.what());
    return kFailed;
  } catch (const std::runtime_error& error) {
    Tell(error.what());
    return kBadInput;
  }
  return mSession.Errors() == errors ? kOk : kFailed;
}

// Of the line at hand, as compilers name it.
std::string Runner::Place() const {
  if (mInput.interactive || mLine == 0) return {};
  const std::string file = mInput.script ? NRuntime::PathText(*mInput.script) + ':' : "line ";
  return file + std::to_string(mLine) + ": ";
}

void Runner::Print(const std::string& text) {
  if (mSource) mSource->MakeRoom();
  mOutput.Write(text);
}

void Runner::Tell(const std::string& text) {
  if (mSource) mSource->MakeRoom();
  if (mInput.interactive) {
    WriteError(text);
  } else {
    Complain(Place() + text);
  }
}

class ShellCommand final : public Command {
 public:
  void AddOptions(OptionList& options) override;
  std::string Help() const override { return kShellHelp + DescribeHostOptions() + kShellFooter; }
  HostTexts* Texts() override { return &mHost; }
  ExitStatus Run() const override;

 private:
  ShellOptions Check() const;

  HostTexts mHost;
  std::optional<std::string> mScript;
};

void ShellCommand::AddOptions(OptionList& options) {
  mHost.AddOptions(options);
  options.Value("SCRIPT", mScript);
}

ShellOptions ShellCommand::Check() const {
  ShellOptions options;
  options.host = CheckHost(mHost);
  for (const NRuntime::Settings& settings : AllGeneratorSettings(options.host)) {
    const std::wstring* const name = settings.Find(L"Name");
    options.generators.push_back({name ? NRuntime::ToUtf8(*name) : "Generator", settings});
  }
  return options;
}

ExitStatus ShellCommand::Run() const {
  Input input;
  if (mScript) input.script = NRuntime::ToPath(*mScript);
  input.interactive = !mScript && IsTerminal(stdin) && IsTerminal(stdout);
  return Runner(Check(), input).Run();
}

}  // namespace

std::unique_ptr<Command> MakeShellCommand() { return std::make_unique<ShellCommand>(); }

}  // namespace NBench
