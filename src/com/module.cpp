#include "com/module.h"

namespace NCom {

Module& TheModule() {
  static Module module;
  return module;
}

}  // namespace NCom
