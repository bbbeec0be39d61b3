#pragma once
// The five functions that a plug-in module exports, undecorated, and their types for a host that loads one at
// run time.

#include "sdk/com_base.h"

namespace NSdk {

/// Identity of a class by ProgID (compared exactly; null = the plug-in object). E_FAIL, nothing written:
/// unknown ProgID or null result pointer.
using DllGetPlugInCLSIDFunction = HRESULT(STDAPICALLTYPE*)(const char* progId, CLSID* clsid);
/// Class object (factory) of a class. CLASS_E_CLASSNOTAVAILABLE: not a class of this module.
using DllGetClassObjectFunction = HRESULT(STDAPICALLTYPE*)(REFCLSID clsid, REFIID iid, void** object);
/// S_OK when no object of the module is alive and no server lock is held, otherwise S_FALSE.
using DllCanUnloadNowFunction = HRESULT(STDAPICALLTYPE*)();
/// Both write and remove nothing and return S_OK: hosts do not find the module through the system registry.
using DllRegisterServerFunction = HRESULT(STDAPICALLTYPE*)();
using DllUnregisterServerFunction = HRESULT(STDAPICALLTYPE*)();

}  // namespace NSdk
