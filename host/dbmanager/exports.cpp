// The one function that the library exports; its name is fixed by the export list.
#include "host/dbmanager/manager.h"
#include "host/runtime/com_guard.h"

#ifndef STDAPI
#define STDAPI extern "C" [[gnu::visibility("default")]] HRESULT STDAPICALLTYPE
#endif

STDAPI DllCreateDBManagerEx(REFIID iid, void** manager) {
  if (!manager) return E_POINTER;
  return NRuntime::Guarded([&] { return NDatabases::MakeManager()->QueryInterface(iid, manager); });
}
