#include "plugin/version.h"

namespace NPlugin {

Version ReadVersion() {
  return {OSTREL_VERSION_MAJOR, OSTREL_VERSION_MINOR, OSTREL_VERSION_PATCH, L"Ostrel",
          L"CANopen plug-in module"};
}

}  // namespace NPlugin
