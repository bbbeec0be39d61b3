#pragma once

#include "host/runtime/measurement.h"

namespace NBench {

/// For a host that measures nothing.
class Unobserved final : public NRuntime::MeasurementObserver {
  void OnFrame(const NRuntime::SeenFrame&) override {}
  void OnTrouble(std::uint32_t, const std::string&) override {}
};

}  // namespace NBench
