#pragma once
// The host's CAN database library, loaded when it is first needed.

#include "com/com_ptr.h"
#include "sdk/database_library.h"

namespace NChannels {

/// A manager that knows the databases of the host's configuration. Empty: the library is not there, or there
/// is no configuration. The user is told once that it is missing, when a configuration has databases.
NCom::ComPtr<NSdk::IDatabaseManager> MakeDatabaseManager();

/// Unloads the library; whatever came out of it was released before.
void ReleaseDatabaseLibrary();

}  // namespace NChannels
