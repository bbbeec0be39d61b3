#pragma once
// A generator block with its window, driven by keys and messages.

#include "resources/resource_ids.h"
#include "sdk/class_ids.h"
#include "sdk/generator.h"
#include "sdk/unsaved_work.h"
#include "tests/test_folder.h"
#include "tests/windows/window_host.h"

namespace NTest {

/// A measurement whose timers expire when the test says so, and whose frames are kept as "181 01 02".
class SteppedRuntime final : public NRuntime::Implements<NSdk::IRuntime> {
 public:
  HRESULT STDMETHODCALLTYPE CreateTimer(NSdk::ITimerSink* sink, NSdk::ITimer** timer) override;
  HRESULT STDMETHODCALLTYPE GetCanOutput(std::uint32_t channel, NSdk::ICANOutput** output) override;
  HRESULT STDMETHODCALLTYPE GetTime(std::int64_t* time_ns) override;

  /// Every running timer expires once.
  void Step();

  class Timer;
  std::vector<std::wstring> sent;

 private:
  std::vector<Timer*> mTimers;
};

enum Modifier : unsigned { kNone = 0, kWithShift = 1, kWithCtrl = 2, kWithAlt = 4 };

class GeneratorWindowTest : public testing::Test {
 protected:
  GeneratorWindowTest();
  ~GeneratorWindowTest() override;

  HWND Window();
  HWND Control(int id) { return GetDlgItem(Window(), id); }
  HWND Sequence() { return Control(IDC_IG_SEQUENCE); }
  HWND Cyclic() { return Control(IDC_IG_CYCLIC); }
  std::filesystem::path File(const wchar_t* name) const { return folder / name; }

  // The user's hands

  /// A key as the host's loop hands it on to the control that has the focus; with Alt, a mnemonic.
  void Press(WPARAM key, unsigned modifiers = kNone);
  void Click(int id) { SendDlgItemMessageW(Window(), id, BM_CLICK, 0, 0); }
  /// Selects an entry of the tree by its labels, from the root down.
  HTREEITEM Choose(std::initializer_list<const wchar_t*> labels) {
    return NTest::Choose(Control(IDC_IG_TEMPLATES), labels);
  }
  void SelectRows(HWND list, std::initializer_list<int> rows);

  // What is seen

  /// Types of all rows, unchecked ones in brackets, selected ones with a star: "SDO* [PDO]".
  std::wstring Rows(HWND list);
  std::wstring Cell(HWND list, int row, int column) { return CellText(list, row, column); }
  bool IsEnabled(int id) { return IsWindowEnabled(Control(id)) != FALSE; }

  void Start() { client->StartMeasurement(runtime.Get()); }
  void Stop() { client->StopMeasurement(); }

  /// Describes node 5, "Drive".
  std::filesystem::path Database();

  TestFolder folder;
  WindowHost host{NSdk::kHostHalvard, Database()};
  ComPtr<IUnknown> block = host.AddBlock(NSdk::kProgIdCANopenIG);
  ComPtr<NSdk::IUIEventsEx> events = NRuntime::Query<NSdk::IUIEventsEx>(block);
  ComPtr<NSdk::IGenerator> generator = NRuntime::Query<NSdk::IGenerator>(block);
  ComPtr<NSdk::IRTClient> client = NRuntime::Query<NSdk::IRTClient>(block);
  ComPtr<SteppedRuntime> runtime = NRuntime::Make<SteppedRuntime>();
};

}  // namespace NTest
