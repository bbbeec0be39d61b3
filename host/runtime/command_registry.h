#pragma once

#include <map>
#include <string>
#include <vector>

#include "host/runtime/com.h"
#include "host/runtime/event_source.h"
#include "sdk/commands.h"
#include "sdk/setup.h"

namespace NRuntime {

/// The commands that plug-ins add, and the groups that show them.
class CommandRegistry final : public Implements<NSdk::ICommandRegistry, NSdk::ICommandGroups> {
 public:
  struct Command {
    std::wstring name;
    ComPtr<NSdk::IAction> action;
  };
  struct Group {
    std::wstring caption;
    std::vector<std::wstring> commands;
  };

  HRESULT STDMETHODCALLTYPE AddCommand(const wchar_t* name, NSdk::IAction* action) override;
  HRESULT STDMETHODCALLTYPE RemoveCommand(const wchar_t* name) override;
  HRESULT STDMETHODCALLTYPE Advise(NSdk::ICommandEvents* events, std::uint32_t* cookie) override;
  HRESULT STDMETHODCALLTYPE Unadvise(std::uint32_t cookie) override;

  HRESULT STDMETHODCALLTYPE CreateGroup(const wchar_t* name, const wchar_t* caption,
                                        NSdk::ICommandGroup** group) override;
  HRESULT STDMETHODCALLTYPE RemoveGroup(const wchar_t* name) override;

  /// In the order in which they were added.
  const std::vector<Command>& Commands() const { return mCommands; }
  /// Empty: no such command.
  ComPtr<NSdk::IAction> FindCommand(const std::wstring& name) const;
  const std::map<std::wstring, Group>& Groups() const { return mGroups; }
  /// Lets plug-ins bring their commands up to date before they are shown.
  void CommandsShown() const { mSinks.Tell(&NSdk::ICommandEvents::OnCommandsShown); }

 private:
  class GroupObject;
  HRESULT AppendToGroup(const std::wstring& group, const std::wstring& command);

  std::vector<Command> mCommands;
  std::map<std::wstring, Group> mGroups;
  SinkList<NSdk::ICommandEvents> mSinks;
};

/// The types of blocks that plug-ins offer.
class BlockTypeRegistry final : public Implements<NSdk::IBlockTypeRegistry> {
 public:
  struct Type {
    NSdk::BlockCategory category;
    std::uint32_t image;
    std::uint32_t flags;
    std::wstring progId;
    std::wstring displayName;
  };

  HRESULT STDMETHODCALLTYPE AddBlockType(const NSdk::BlockType* type) override;
  const std::vector<Type>& Types() const { return mTypes; }

 private:
  std::vector<Type> mTypes;
};

}  // namespace NRuntime
