#include "plugin/pages.h"

namespace NPlugin {

NCom::ComPtr<NSdk::IPage> MakeBaudratePage() { return nullptr; }

}  // namespace NPlugin
