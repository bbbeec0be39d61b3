#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <vector>

#include "host/workbench/workbench.h"
#include "sdk/pages.h"

namespace NWorkbench {

/// Channels of the configuration: bus, bit timing, databases, the pages that the module adds; and the
/// simulated devices.
class ChannelsDialog {
 public:
  explicit ChannelsDialog(Workbench& workbench);
  ~ChannelsDialog();
  ChannelsDialog(const ChannelsDialog&) = delete;
  ChannelsDialog& operator=(const ChannelsDialog&) = delete;

  /// False: cancelled, and nothing is changed.
  bool Run(HWND owner);

 private:
  class Timing;
  class PageSite;
  class Pages;

  static INT_PTR CALLBACK Receive(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  INT_PTR OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
  void OnInit();
  void OnCommand(int id, int notification);
  void MakeControls();
  void MakePages();
  void Arrange();
  HWND Control(int id) const;
  std::string TextIn(int id) const;
  void PutText(int id, const std::string& text) const;
  void ShowList();
  void ShowChannel(int position);
  bool TakeChannel();
  void ShowTab(int tab);
  void ChangeTab();
  void TakePage();
  void AddChannel();
  void RemoveChannel();
  void Accept();
  void Complain(const std::string& text, int control);

  Workbench& mWorkbench;
  NConfiguration::Document mDocument;
  HWND mWindow = nullptr;
  int mChannel = -1;  // that is shown
  int mTab = 0;       // 0: the own page, then those of the module
  std::vector<NRuntime::ComPtr<NSdk::IPage>> mPages;
  NRuntime::ComPtr<PageSite> mSite;
  NRuntime::ComPtr<Timing> mTiming;
};

}  // namespace NWorkbench
