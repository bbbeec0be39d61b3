#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "host/runtime/com.h"
#include "host/runtime/shared_library.h"
#include "sdk/host_application.h"
#include "sdk/module_exports.h"
#include "sdk/plugin.h"

namespace NRuntime {

/// A plug-in module: its library, its five exports and its plug-in object.
class Module {
 public:
  /// Throws std::runtime_error, one line that names the path and what is wrong with it: no such file, not a
  /// library, an export that is missing.
  explicit Module(const std::filesystem::path& path);
  /// Shuts the plug-in down and unloads the library, unless objects of the module are still alive.
  ~Module();
  Module(const Module&) = delete;
  Module& operator=(const Module&) = delete;

  /// A new object of a class. Throws std::runtime_error: the module has no such class or cannot make one.
  ComPtr<IUnknown> Create(const char* progId) const;

  /// Creates the plug-in object and binds it to the host: comes before the first block.
  void Initialise(NSdk::IHostApplication& application);

  /// Null until it is initialised.
  NSdk::IPlugIn* PlugIn() const { return mPlugIn.Get(); }

 private:
  template <class Function>
  Function Export(const char* name) const;
  [[noreturn]] void Refuse(const std::string& reason) const;

  std::filesystem::path mPath;
  std::unique_ptr<SharedLibrary> mLibrary;
  NSdk::DllGetPlugInCLSIDFunction mGetClassId = nullptr;
  NSdk::DllGetClassObjectFunction mGetClassObject = nullptr;
  NSdk::DllCanUnloadNowFunction mCanUnload = nullptr;
  ComPtr<NSdk::IPlugIn> mPlugIn;
};

}  // namespace NRuntime
