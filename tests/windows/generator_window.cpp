#include "tests/windows/generator_window.h"

namespace NTest {

// ---- a measurement

class SteppedRuntime::Timer final : public NRuntime::Implements<NSdk::ITimer> {
 public:
  Timer(SteppedRuntime& runtime, NSdk::ITimerSink& sink) : mRuntime(&runtime), mSink(sink) {
    runtime.mTimers.push_back(this);
  }
  ~Timer() override { std::erase(mRuntime->mTimers, this); }
  HRESULT STDMETHODCALLTYPE Stop() override {
    mRunning = false;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Start(std::uint32_t, std::uint32_t periodic) override {
    mRunning = true;
    mPeriodic = periodic != 0;
    return S_OK;
  }
  void Expire() {
    if (!mRunning) return;
    mRunning = mPeriodic;
    mSink.OnTimer(this);
  }

 private:
  ComPtr<SteppedRuntime> mRuntime;
  NSdk::ITimerSink& mSink;
  bool mRunning = false;
  bool mPeriodic = false;
};

namespace {

class Output final : public NRuntime::Implements<NSdk::ICANOutput> {
 public:
  explicit Output(SteppedRuntime& runtime) : mRuntime(&runtime) {}
  HRESULT STDMETHODCALLTYPE Transmit(const NSdk::CanFrame* frame) override {
    wchar_t text[16];
    swprintf(text, 16, L"%X", static_cast<unsigned>(frame->identifier));
    std::wstring line = text;
    for (unsigned i = 0; i < (frame->flags & NSdk::kFrameDlcMask); ++i) {
      swprintf(text, 16, L" %02X", frame->data[i]);
      line += text;
    }
    mRuntime->sent.push_back(line);
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE TransmitMessage(NSdk::ICANMessage*) override { return E_NOTIMPL; }

 private:
  ComPtr<SteppedRuntime> mRuntime;
};

}  // namespace

HRESULT SteppedRuntime::CreateTimer(NSdk::ITimerSink* sink, NSdk::ITimer** timer) {
  return ComPtr<NSdk::ITimer>(NRuntime::Make<Timer>(*this, *sink).Get()).MoveTo(timer);
}

HRESULT SteppedRuntime::GetCanOutput(std::uint32_t, NSdk::ICANOutput** output) {
  return ComPtr<NSdk::ICANOutput>(NRuntime::Make<Output>(*this).Get()).MoveTo(output);
}

HRESULT SteppedRuntime::GetTime(std::int64_t* time_ns) { return NRuntime::HandOut(std::int64_t{0}, time_ns); }

void SteppedRuntime::Step() {
  std::vector<ComPtr<Timer>> timers;
  for (Timer* timer : mTimers) timers.emplace_back(timer);
  for (const auto& timer : timers) timer->Expire();
}

// ---- the block

GeneratorWindowTest::GeneratorWindowTest() {
  host.application->numberBase = 16;
  EXPECT_EQ(events->CreateBlockWindow(host.frame.Get()), S_OK);
  MoveWindow(Window(), 0, 0, 640, 460, FALSE);
  // A program that has just ended may still be handing its place on.
  SetForegroundWindow(host.frame->window);
  PumpUntil([this] { return GetForegroundWindow() == host.frame->window; }, 500);
  SetFocus(Control(IDC_IG_TEMPLATES));
}

GeneratorWindowTest::~GeneratorWindowTest() {
  client->StopMeasurement();
  NRuntime::Query<NSdk::IPlugInBlock>(block)->Detach();
}

HWND GeneratorWindowTest::Window() {
  void* window = nullptr;
  events->GetBlockWindow(&window);
  return static_cast<HWND>(window);
}

std::filesystem::path GeneratorWindowTest::Database() {
  return WriteFile(
      folder / "nodes.dbc",
      "VERSION \"\"\nBU_: Drive\nBA_DEF_ BU_ \"CO_ID\" INT 0 127;\nBA_ \"CO_ID\" BU_ Drive 5;\n");
}

// ---- hands

void GeneratorWindowTest::Press(WPARAM key, unsigned modifiers) {
  constexpr BYTE kDown = 0x80;
  BYTE keys[256] = {};
  if (modifiers & kWithShift) keys[VK_SHIFT] = kDown;
  if (modifiers & kWithCtrl) keys[VK_CONTROL] = kDown;
  if (modifiers & kWithAlt) keys[VK_MENU] = kDown;
  SetKeyboardState(keys);
  constexpr LPARAM kAltDown = 1 << 29;
  MSG message = {};
  message.hwnd = GetFocus();
  message.message = (modifiers & kWithAlt) ? WM_SYSCHAR : WM_KEYDOWN;
  message.wParam = key;
  message.lParam = (modifiers & kWithAlt) ? kAltDown : 1;
  if (!IsDialogMessageW(Window(), &message)) DispatchMessageW(&message);
  BYTE released[256] = {};
  SetKeyboardState(released);
  PumpFor(1);
}

void GeneratorWindowTest::SelectRows(HWND list, std::initializer_list<int> rows) {
  SetFocus(list);
  ListView_SetItemState(list, -1, 0, LVIS_SELECTED);
  for (const int row : rows) {
    ListView_SetItemState(list, row, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
  }
}

// ---- eyes

std::wstring GeneratorWindowTest::Rows(HWND list) {
  std::wstring texts;
  for (int row = 0; row < ListView_GetItemCount(list); ++row) {
    const std::wstring type = CellText(list, row, 0);
    const bool checked = ListView_GetCheckState(list, row) != 0;
    texts += (row == 0 ? L"" : L" ") + (checked ? type : L"[" + type + L"]");
    if (ListView_GetItemState(list, row, LVIS_SELECTED) != 0) texts += L"*";
  }
  return texts;
}

}  // namespace NTest
