#pragma once
// A host on a virtual clock: timers, one CAN output that keeps what is sent, and a user who reads messages.

#include <algorithm>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "com/com_ptr.h"
#include "com/implements.h"
#include "com/task_text.h"
#include "common/host_application.h"
#include "sdk/persistence.h"
#include "sdk/runtime.h"

namespace NTest {

struct SentFrame {
  std::uint32_t time_ms;
  NSdk::CanFrame frame;
};

/// "705 [1] 7F", "181 [R4]", "800x [0]"
inline std::string Text(const NSdk::CanFrame& frame) {
  char text[64];
  const unsigned dlc = frame.flags & NSdk::kFrameDlcMask;
  const bool remote = (frame.flags & NSdk::kFrameRemote) != 0;
  std::snprintf(text, sizeof(text), "%X%s [%s%u]", static_cast<unsigned>(frame.identifier),
                (frame.flags & NSdk::kFrameExtended) ? "x" : "", remote ? "R" : "", dlc);
  std::string result = text;
  for (unsigned i = 0; i < dlc && i < 8 && !remote; ++i) {
    std::snprintf(text, sizeof(text), " %02X", frame.data[i]);
    result += text;
  }
  return result;
}

class FakeHost;

class FakeTimer final : public NCom::Implements<NSdk::ITimer> {
 public:
  FakeTimer(FakeHost& host, NSdk::ITimerSink& sink) : mHost(host), mSink(sink) {}
  ~FakeTimer() override;

  HRESULT STDMETHODCALLTYPE Stop() override {
    running = false;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Start(std::uint32_t period_ms, std::uint32_t periodicFlag) override;
  void Expire() {
    const NCom::ComPtr<FakeTimer> self(this);  // the sink may release it
    running = periodic;
    due += std::max<std::uint32_t>(period, 1);
    mSink.OnTimer(this);
  }

  bool running = false;
  bool periodic = false;
  std::uint32_t due = 0;
  std::uint32_t period = 0;

 private:
  FakeHost& mHost;
  NSdk::ITimerSink& mSink;
};

class FakeOutput final : public NCom::Implements<NSdk::ICANOutput> {
 public:
  FakeOutput(std::function<void(const NSdk::CanFrame&)> send) : mSend(std::move(send)) {}
  HRESULT STDMETHODCALLTYPE Transmit(const NSdk::CanFrame* frame) override {
    mSend(*frame);
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE TransmitMessage(NSdk::ICANMessage*) override { return E_NOTIMPL; }

 private:
  std::function<void(const NSdk::CanFrame&)> mSend;
};

class FakeDialogs final : public NCom::Implements<NSdk::IUserDialogs> {
 public:
  HRESULT STDMETHODCALLTYPE ShowMessage(const wchar_t*, const wchar_t* text, std::uint32_t icon) override {
    messages.emplace_back(text);
    icons.push_back(icon);
    if (whileShown) whileShown();
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE SelectNodes(const wchar_t*, const std::uint8_t*, std::uint32_t,
                                        std::uint8_t*) override {
    return S_FALSE;
  }

  std::vector<std::wstring> messages;
  std::vector<std::uint32_t> icons;
  std::function<void()> whileShown;
};

/// Settings of a block: text by key.
class FakeStore final : public NCom::Implements<NSdk::IPersistReader, NSdk::IPersistWriter> {
 public:
  HRESULT STDMETHODCALLTYPE ReadText(const wchar_t* key, wchar_t** value) override {
    const auto found = values.find(key);
    return found == values.end() ? E_FAIL : NCom::HandOut(found->second, value);
  }
  HRESULT STDMETHODCALLTYPE WriteText(const wchar_t* key, const wchar_t* value) override {
    values[key] = value;
    return S_OK;
  }
  std::map<std::wstring, std::wstring> values;
};

/// A configuration with a path and nothing else.
class FakeConfiguration final : public NCom::Implements<NSdk::IConfigurationService> {
 public:
  explicit FakeConfiguration(std::wstring path) : mPath(std::move(path)) {}
  HRESULT STDMETHODCALLTYPE GetItemCount(std::uint32_t, std::uint32_t*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetPath(wchar_t** path) override {
    return mPath.empty() ? S_FALSE : NCom::HandOut(mPath, path);
  }
  HRESULT STDMETHODCALLTYPE GetCanChannel(std::uint32_t, std::uint32_t*) override { return S_FALSE; }
  HRESULT STDMETHODCALLTYPE GetDatabase(std::uint32_t, wchar_t**, std::uint32_t*) override { return S_FALSE; }

 private:
  std::wstring mPath;
};

/// Bound as the process's host application for its lifetime.
class FakeHost final : public NCom::Implements<NSdk::IRuntime, NSdk::IHostApplication> {
 public:
  FakeHost() { NCommon::SetHostApplication(this); }

