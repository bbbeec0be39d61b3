#include "host/bench/commands.h"

#include <algorithm>

#include "host/bench/console.h"
#include "host/bench/node_document.h"
#include "host/bench/unobserved.h"
#include "host/runtime/text.h"

namespace NBench {
namespace {

constexpr char kCommandsHelp[] =
    R"(Lists the commands that the module registers with its host, in the order in
which it registers them.

Usage: ostrel-bench commands [OPTIONS]

Options:
  --json             One JSON document with everything that is known of each
  --config FILE.json Take variant and channels from a configuration
  --can NUMBER=BUS   A CAN channel of the host (default: 1=virtual)
  --variant NAME     Kind of host to be, halvard or tesmond (default: halvard)
  --module PATH      Module to load (default: Ostrel.hpi beside this program)

States: 0 shown, 1 enabled, 2 not offered.
)";

using Json = nlohmann::ordered_json;

// A command as the registry and its groups have it.
struct Row {
  std::string name, caption, toolTip;
  std::uint32_t state = 0, bitmap = 0, smallIcon = 0, largeIcon = 0;
  std::string group;  // empty: in none
  std::size_t groupPosition = 0;
};

void FindGroup(const NRuntime::CommandRegistry& registry, const std::wstring& name, Row& row) {
  for (const auto& [group, content] : registry.Groups()) {
    const auto found = std::find(content.commands.begin(), content.commands.end(), name);
    if (found == content.commands.end()) continue;
    row.group = NRuntime::ToUtf8(group);
    row.groupPosition = static_cast<std::size_t>(found - content.commands.begin());
  }
}

std::vector<Row> ReadRows(const NRuntime::CommandRegistry& registry) {
  registry.CommandsShown();
  std::vector<Row> rows;
  for (const auto& [name, action] : registry.Commands()) {
    NRuntime::ReceivedText caption, toolTip;
    Row row;
    row.name = NRuntime::ToUtf8(name);
    action->GetCaption(caption.Out());
    action->GetToolTip(toolTip.Out());
    action->GetState(&row.state);
    action->GetImages(&row.bitmap, &row.smallIcon, &row.largeIcon);
    row.caption = NRuntime::ToUtf8(caption.Text());
    row.toolTip = NRuntime::ToUtf8(toolTip.Text());
    FindGroup(registry, name, row);
    rows.push_back(std::move(row));
  }
  return rows;
}

std::string Document(const std::vector<Row>& rows) {
  Json document = Json::array();
  for (const Row& row : rows) {
    const bool grouped = !row.group.empty();
    document.push_back({{"name", row.name},
                        {"caption", row.caption},
                        {"tooltip", row.toolTip},
                        {"group", grouped ? Json(row.group) : Json(nullptr)},
                        {"groupPosition", grouped ? Json(row.groupPosition) : Json(nullptr)},
                        {"state", row.state},
                        {"bitmap", row.bitmap},
                        {"smallIcon", row.smallIcon},
                        {"largeIcon", row.largeIcon}});
  }
  return DocumentText(document);
}

std::string Table(const std::vector<Row>& rows) {
  constexpr std::string_view kHeading = "command";
  std::size_t width = kHeading.size();
  for (const Row& row : rows) width = std::max(width, row.name.size());
  const auto line = [&](std::string name, const std::string& rest) {
    name.resize(width + 2, ' ');
    return name + rest + '\n';
  };
  std::string text = line(std::string(kHeading), "state  caption");
  for (const Row& row : rows) text += line(row.name, std::to_string(row.state) + "      " + row.caption);
  return text;
}

class CommandsCommand final : public Command {
 public:
  void AddOptions(OptionList& options) override {
    mHost.AddOptions(options);
    options.Flag("--json", mJson);
  }
  std::string Help() const override { return kCommandsHelp; }
  HostTexts* Texts() override { return &mHost; }
  ExitStatus Run() const override;

 private:
  HostTexts mHost;
  bool mJson = false;
};

ExitStatus CommandsCommand::Run() const {
  Unobserved observer;
  bool quiet = true;
  Host host(CheckHost(mHost), observer, [&](const std::string& text) {
    quiet = false;
    Complain(text);
  });
  const std::vector<Row> rows = ReadRows(host.Application().Commands());
  Output output;
  output.Write(mJson ? Document(rows) : Table(rows));
  return output.End() && quiet ? kOk : kFailed;
}

}  // namespace

std::unique_ptr<Command> MakeCommandsCommand() { return std::make_unique<CommandsCommand>(); }

}  // namespace NBench
