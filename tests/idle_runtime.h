#pragma once

#include <cstdlib>

#include "com/com_ptr.h"
#include "com/implements.h"
#include "sdk/runtime.h"

namespace NTest {

/// A timer that never expires.
class IdleTimer final : public NCom::Implements<NSdk::ITimer> {
 public:
  HRESULT STDMETHODCALLTYPE Stop() override { return S_OK; }
  HRESULT STDMETHODCALLTYPE Start(std::uint32_t, std::uint32_t) override { return S_OK; }
};

/// The run time of a measurement for a block that only listens: whoever asks for an output ends the program.
class IdleRuntime final : public NCom::Implements<NSdk::IRuntime> {
 public:
  HRESULT STDMETHODCALLTYPE CreateTimer(NSdk::ITimerSink*, NSdk::ITimer** timer) override {
    *timer = NCom::Make<IdleTimer>().Detach();
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetCanOutput(std::uint32_t, NSdk::ICANOutput**) override { std::abort(); }
  HRESULT STDMETHODCALLTYPE GetTime(std::int64_t*) override { return E_FAIL; }
};

}  // namespace NTest