  // IRuntime
  HRESULT STDMETHODCALLTYPE CreateTimer(NSdk::ITimerSink* sink, NSdk::ITimer** timer) override {
    auto made = NCom::Make<FakeTimer>(*this, *sink);
    timers.push_back(made.Get());
    *timer = made.Detach();
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetCanOutput(std::uint32_t channel, NSdk::ICANOutput** output) override {
    if (channel > channels) return E_INVALIDARG;
    *output = NCom::Make<FakeOutput>([this](const NSdk::CanFrame& frame) {
                sent.push_back({now, frame});
              }).Detach();
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTime(std::int64_t* time_ns) override {
    *time_ns = std::int64_t{now} * 1'000'000;
    return S_OK;
  }

  // IHostApplication
  HRESULT STDMETHODCALLTYPE GetLanguage(std::uint32_t* language) override { return Answer(language, 1); }
  HRESULT STDMETHODCALLTYPE GetNumberBase(std::uint32_t* base) override { return Answer(base, 16); }
  HRESULT STDMETHODCALLTYPE GetVariant(std::uint32_t* variant) override {
    return Answer(variant, NSdk::kHostHalvard);
  }
  HRESULT STDMETHODCALLTYPE IsMeasuring(std::uint32_t* measuring) override { return Answer(measuring, 1); }
  HRESULT STDMETHODCALLTYPE GetService(REFIID iid, void** service) override {
    if (SUCCEEDED(dialogs->QueryInterface(iid, service))) return S_OK;
    return configuration ? configuration->QueryInterface(iid, service) : E_NOINTERFACE;
  }
  HRESULT STDMETHODCALLTYPE FindEventSource(REFIID, NSdk::IEventSource**) override { return E_NOINTERFACE; }

  /// Lets time pass, timer by timer in the order in which they are due.
  void RunFor(std::uint32_t duration_ms) {
    const std::uint32_t end = now + duration_ms;
    while (FakeTimer* next = NextDue(end)) {
      now = std::max(now, next->due);
      next->Expire();
    }
    now = end;
  }

  /// What was sent since the last call: "20: 80 [0]".
  std::vector<std::string> TakeSent() {
    std::vector<std::string> texts;
    for (const SentFrame& frame : sent)
      texts.push_back(std::to_string(frame.time_ms) + ": " + Text(frame.frame));
    sent.clear();
    return texts;
  }

  std::uint32_t now = 0;
  std::uint32_t channels = 1;
  std::vector<FakeTimer*> timers;  // living ones
  std::vector<SentFrame> sent;
  NCom::ComPtr<FakeDialogs> dialogs = NCom::Make<FakeDialogs>();
  NCom::ComPtr<FakeConfiguration> configuration;  // empty: none is open yet

 private:
  template <class Value>
  static HRESULT Answer(std::uint32_t* result, Value value) {
    *result = value;
    return S_OK;
  }

  FakeTimer* NextDue(std::uint32_t end) const {
    FakeTimer* next = nullptr;
    for (FakeTimer* timer : timers) {
      if (timer->running && timer->due <= end && (!next || timer->due < next->due)) next = timer;
    }
    return next;
  }
};

inline FakeTimer::~FakeTimer() { std::erase(mHost.timers, this); }

inline HRESULT FakeTimer::Start(std::uint32_t period_ms, std::uint32_t periodicFlag) {
  running = true;
  periodic = periodicFlag != 0;
  period = period_ms;
  due = mHost.now + period_ms;
  return S_OK;
}

}  // namespace NTest
