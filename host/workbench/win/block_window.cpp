#include "host/workbench/win/block_window.h"

#include <algorithm>
#include <stdexcept>

#include "host/runtime/text.h"
#include "host/workbench/texts.h"

namespace NWorkbench {

// The block may keep its site longer than the window is there.
class BlockWindow::Site final : public NRuntime::Implements<NSdk::IWindowSite> {
 public:
  explicit Site(BlockWindow& owner) : mOwner(&owner) {}
  void Forget() { mOwner = nullptr; }

  HRESULT STDMETHODCALLTYPE GetParentWindow(void** window) override {
    return mOwner ? NRuntime::HandOut(static_cast<void*>(mOwner->Handle()), window) : E_FAIL;
  }
  HRESULT STDMETHODCALLTYPE SetCaption(const wchar_t* caption) override {
    if (!caption) return E_POINTER;
    if (mOwner) SetWindowTextW(mOwner->Handle(), caption);
    return S_OK;
  }

 private:
  BlockWindow* mOwner;
};

BlockWindow::BlockWindow(HWND client, NRuntime::ComPtr<NSdk::IUIEventsEx> block, const std::wstring& title,
                         const std::optional<NConfiguration::Window>& place, std::function<void()> closed)
    : mBlock(std::move(block)), mSite(NRuntime::Make<Site>(*this)), mClosed(std::move(closed)) {
  mBlock->GetSizes(&mPreferred, &mMinimum);
  RECT frame = Frame(mPreferred);
  frame = {CW_USEDEFAULT, CW_USEDEFAULT, frame.right - frame.left, frame.bottom - frame.top};
  MakeChild(client, L"OstrelBlock", title.c_str(), frame, /*visible=*/false);
  if (mBlock->CreateBlockWindow(mSite.Get()) != S_OK) {
    throw std::runtime_error(NRuntime::ToUtf8(Text(TextId::BlockNoWindow)));
  }
  Arrange();
  if (place) PutAt(Handle(), *place);
  Show();
}

// Only now that all is in its place: nothing is drawn twice, and nothing is seen half made.
void BlockWindow::Show() {
  if (!IsWindowVisible(Handle())) ShowWindow(Handle(), SW_SHOWNA);
  ::SendMessageW(GetParent(Handle()), WM_MDIACTIVATE, reinterpret_cast<WPARAM>(Handle()), 0);
  SetFocus(Handle());
}

BlockWindow::~BlockWindow() {
  mSite->Forget();
  mBlock->DestroyBlockWindow();
}

HWND BlockWindow::Inner() const {
  void* window = nullptr;
  return mBlock->GetBlockWindow(&window) == S_OK ? static_cast<HWND>(window) : nullptr;
}

RECT BlockWindow::Frame(NSdk::WindowSize size) const {
  RECT frame = {0, 0, Scaled(size.width), Scaled(size.height)};
  AdjustWindowRectEx(&frame, WS_OVERLAPPEDWINDOW, FALSE, WS_EX_MDICHILD);
  return frame;
}

void BlockWindow::Arrange() const {
  RECT area = {};
  GetClientRect(Handle(), &area);
  if (const HWND inner = Inner()) MoveWindow(inner, 0, 0, area.right, area.bottom, TRUE);
}

NConfiguration::Window BlockWindow::Place() const { return PlaceOf(Handle()); }

// A list that fills the window has no controls to go through.
bool BlockWindow::Translate(MSG& message) {
  const HWND inner = Inner();
  const bool hasControls = inner && (GetWindowLongW(inner, GWL_EXSTYLE) & WS_EX_CONTROLPARENT) != 0;
  return hasControls && IsDialogMessageW(inner, &message);
}

LRESULT BlockWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_SIZE:
      Arrange();
      break;
    case WM_SETFOCUS:
      if (const HWND inner = Inner()) SetFocus(inner);
      return 0;
    case WM_GETMINMAXINFO: {
      Default(message, wParam, lParam);
      const RECT least = Frame(mMinimum);
      auto& limits = *reinterpret_cast<MINMAXINFO*>(lParam);
      limits.ptMinTrackSize = {least.right - least.left, least.bottom - least.top};
      return 0;
    }
    case WM_CLOSE:
      if (mClosed) mClosed();
      return 0;
    default:
      break;
  }
  return Default(message, wParam, lParam);
}

}  // namespace NWorkbench
