#include "host/bench/config.h"

#include <stdexcept>

#include "host/runtime/text.h"

namespace NBench {
namespace {

constexpr char kConfigHelp[] =
    R"(Makes, checks and prints configurations: JSON files with what a host is set up
with. Every command that has a host takes one with --config. docs/configuration.md
tells what may stand in them.

Usage: ostrel-bench config init FILE.json [OPTIONS]
       ostrel-bench config check FILE.json [--module PATH]
       ostrel-bench config show FILE.json [--json]

init writes a configuration with a generator and a scanner and all their settings,
to be edited. Without --can and --device, a simulated device is on its bus.
  --force            Replace a file that is there
  --sequence FILE    Sequence file that the generator remembers
  --can NUMBER=BUS   CAN channel NUMBER and its bus; may be given several times
                     (default: 1=virtual)
  --channel NUMBER   Channel of the generator and of what --device and --db add
                     (default: the lowest)
  --device NODE[:FILE]
                     A simulated device; may be given several times
  --db FILE.dbc      A CAN database; may be given several times
  --variant NAME     Kind of host to be, halvard or tesmond (default: halvard)
  --module PATH      Module that has the blocks (default: Ostrel.hpi beside this
                     program)

check opens no bus. It tells each fault of the file with its line, then what is
wrong with the databases, descriptions, logs and sequence files that it names.

show prints what the file holds; with --json as one JSON document.

Exit status: 0 done, 1 trouble with the output, 2 faults, or bad input.

Examples:
  ostrel-bench config init plant.json --sequence first-steps.seq
  ostrel-bench config check plant.json
  ostrel-bench play --config plant.json
)";

class ConfigCommand final : public Command {
 public:
  void AddOptions(OptionList& options) override;
  std::string Help() const override { return kConfigHelp; }
  ExitStatus Run() const override;

 private:
  ExitStatus Init() const;

  HostTexts mHost;
  std::string mFile;
  std::optional<std::string> mSequence;
  bool mForce = false, mJson = false;
  // The parser is gone when the command runs.
  enum class Action { None, Init, Check, Show } mAction = Action::None;
};

void ConfigCommand::AddOptions(OptionList& options) {
  const auto add = [&](const char* name, Action action) {
    OptionList own = options.Word(name, [this, action] { mAction = action; });
    own.Required("FILE.json", mFile);
    return own;
  };
  OptionList init = add("init", Action::Init);
  mHost.AddOptions(init);
  init.Remove("--config");
  init.Flag("--force", mForce);
  init.Value("--sequence", mSequence);
  add("check", Action::Check).Value("--module", mHost.module);
  add("show", Action::Show).Flag("--json", mJson);
}

ExitStatus ConfigCommand::Run() const {
  if (mAction == Action::None) throw std::runtime_error("config: init, check or show is wanted");
  if (mAction == Action::Init) return Init();
  const std::filesystem::path file = NRuntime::ToPath(mFile);
  if (mAction == Action::Show) return ShowConfig(file, mJson);
  std::optional<std::filesystem::path> module;
  if (mHost.module) module = NRuntime::ToPath(*mHost.module);
  return CheckConfig(file, module);
}

ExitStatus ConfigCommand::Init() const {
  ConfigInitOptions options;
  options.file = NRuntime::ToPath(mFile);
  options.host = CheckHost(mHost);
  if (mSequence) options.sequence = NRuntime::ToPath(*mSequence);
  options.force = mForce;
  if (mHost.channels.empty() && mHost.devices.empty()) {
    options.host.devices.push_back({options.host.channel, NDevices::ParseDeviceWord("5")});
  }
  return InitConfig(options);
}

}  // namespace

std::unique_ptr<Command> MakeConfigCommand() { return std::make_unique<ConfigCommand>(); }

}  // namespace NBench
