#pragma once

#include <map>

#include "host/runtime/com.h"
#include "sdk/host_application.h"

namespace NRuntime {

/// Sinks of one kind, each under the cookie that withdraws it.
template <class Sink>
class SinkList {
 public:
  HRESULT Add(ComPtr<Sink> sink, std::uint32_t* cookie) {
    if (!sink || !cookie) return E_POINTER;
    *cookie = ++mLastCookie;
    mSinks.emplace(mLastCookie, std::move(sink));
    return S_OK;
  }

  /// E_INVALIDARG: no such cookie.
  HRESULT Remove(std::uint32_t cookie) { return mSinks.erase(cookie) == 1 ? S_OK : E_INVALIDARG; }

  /// Calls a method of every sink that was there at the beginning and still is when its turn comes.
  void Tell(HRESULT (STDMETHODCALLTYPE Sink::*method)()) const {
    const auto sinks = mSinks;
    for (const auto& [cookie, sink] : sinks) {
      if (mSinks.count(cookie) != 0) (sink.Get()->*method)();
    }
  }

 private:
  std::map<std::uint32_t, ComPtr<Sink>> mSinks;
  std::uint32_t mLastCookie = 0;
};

/// Where sinks of one interface are subscribed.
template <class Sink>
class EventSource final : public Implements<NSdk::IEventSource> {
 public:
  HRESULT STDMETHODCALLTYPE Advise(IUnknown* sink, std::uint32_t* cookie) override {
    if (!sink || !cookie) return E_POINTER;
    auto wanted = Query<Sink>(sink);
    return wanted ? mSinks.Add(std::move(wanted), cookie) : E_NOINTERFACE;
  }
  HRESULT STDMETHODCALLTYPE Unadvise(std::uint32_t cookie) override { return mSinks.Remove(cookie); }

  void Tell(HRESULT (STDMETHODCALLTYPE Sink::*method)()) const { mSinks.Tell(method); }

 private:
  SinkList<Sink> mSinks;
};

}  // namespace NRuntime
