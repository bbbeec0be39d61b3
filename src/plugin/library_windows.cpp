// Load and unload of the module as Windows reports them.
#include <windows.h>

#include "com/module_scope.h"
#include "plugin/plugin_app.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void* processEnds) {
  if (reason == DLL_PROCESS_ATTACH) {
    DisableThreadLibraryCalls(instance);
    NCom::SetModuleHandle(instance);
    return NPlugin::TheApp().InitInstance() ? TRUE : FALSE;
  }
  // When the process ends the host's objects may be gone already; the system takes everything back by itself.
  if (reason == DLL_PROCESS_DETACH && !processEnds) {
    NPlugin::TheApp().ExitInstance();
    NCom::ReleaseModuleState();
  }
  return TRUE;
}
