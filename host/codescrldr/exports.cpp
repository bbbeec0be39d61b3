// The one function that the library exports; its name is fixed by the export list.
#include "host/codescrldr/loader.h"
#include "host/runtime/com_guard.h"

#ifndef STDAPI
#define STDAPI extern "C" [[gnu::visibility("default")]] HRESULT STDAPICALLTYPE
#endif

STDAPI DllCreateCODescrLdr(REFIID iid, void** loader) {
  if (!loader) return E_POINTER;
  return NRuntime::Guarded([&] { return NDescriptions::MakeLoader()->QueryInterface(iid, loader); });
}
