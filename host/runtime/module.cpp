#include "host/runtime/module.h"

#include <stdexcept>

#include "host/runtime/text.h"
#include "sdk/class_ids.h"

namespace NRuntime {
namespace {

std::unique_ptr<SharedLibrary> Load(const std::filesystem::path& path) {
  std::error_code ignored;
  if (!std::filesystem::exists(path, ignored)) throw std::runtime_error("no such module");
  if (std::filesystem::is_directory(path, ignored)) throw std::runtime_error("a directory, not a module");
  try {
    return std::make_unique<SharedLibrary>(path);
  } catch (const std::runtime_error& error) {
    throw std::runtime_error(std::string("not a module: ") + error.what());
  }
}

}  // namespace

Module::Module(const std::filesystem::path& path) : mPath(std::filesystem::absolute(path)) {
  try {
    mLibrary = Load(mPath);
  } catch (const std::runtime_error& error) {
    Refuse(error.what());
  }
  mGetClassId = Export<NSdk::DllGetPlugInCLSIDFunction>("DllGetPlugInCLSID");
  mGetClassObject = Export<NSdk::DllGetClassObjectFunction>("DllGetClassObject");
  mCanUnload = Export<NSdk::DllCanUnloadNowFunction>("DllCanUnloadNow");
  // Nothing is registered, but a module without these two is not whole.
  Export<NSdk::DllRegisterServerFunction>("DllRegisterServer");
  Export<NSdk::DllUnregisterServerFunction>("DllUnregisterServer");
}

Module::~Module() {
  if (mPlugIn) mPlugIn->ShutDown();
  mPlugIn.Reset();
  if (mCanUnload && mCanUnload() != S_OK) mLibrary->Keep();
}

ComPtr<IUnknown> Module::Create(const char* progId) const {
  CLSID classId{};
  if (FAILED(mGetClassId(progId, &classId))) Refuse(std::string("has no class \"") + progId + '"');
  void* found = nullptr;
  if (FAILED(mGetClassObject(classId, NSdk::IidOf<IClassFactory>(), &found)) || !found) {
    Refuse(std::string("has no factory for \"") + progId + '"');
  }
  const auto factory = ComPtr<IClassFactory>::Own(static_cast<IClassFactory*>(found));
  void* made = nullptr;
  if (FAILED(factory->CreateInstance(nullptr, NSdk::IidOf<IUnknown>(), &made)) || !made) {
    Refuse(std::string("cannot create \"") + progId + '"');
  }
  return ComPtr<IUnknown>::Own(static_cast<IUnknown*>(made));
}

void Module::Initialise(NSdk::IHostApplication& application) {
  auto plugIn = Query<NSdk::IPlugIn>(Create(NSdk::kProgIdPlugIn));
  if (!plugIn) Refuse(std::string("\"") + NSdk::kProgIdPlugIn + "\" is not a plug-in object");
  if (FAILED(plugIn->Initialise(&application))) Refuse("the plug-in object refuses this host");
  mPlugIn = std::move(plugIn);
}

template <class Function>
Function Module::Export(const char* name) const {
  const auto function = mLibrary->Find<Function>(name);
  if (!function) Refuse(std::string("not a plug-in module: it does not export ") + name);
  return function;
}

void Module::Refuse(const std::string& reason) const {
  throw std::runtime_error(PathText(mPath) + ": " + reason);
}

}  // namespace NRuntime
