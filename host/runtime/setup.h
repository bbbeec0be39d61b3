#pragma once
// A setup of the host: the blocks that the user has inserted, and how commands of a plug-in reach it.

#include <functional>
#include <string>
#include <vector>

#include "host/runtime/application.h"
#include "host/runtime/com.h"
#include "sdk/setup.h"

namespace NRuntime {

/// Blocks in the order in which they were inserted, each attached to its place in the application. It keeps
/// the application; blocks do not survive it: Clear() comes before the module is let go.
class Setup final : public Implements<NSdk::ISetup> {
 public:
  /// `changed` is called after a block has come, gone or changed; it may be empty.
  explicit Setup(Application& application, std::function<void()> changed = {})
      : mApplication(&application), mChanged(std::move(changed)) {}

  /// E_FAIL: a measurement runs; E_NOINTERFACE: it is no block; what the block answers to its place.
  HRESULT STDMETHODCALLTYPE AddBlock(IUnknown* block) override;
  /// E_INVALIDARG: it is not in this setup.
  HRESULT STDMETHODCALLTYPE RemoveBlock(IUnknown* block) override;

  const std::vector<ComPtr<IUnknown>>& Blocks() const { return mBlocks; }
  /// Takes all blocks out, the last one first.
  void Clear();

 private:
  void TellChanged() const;

  ComPtr<Application> mApplication;
  std::function<void()> mChanged;
  std::vector<ComPtr<IUnknown>> mBlocks;
};

/// What a command is given that is executed with a setup in front.
class SetupContext final : public Implements<NSdk::ISetupAccess> {
 public:
  explicit SetupContext(Setup& setup) : mSetup(&setup) {}
  HRESULT STDMETHODCALLTYPE GetCurrentSetup(NSdk::ISetup** setup) override;

 private:
  ComPtr<Setup> mSetup;
};

/// Executes a command of a plug-in that inserts a block, such as "Insert.CANopenIG", and gives the block that
/// is in the setup now. Throws std::runtime_error, one line: there is no such command, or it inserts nothing.
ComPtr<IUnknown> InsertBlock(const Application& application, Setup& setup, const std::wstring& command);

}  // namespace NRuntime
