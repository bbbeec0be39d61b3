#include "host/runtime/command_registry.h"

#include <algorithm>

namespace NRuntime {

// A group as a plug-in holds it. It keeps the registry alive and finds its group by name, for the group may
// have been removed.
class CommandRegistry::GroupObject final : public Implements<NSdk::ICommandGroup> {
 public:
  GroupObject(CommandRegistry& registry, std::wstring name) : mRegistry(&registry), mName(std::move(name)) {}

  HRESULT STDMETHODCALLTYPE AddCommand(const wchar_t* name) override {
    return name ? mRegistry->AppendToGroup(mName, name) : E_POINTER;
  }

 private:
  ComPtr<CommandRegistry> mRegistry;
  std::wstring mName;
};

HRESULT CommandRegistry::AddCommand(const wchar_t* name, NSdk::IAction* action) {
  if (!name || !action) return E_POINTER;
  if (FindCommand(name)) return E_FAIL;
  mCommands.push_back({name, action});
  return S_OK;
}

HRESULT CommandRegistry::RemoveCommand(const wchar_t* name) {
  if (!name) return E_POINTER;
  const auto removed = std::erase_if(mCommands, [&](const Command& command) { return command.name == name; });
  return removed == 1 ? S_OK : E_INVALIDARG;
}

HRESULT CommandRegistry::Advise(NSdk::ICommandEvents* events, std::uint32_t* cookie) {
  return mSinks.Add(events, cookie);
}

HRESULT CommandRegistry::Unadvise(std::uint32_t cookie) { return mSinks.Remove(cookie); }

HRESULT CommandRegistry::CreateGroup(const wchar_t* name, const wchar_t* caption,
                                     NSdk::ICommandGroup** group) {
  if (!name || !caption || !group) return E_POINTER;
  if (!mGroups.emplace(name, Group{caption, {}}).second) return E_FAIL;
  return ComPtr<NSdk::ICommandGroup>::Own(new GroupObject(*this, name)).MoveTo(group);
}

HRESULT CommandRegistry::RemoveGroup(const wchar_t* name) {
  if (!name) return E_POINTER;
  return mGroups.erase(name) == 1 ? S_OK : E_INVALIDARG;
}

HRESULT CommandRegistry::AppendToGroup(const std::wstring& group, const std::wstring& command) {
  const auto found = mGroups.find(group);
  if (found == mGroups.end()) return E_FAIL;
  if (!FindCommand(command)) return E_INVALIDARG;
  found->second.commands.push_back(command);
  return S_OK;
}

ComPtr<NSdk::IAction> CommandRegistry::FindCommand(const std::wstring& name) const {
  const auto found = std::find_if(mCommands.begin(), mCommands.end(),
                                  [&](const Command& command) { return command.name == name; });
  return found == mCommands.end() ? nullptr : found->action;
}

HRESULT BlockTypeRegistry::AddBlockType(const NSdk::BlockType* type) {
  if (!type || !type->progId || !type->displayName) return E_POINTER;
  mTypes.push_back({static_cast<NSdk::BlockCategory>(type->category), type->image, type->flags, type->progId,
                    type->displayName});
  return S_OK;
}

}  // namespace NRuntime
