#include <windows.h>

#include <commdlg.h>

#include "host/runtime/text.h"
#include "host/workbench/texts.h"
#include "host/workbench/win/command_ids.h"
#include "host/workbench/win/main_window.h"

namespace NWorkbench {
namespace {

constexpr int kGap = -1;

struct Entry {
  int id = kGap;
  TextId text = TextId::AppName;
};

constexpr Entry kFile[] = {{kFileNew, TextId::FileNew},
                           {kFileOpen, TextId::FileOpen},
                           {kFileSave, TextId::FileSave},
                           {kFileSaveAs, TextId::FileSaveAs}};
constexpr Entry kMeasurement[] = {{kMeasureStart, TextId::MeasureStart}, {kMeasureStop, TextId::MeasureStop}};
constexpr Entry kOptions[] = {
    {kOptionsChannels, TextId::OptionsChannels},     {}, {kOptionsHexadecimal, TextId::OptionsHexadecimal},
    {kOptionsLargeIcons, TextId::OptionsLargeIcons}, {}, {kOptionsHalvard, TextId::OptionsHalvard},
    {kOptionsTesmond, TextId::OptionsTesmond},       {}, {kOptionsEnglish, TextId::OptionsEnglish},
    {kOptionsGerman, TextId::OptionsGerman}};
constexpr Entry kWindow[] = {{kWindowSetup, TextId::WindowSetup},       {kWindowTrace, TextId::WindowTrace},
                             {kWindowMessages, TextId::WindowMessages}, {},
                             {kWindowCascade, TextId::WindowCascade},   {kWindowTile, TextId::WindowTile}};
constexpr Entry kHelp[] = {{kHelpAbout, TextId::HelpAbout}};

template <std::size_t Size>
HMENU MakeMenu(const Entry (&entries)[Size]) {
  const HMENU menu = CreatePopupMenu();
  for (const Entry& entry : entries) {
    if (entry.id == kGap) {
      AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
    } else {
      AppendMenuW(menu, MF_STRING, static_cast<UINT_PTR>(entry.id), Text(entry.text));
    }
  }
  return menu;
}

HMENU AddTo(HMENU bar, const std::wstring& title, HMENU menu) {
  AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(menu), title.c_str());
  return menu;
}

HMENU MakeRecentMenu(const RecentFiles& recent) {
  const HMENU menu = CreatePopupMenu();
  int position = 0;
  for (const auto& file : recent.Files()) {
    std::wstring name = NRuntime::WidePathText(file);
    for (std::size_t place = 0; (place = name.find(L'&', place)) != std::wstring::npos; place += 2) {
      name.insert(place, 1, L'&');
    }
    const std::wstring text = L"&" + std::to_wstring((position + 1) % 10) + L"  " + name;
    AppendMenuW(menu, MF_STRING, static_cast<UINT_PTR>(kFirstRecent + position++), text.c_str());
  }
  if (position == 0) AppendMenuW(menu, MF_STRING | MF_GRAYED, kFirstRecent, Text(TextId::FileNoRecent));
  return menu;
}

}  // namespace

MainMenu MakeMainMenu(const Workbench& workbench, const RecentFiles& recent) {
  MainMenu menu;
  menu.bar = CreateMenu();
  const HMENU file = AddTo(menu.bar, Text(TextId::MenuFile), MakeMenu(kFile));
  menu.recent = AddTo(file, Text(TextId::FileRecent), MakeRecentMenu(recent));
  AppendMenuW(file, MF_SEPARATOR, 0, nullptr);
  AppendMenuW(file, MF_STRING, kFileExit, Text(TextId::FileExit));
  menu.insert = AddTo(menu.bar, Text(TextId::MenuInsert), CreatePopupMenu());
  AddTo(menu.bar, Text(TextId::MenuMeasurement), MakeMenu(kMeasurement));
  for (const auto& [name, group] : workbench.Application().Commands().Groups()) {
    menu.groups.emplace_back(name, AddTo(menu.bar, group.caption, CreatePopupMenu()));
  }
  AddTo(menu.bar, Text(TextId::MenuOptions), MakeMenu(kOptions));
  menu.window = AddTo(menu.bar, Text(TextId::MenuWindow), MakeMenu(kWindow));
  AddTo(menu.bar, Text(TextId::MenuHelp), MakeMenu(kHelp));
  return menu;
}

HACCEL MakeKeys() {
  constexpr BYTE kControl = FVIRTKEY | FCONTROL;
  ACCEL keys[] = {{kControl, 'N', kFileNew},         {kControl, 'O', kFileOpen},
                  {kControl, 'S', kFileSave},        {kControl | FSHIFT, 'S', kFileSaveAs},
                  {FVIRTKEY, VK_F9, kMeasureStart},  {FVIRTKEY, VK_ESCAPE, kMeasureStop},
                  {kControl, 'K', kOptionsChannels}, {kControl, 'H', kOptionsHexadecimal},
                  {kControl, '1', kWindowSetup},     {kControl, '2', kWindowTrace},
                  {kControl, '3', kWindowMessages}};
  return CreateAcceleratorTableW(keys, sizeof keys / sizeof *keys);
}

std::filesystem::path AskForFile(HWND owner, bool save, const std::filesystem::path& proposed) {
  std::wstring filter = Text(TextId::ConfigurationFiles);
  filter += std::wstring(L"\0*.json\0", 8) + Text(TextId::AllFiles) + std::wstring(L"\0*.*\0", 5);
  std::wstring path = proposed.wstring();
  path.resize(32768);
  OPENFILENAMEW question = {};
  question.lStructSize = sizeof question;
  question.hwndOwner = owner;
  question.lpstrFilter = filter.c_str();
  question.lpstrFile = path.data();
  question.nMaxFile = static_cast<DWORD>(path.size());
  question.lpstrDefExt = L"json";
  question.Flags = OFN_EXPLORER | OFN_NOCHANGEDIR | OFN_HIDEREADONLY |
                   (save ? OFN_OVERWRITEPROMPT | OFN_PATHMUSTEXIST : OFN_FILEMUSTEXIST);
  const BOOL chosen = save ? GetSaveFileNameW(&question) : GetOpenFileNameW(&question);
  return chosen ? std::filesystem::path(path.c_str()) : std::filesystem::path();
}

}  // namespace NWorkbench
