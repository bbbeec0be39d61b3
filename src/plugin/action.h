#pragma once
// Commands that the plug-in adds to its host: what all of them are.

#include <string>

#include "com/entry.h"
#include "com/implements.h"
#include "com/task_text.h"
#include "common/user_messages.h"
#include "resources/text.h"
#include "sdk/commands.h"

namespace NPlugin {

/// A command under its name, with a drop-down menu where its class makes one.
class ActionBase : public NCom::Implements<NSdk::IAction, NSdk::IDropDownCommand> {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    const bool hidden =
        iid == NSdk::IidOf<NSdk::IDropDownCommand>() && !(NCommon::HasWindows() && HasDropDown());
    if (!object || !hidden) return ImplementsWith::QueryInterface(iid, object);
    *object = nullptr;
    return E_NOINTERFACE;
  }

  const std::wstring& Name() const { return mName; }
  /// What the state query answers where a class has no rule of its own; an NSdk::CommandState.
  void SetState(std::uint32_t state) { mState = state; }

  HRESULT STDMETHODCALLTYPE GetState(std::uint32_t* state) override {
    NCom::ModuleScope scope;
    if (!state) return E_POINTER;
    *state = mState;
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE GetMenu(std::uint32_t, std::uint32_t, void**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE ExecuteItem(std::uint32_t, IUnknown*) override { return E_NOTIMPL; }

 protected:
  ActionBase(std::wstring name, std::uint32_t state) : mName(std::move(name)), mState(state) {}

 private:
  virtual bool HasDropDown() const { return false; }

  std::wstring mName;
  std::uint32_t mState;
};

/// A command with its texts and images by their numbers in the resources; 0 = none. The owner outlives it.
template <class Owner, std::uint32_t Caption, std::uint32_t ToolTip, std::uint32_t Bitmap,
          std::uint32_t SmallIcon, std::uint32_t LargeIcon, std::uint32_t Index>
class ZAction : public ActionBase {
 public:
  static constexpr std::uint32_t kIndex = Index;

  HRESULT STDMETHODCALLTYPE GetCaption(wchar_t** caption) override { return Answer(Caption, caption); }
  HRESULT STDMETHODCALLTYPE GetToolTip(wchar_t** toolTip) override { return Answer(ToolTip, toolTip); }
  HRESULT STDMETHODCALLTYPE GetImages(std::uint32_t* bitmap, std::uint32_t* smallIcon,
                                      std::uint32_t* largeIcon) override {
    NCom::ModuleScope scope;
    if (!bitmap || !smallIcon || !largeIcon) return E_POINTER;
    *bitmap = Bitmap;
    *smallIcon = SmallIcon;
    *largeIcon = LargeIcon;
    return S_OK;
  }

 protected:
  ZAction(Owner& owner, std::wstring name, std::uint32_t state = NSdk::kCommandShown)
      : ActionBase(std::move(name), state), mOwner(owner) {}

  Owner& mOwner;

 private:
  static HRESULT Answer(std::uint32_t textId, wchar_t** text) {
    return NCom::Entry([&] { return NCom::HandOut(NResources::LoadText(textId), text); });
  }
};

}  // namespace NPlugin
