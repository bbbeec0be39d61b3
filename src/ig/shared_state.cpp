#include "ig/shared_state.h"

namespace NIg {

SharedState& Shared() {
  static SharedState state;
  return state;
}

}  // namespace NIg
