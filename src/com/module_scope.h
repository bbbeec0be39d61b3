#pragma once

#include <cstdint>

namespace NCom {

/// Switches to the module's own state for the time of one entry and back: on Windows its activation context,
/// so that windows are made with the module's version of the common controls whatever the host uses. A method
/// that cannot fail opens with `ModuleScope scope;`, all others go through Entry().
class ModuleScope {
 public:
  ModuleScope();
  ~ModuleScope();
  ModuleScope(const ModuleScope&) = delete;
  ModuleScope& operator=(const ModuleScope&) = delete;

 private:
  [[maybe_unused]] std::uintptr_t mCookie = 0;
};

/// Called once with the handle of the loaded library before anything else; null where the platform has none.
void SetModuleHandle(void* handle);
void* ModuleHandle();
/// Frees what ModuleScope has set up; called when the library is unloaded.
void ReleaseModuleState();

}  // namespace NCom
