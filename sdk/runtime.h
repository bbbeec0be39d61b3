#pragma once
// What a running measurement offers to the blocks in it.

#include "sdk/can_message.h"
#include "sdk/com_base.h"

namespace NSdk {

struct ITimerSink;

/// A timer of the host, made by IRuntime::CreateTimer. It holds its sink weakly: the sink's owner releases
/// the timer before the sink dies. Releasing the last reference stops it for good.
struct ITimer : IUnknown {
  static constexpr IID kIid = {0x124ea8f4, 0x8906, 0x4078, {0xb6, 0x48, 0xa8, 0x99, 0x01, 0x57, 0xc6, 0x34}};

  /// Stops the timer; no expiry is delivered afterwards, not even one that was due already. S_OK when it was
  /// not running.
  virtual HRESULT STDMETHODCALLTYPE Stop() = 0;
  /// (Re)starts the timer. Periodic expiries keep absolute deadlines: the n-th is due n periods after the
  /// start, whatever the delay of those before; expiries that were missed are not made up in a burst. A
  /// period of 0 means: as soon as possible; for a periodic timer it is taken as 1 ms.
  virtual HRESULT STDMETHODCALLTYPE Start(std::uint32_t period_ms, std::uint32_t periodic) = 0;
};

/// Implemented by who owns timers.
struct ITimerSink : IUnknown {
  static constexpr IID kIid = {0xe540c8ba, 0x847f, 0x4186, {0x9f, 0xc9, 0xfe, 0xbd, 0x4e, 0x3b, 0xca, 0x87}};

  /// One expiry of the timer. The sink may start, stop and release any timer here, this one included.
  virtual HRESULT STDMETHODCALLTYPE OnTimer(ITimer* timer) = 0;
};

/// The run time of one measurement, valid from its start to its stop.
struct IRuntime : IUnknown {
  static constexpr IID kIid = {0x14ee3e52, 0x508f, 0x408b, {0x82, 0x48, 0xbc, 0x02, 0x42, 0x0e, 0xce, 0x9e}};

  /// A stopped timer bound to the sink. E_POINTER: a null argument.
  virtual HRESULT STDMETHODCALLTYPE CreateTimer(ITimerSink* sink, ITimer** timer) = 0;
  /// The output of a CAN channel. E_INVALIDARG: the configuration has no such channel.
  virtual HRESULT STDMETHODCALLTYPE GetCanOutput(std::uint32_t channel, ICANOutput** output) = 0;
  /// Nanoseconds since the start of the measurement.
  virtual HRESULT STDMETHODCALLTYPE GetTime(std::int64_t* time_ns) = 0;
};

}  // namespace NSdk
