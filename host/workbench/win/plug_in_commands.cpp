#include "host/workbench/win/plug_in_commands.h"

#include <algorithm>

#include "host/runtime/text.h"
#include "host/workbench/win/command_ids.h"
#include "host/workbench/win/window.h"

namespace NWorkbench {
namespace {

using Command = NRuntime::CommandRegistry::Command;

constexpr wchar_t kInsertPrefix[] = L"Insert.";
constexpr int kDropDownRange = 200;  // items of one drop-down
constexpr std::size_t kMostDropDowns = (kLastDropDown - kFirstDropDown + 1) / kDropDownRange;

bool IsInsert(const std::wstring& name) { return name.rfind(kInsertPrefix, 0) == 0; }

std::uint32_t StateOf(const Command& command) {
  std::uint32_t state = NSdk::kCommandHidden;
  return SUCCEEDED(command.action->GetState(&state)) ? state : NSdk::kCommandHidden;
}

std::wstring CaptionOf(const Command& command) {
  NRuntime::ReceivedText caption;
  return SUCCEEDED(command.action->GetCaption(caption.Out())) ? caption.Text() : command.name;
}

}  // namespace

void PlugInCommands::Update() {
  mDropDowns.clear();
  mWorkbench.Application().Commands().CommandsShown();
}

const Command* PlugInCommands::Find(const std::wstring& name) const {
  const auto& commands = mWorkbench.Application().Commands().Commands();
  const auto found = std::find_if(commands.begin(), commands.end(),
                                  [&](const Command& command) { return command.name == name; });
  return found == commands.end() ? nullptr : &*found;
}

int PlugInCommands::IdOf(const Command& command) const {
  return kFirstPlugInCommand +
         static_cast<int>(&command - mWorkbench.Application().Commands().Commands().data());
}

bool PlugInCommands::IsEnabled(const Command& command) const {
  return !(IsInsert(command.name) && mWorkbench.IsMeasuring());
}

std::vector<std::wstring> PlugInCommands::InsertCommands() const {
  std::vector<std::wstring> names;
  for (const Command& command : mWorkbench.Application().Commands().Commands()) {
    if (IsInsert(command.name)) names.push_back(command.name);
  }
  return names;
}

// A type and the command that inserts it share the last part of their names.
std::vector<std::wstring> PlugInCommands::SimulationCommands() const {
  std::vector<std::wstring> names;
  for (const auto& type : mWorkbench.Application().BlockTypes().Types()) {
    if (type.category != NSdk::kBlockCategorySimulation) continue;
    const std::wstring name = kInsertPrefix + type.progId.substr(type.progId.rfind(L'.') + 1);
    if (Find(name)) names.push_back(name);
  }
  return names;
}

std::vector<std::wstring> PlugInCommands::MenuCommands(const NRuntime::CommandRegistry::Group& group) const {
  std::vector<std::wstring> names;
  for (const std::wstring& name : group.commands) {
    names.push_back(name);
    const Command* command = Find(name);
    if (command && NRuntime::Query<NSdk::IDropDownCommand>(command->action)) break;
  }
  return names;
}

void PlugInCommands::Append(HMENU menu, const std::vector<std::wstring>& names) {
  for (const std::wstring& name : names) {
    const Command* command = Find(name);
    if (!command || StateOf(*command) == NSdk::kCommandHidden) continue;
    const std::wstring caption = CaptionOf(*command);
    const auto dropDown = NRuntime::Query<NSdk::IDropDownCommand>(command->action);
    const HMENU inner = dropDown ? MakeDropDown(*dropDown) : nullptr;
    if (inner) {
      AppendMenuW(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(inner), caption.c_str());
    } else {
      const bool enabled = !dropDown && IsEnabled(*command);
      AppendMenuW(menu, MF_STRING | (enabled ? MF_ENABLED : MF_GRAYED), static_cast<UINT_PTR>(IdOf(*command)),
                  caption.c_str());
    }
  }
}

HMENU PlugInCommands::MakeDropDown(NSdk::IDropDownCommand& command) {
  const auto known = std::find_if(mDropDowns.begin(), mDropDowns.end(),
                                  [&](const auto& each) { return each.Get() == &command; });
  const auto position = static_cast<std::size_t>(known - mDropDowns.begin());
  if (position >= kMostDropDowns) return nullptr;
  if (known == mDropDowns.end()) mDropDowns.push_back(&command);
  const std::uint32_t first = kFirstDropDown + kDropDownRange * static_cast<std::uint32_t>(position);
  void* menu = nullptr;
  return command.GetMenu(first, first + kDropDownRange - 1, &menu) == S_OK ? static_cast<HMENU>(menu)
                                                                           : nullptr;
}

HMENU PlugInCommands::MakeDropDown(int id) {
  Update();
  const auto& commands = mWorkbench.Application().Commands().Commands();
  const auto position = static_cast<std::size_t>(id - kFirstPlugInCommand);
  if (position >= commands.size()) return nullptr;
  const auto dropDown = NRuntime::Query<NSdk::IDropDownCommand>(commands[position].action);
  return dropDown ? MakeDropDown(*dropDown) : nullptr;
}

// Large icons are of their own; where they lack, the small one is stretched.
void PlugInCommands::AppendButtons(std::vector<ToolButton>& buttons) const {
  for (const auto& [name, group] : mWorkbench.Application().Commands().Groups()) {
    buttons.push_back({});
    for (const std::wstring& commandName : group.commands) {
      const Command* command = Find(commandName);
      if (!command || StateOf(*command) == NSdk::kCommandHidden) continue;
      std::uint32_t bitmap = 0, little = 0, large = 0;
      command->action->GetImages(&bitmap, &little, &large);
      NRuntime::ReceivedText tip;
      command->action->GetToolTip(tip.Out());
      ToolButton button;
      button.id = IdOf(*command);
      button.text = CaptionOf(*command);
      std::erase(button.text, L'&');
      button.tip = tip.Text().empty() ? button.text : button.text + L"\n" + tip.Text();
      button.image = little;
      button.dropsDown = static_cast<bool>(NRuntime::Query<NSdk::IDropDownCommand>(command->action));
      if (little != 0) {
        button.icon = [this, little, large](int size) {
          return LoadIconOf(size > Scaled(24) && large != 0 ? large : little, size);
        };
      }
      buttons.push_back(std::move(button));
    }
  }
}

// The library of the language may have images of its own; it lies loaded beside the module.
HICON PlugInCommands::LoadIconOf(std::uint32_t number, int size) const {
  wchar_t language[32];
  wsprintfW(language, L"Ostrel_%02u.dll", mWorkbench.Settings().language);
  for (const HMODULE library : {GetModuleHandleW(language), GetModuleHandleW(mModule.c_str())}) {
    if (!library) continue;
    const auto icon = static_cast<HICON>(
        LoadImageW(library, MAKEINTRESOURCEW(number), IMAGE_ICON, size, size, LR_DEFAULTCOLOR));
    if (icon) return icon;
  }
  return nullptr;
}

bool PlugInCommands::Execute(int id, std::uint32_t channel) {
  if (id >= kFirstPlugInCommand && id <= kLastPlugInCommand) {
    const auto& commands = mWorkbench.Application().Commands().Commands();
    const auto position = static_cast<std::size_t>(id - kFirstPlugInCommand);
    if (position >= commands.size() || !IsEnabled(commands[position])) return true;
    const bool inserts = IsInsert(commands[position].name);
    mWorkbench.Execute(*commands[position].action, inserts ? channel : 0);
    return true;
  }
  if (id < kFirstDropDown || id > kLastDropDown) return false;
  const auto position = static_cast<std::size_t>((id - kFirstDropDown) / kDropDownRange);
  if (position < mDropDowns.size()) {
    const auto kept = mDropDowns[position];
    kept->ExecuteItem(static_cast<std::uint32_t>(id), mWorkbench.CommandContext().Get());
  }
  return true;
}

}  // namespace NWorkbench
