#include "editors/item_editors.h"

namespace NEditors {

void InstallItemEditors() {}

}  // namespace NEditors
