// Load and unload of the shared object.
#include "plugin/plugin_app.h"

namespace {

struct LoadedLibrary {
  LoadedLibrary() { NPlugin::TheApp().InitInstance(); }
  ~LoadedLibrary() { NPlugin::TheApp().ExitInstance(); }
};

const LoadedLibrary kLoadedLibrary;

}  // namespace
