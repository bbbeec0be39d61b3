// Modules that do not keep the contract, one for each FAULT: how a host takes it when a module
//   1  lacks an export
//   2  knows no class
//   3  answers S_OK and hands out nothing
//   4  makes objects that are nothing but objects
//   5  has a plug-in object that registers no commands
//   6  has one that refuses its host
#include "host/runtime/com.h"
#include "sdk/class_ids.h"
#include "sdk/plugin.h"

#ifndef STDAPI
#define STDAPI extern "C" [[gnu::visibility("default")]] HRESULT STDAPICALLTYPE
#endif

namespace {

using NRuntime::ComPtr;

class BareObject final : public NRuntime::Implements<IUnknown> {};

class PlugIn final : public NRuntime::Implements<NSdk::IPlugIn> {
 public:
  HRESULT STDMETHODCALLTYPE GetName(wchar_t**) override { return E_FAIL; }
  HRESULT STDMETHODCALLTYPE Initialise(NSdk::IHostApplication*) override {
    return FAULT == 6 ? E_FAIL : S_OK;
  }
  HRESULT STDMETHODCALLTYPE ShutDown() override { return S_OK; }
};

class Factory final : public NRuntime::Implements<IClassFactory> {
 public:
  explicit Factory(bool makesPlugIn) : mMakesPlugIn(makesPlugIn) {}

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID iid, void** object) override {
    if (mMakesPlugIn) return NRuntime::Make<PlugIn>()->QueryInterface(iid, object);
    return NRuntime::Make<BareObject>()->QueryInterface(iid, object);
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

 private:
  bool mMakesPlugIn;
};

}  // namespace

STDAPI DllGetPlugInCLSID(const char* progId, CLSID* clsid) {
  if (FAULT == 2) return E_FAIL;
  const bool plugIn = std::string_view(progId) == NSdk::kProgIdPlugIn;
  *clsid = plugIn ? NSdk::kClsidPlugIn : NSdk::kClsidCANopenIG;
  return S_OK;
}

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) {
  if (FAULT == 3) return S_OK;
  return NRuntime::Make<Factory>(FAULT >= 5 && clsid == NSdk::kClsidPlugIn)->QueryInterface(iid, object);
}

#if FAULT != 1
STDAPI DllCanUnloadNow() { return S_OK; }
#endif
STDAPI DllRegisterServer() { return S_OK; }
STDAPI DllUnregisterServer() { return S_OK; }
