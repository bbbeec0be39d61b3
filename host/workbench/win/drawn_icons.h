#pragma once

#include <windows.h>

namespace NWorkbench {

/// Images of the program itself. They are drawn at the size that is wanted, so that they are crisp at every
/// resolution.
enum class DrawnIcon { New, Open, Save, Start, Stop, Channels };

/// `size` is its width and height in pixels. The caller destroys it.
HICON MakeDrawnIcon(DrawnIcon icon, int size);

}  // namespace NWorkbench
