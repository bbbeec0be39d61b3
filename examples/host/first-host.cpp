// The smallest host: loads the module, tells it who it is, asks what it is, makes a scanner, and leaves.
// Linux:
//   g++ -std=c++20 -I /usr/include/ostrel first-host.cpp -o first-host && ./first-host
//   /usr/lib/ostrel/Ostrel.hpi
#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

#include "sdk/blocks.h"
#include "sdk/class_ids.h"
#include "sdk/host_application.h"
#include "sdk/module_exports.h"
#include "sdk/plugin.h"

namespace {

// A host that has no services: no menus, no databases, no dialogs. It lives as long as the program.
class Application final : public NSdk::IHostApplication {
 public:
  HRESULT QueryInterface(REFIID iid, void** object) override {
    if (!object) return E_POINTER;
    if (iid != NSdk::IidOf<IUnknown>() && iid != NSdk::IidOf<NSdk::IHostApplication>()) return E_NOINTERFACE;
    *object = this;
    return S_OK;
  }
  ULONG AddRef() override { return 1; }
  ULONG Release() override { return 1; }

  HRESULT GetLanguage(std::uint32_t* language) override { return Give(1u, language); }  // English
  HRESULT GetNumberBase(std::uint32_t* base) override { return Give(16u, base); }
  HRESULT GetVariant(std::uint32_t* variant) override { return Give(+NSdk::kHostTesmond, variant); }
  HRESULT IsMeasuring(std::uint32_t* measuring) override { return Give(0u, measuring); }
  HRESULT GetService(REFIID, void**) override { return E_NOINTERFACE; }
  HRESULT FindEventSource(REFIID, NSdk::IEventSource**) override { return E_NOINTERFACE; }

 private:
  static HRESULT Give(std::uint32_t value, std::uint32_t* result) {
    if (!result) return E_POINTER;
    *result = value;
    return S_OK;
  }
};

template <class Function>
Function Find(void* library, const char* name) {
  void* const address = dlsym(library, name);
  if (!address) {
    std::fprintf(stderr, "not a plug-in module: it does not export %s\n", name);
    std::exit(1);
  }
  return reinterpret_cast<Function>(address);
}

// An object of the module, by the name of its class. The caller releases it.
template <class Interface>
Interface* Create(void* library, const char* progId) {
  CLSID classId = {};
  IClassFactory* factory = nullptr;
  Interface* object = nullptr;
  if (FAILED(Find<NSdk::DllGetPlugInCLSIDFunction>(library, "DllGetPlugInCLSID")(progId, &classId)))
    return nullptr;
  const auto getFactory = Find<NSdk::DllGetClassObjectFunction>(library, "DllGetClassObject");
  if (FAILED(getFactory(classId, NSdk::IidOf<IClassFactory>(), reinterpret_cast<void**>(&factory))))
    return nullptr;
  factory->CreateInstance(nullptr, NSdk::IidOf<Interface>(), reinterpret_cast<void**>(&object));
  factory->Release();
  return object;
}

int Fail(const char* what) {
  std::fprintf(stderr, "%s\n", what);
  return 1;
}

}  // namespace

int main(int count, char** values) {
  if (count != 2) return Fail("first-host MODULE");
  void* const library = dlopen(values[1], RTLD_NOW | RTLD_LOCAL);
  if (!library) return Fail(dlerror());

  Application application;
  auto* const plugIn = Create<NSdk::IPlugIn>(library, NSdk::kProgIdPlugIn);
  if (!plugIn || FAILED(plugIn->Initialise(&application)))
    return Fail("the plug-in object refuses this host");

  NSdk::IVersion* version = nullptr;
  std::uint32_t numbers[3] = {};
  if (plugIn->QueryInterface(NSdk::IidOf<NSdk::IVersion>(), reinterpret_cast<void**>(&version)) == S_OK) {
    version->GetVersion(&numbers[0], &numbers[1], &numbers[2]);
    version->Release();
    std::printf("version %u.%u.%u\n", numbers[0], numbers[1], numbers[2]);
  }
  if (auto* const scanner = Create<NSdk::IPlugInBlock>(library, NSdk::kProgIdCANopenScanner)) {
    wchar_t* name = nullptr;
    if (scanner->GetName(&name) == S_OK) std::printf("a block: %ls\n", name);
    CoTaskMemFree(name);
    scanner->Release();
  }

  plugIn->ShutDown();
  plugIn->Release();
  const bool unloads = Find<NSdk::DllCanUnloadNowFunction>(library, "DllCanUnloadNow")() == S_OK;
  std::printf("%s\n", unloads ? "may be unloaded" : "something is still alive");
  return unloads ? 0 : 1;
}
