#include "com/module_scope.h"

namespace NCom {

// There is no state to switch: shared objects have no activation contexts and resources are compiled in.
ModuleScope::ModuleScope() = default;
ModuleScope::~ModuleScope() = default;

void SetModuleHandle(void*) {}
void* ModuleHandle() { return nullptr; }
void ReleaseModuleState() {}

}  // namespace NCom
