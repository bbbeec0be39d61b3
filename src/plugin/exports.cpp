// The five functions that the module exports. Their names and calling convention are fixed by the export
// lists beside this file (ostrel.def, ostrel.map).
#include "com/entry.h"
#include "com/module.h"
#include "plugin/plugin_app.h"
#include "sdk/module_exports.h"

#ifndef STDAPI
#define STDAPI extern "C" [[gnu::visibility("default")]] HRESULT STDAPICALLTYPE
#endif

STDAPI DllGetPlugInCLSID(const char* progId, CLSID* clsid) {
  return NCom::Entry([&] { return NCom::FindClassId(NPlugin::TheApp().Classes(), progId, clsid); });
}

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) {
  return NCom::Entry([&] { return NCom::GetClassObject(NPlugin::TheApp().Classes(), clsid, iid, object); });
}

STDAPI DllCanUnloadNow() {
  NCom::ModuleScope scope;
  return NCom::TheModule().LockCount() == 0 ? S_OK : S_FALSE;
}

STDAPI DllRegisterServer() {
  NCom::ModuleScope scope;
  return S_OK;
}

STDAPI DllUnregisterServer() {
  NCom::ModuleScope scope;
  return S_OK;
}
