#include "common/host_application.h"

namespace NCommon {
namespace {

// Never destroyed: a host that ends without shutting the plug-in down may be gone before this library is.
NCom::ComPtr<NSdk::IHostApplication>& Slot() {
  static auto* const slot = new NCom::ComPtr<NSdk::IHostApplication>();
  return *slot;
}

}  // namespace

void SetHostApplication(NSdk::IHostApplication* application) { Slot() = application; }

NCom::ComPtr<NSdk::IHostApplication> HostApplication() { return Slot(); }

}  // namespace NCommon
