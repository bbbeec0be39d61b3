#pragma once

#include <string>

#include "host/runtime/setup.h"

namespace NBench {

/// A block that a command of the module has inserted; it is taken out of the setup at the end.
class InsertedBlock {
 public:
  /// Throws as NRuntime::InsertBlock does.
  InsertedBlock(const NRuntime::Application& application, NRuntime::Setup& setup, const std::wstring& command)
      : mSetup(&setup), mObject(NRuntime::InsertBlock(application, setup, command)) {}
  ~InsertedBlock() { mSetup->RemoveBlock(mObject.Get()); }
  InsertedBlock(const InsertedBlock&) = delete;
  InsertedBlock& operator=(const InsertedBlock&) = delete;

  const NRuntime::ComPtr<IUnknown>& Object() const { return mObject; }

 private:
  NRuntime::ComPtr<NRuntime::Setup> mSetup;
  NRuntime::ComPtr<IUnknown> mObject;
};

}  // namespace NBench
