#pragma once

namespace NEditors {

/// Registers the editors of this platform for the items of the whole module; without windows there are none.
void InstallItemEditors();

}  // namespace NEditors
