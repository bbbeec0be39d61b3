#include "common/host_application.h"

#include <cstddef>
#include <new>

namespace NCommon {
namespace {

// Never destroyed, and nothing allocated: a host that ends without shutting the plug-in down may be gone
// before this library is, and a library that is unloaded leaves nothing behind.
class LastingSlot {
 public:
  using Application = NCom::ComPtr<NSdk::IHostApplication>;
  LastingSlot() { new (mStorage) Application(); }
  Application& Get() { return *std::launder(reinterpret_cast<Application*>(mStorage)); }

 private:
  alignas(Application) std::byte mStorage[sizeof(Application)];
};

LastingSlot::Application& Slot() {
  static LastingSlot slot;
  return slot.Get();
}

}  // namespace

void SetHostApplication(NSdk::IHostApplication* application) { Slot() = application; }

NCom::ComPtr<NSdk::IHostApplication> HostApplication() { return Slot(); }

bool HasSimulationSetup() {
  std::uint32_t variant = 0;
  const auto application = HostApplication();
  return application && SUCCEEDED(application->GetVariant(&variant)) && variant == NSdk::kHostHalvard;
}

std::uint32_t HostLanguage() {
  std::uint32_t language = 0;
  const auto application = HostApplication();
  return application && SUCCEEDED(application->GetLanguage(&language)) ? language : kEnglish;
}

std::optional<std::uint32_t> HostNumberBase() {
  std::uint32_t base = 0;
  const auto application = HostApplication();
  return application && SUCCEEDED(application->GetNumberBase(&base)) ? std::optional(base) : std::nullopt;
}

}  // namespace NCommon
