#include <stdexcept>

#include "host/buses/socketcan.h"

namespace NBuses {

bool HasSocketCan() { return false; }

std::unique_ptr<NRuntime::CanAdapter> MakeSocketCan(NRuntime::IoLoop&, const std::string&) {
  throw std::logic_error("this system has no SocketCAN");
}

}  // namespace NBuses
