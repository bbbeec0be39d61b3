// What the generator asks the user about sequence files.

#include <windows.h>

#include <commdlg.h>

#include <array>

#include "common/win/file_filter.h"
#include "ig/generator_view.h"
#include "resources/resource_ids.h"
#include "resources/text.h"

namespace NIg {
namespace {

HWND OwnerOf(void* parentWindow) {
  return parentWindow ? GetAncestor(static_cast<HWND>(parentWindow), GA_ROOT) : GetActiveWindow();
}

}  // namespace

UnsavedAnswer AskAboutUnsaved(void* parentWindow, const std::wstring& question) {
  const std::wstring title = NResources::LoadText(IDS_IG_BLOCK_NAME);
  switch (
      MessageBoxW(OwnerOf(parentWindow), question.c_str(), title.c_str(), MB_YESNOCANCEL | MB_ICONQUESTION)) {
    case IDYES:
      return UnsavedAnswer::Save;
    case IDNO:
      return UnsavedAnswer::Discard;
    default:
      return UnsavedAnswer::Cancel;
  }
}

std::wstring ChooseSequenceFile(void* parentWindow, bool saving, const std::wstring& proposed) {
  std::array<wchar_t, 32768> path = {};  // as long as the system allows
  proposed.copy(path.data(), path.size() - 1);
  const std::wstring filter = NCommon::FileFilter(NResources::LoadText(IDS_IG_FILE_FILTER));
  OPENFILENAMEW dialog = {};
  dialog.lStructSize = sizeof dialog;
  dialog.hwndOwner = OwnerOf(parentWindow);
  dialog.lpstrFilter = filter.c_str();
  dialog.lpstrFile = path.data();
  dialog.nMaxFile = static_cast<DWORD>(path.size());
  dialog.lpstrDefExt = L"seq";
  dialog.Flags = OFN_PATHMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
  dialog.Flags |= saving ? OFN_OVERWRITEPROMPT : OFN_FILEMUSTEXIST;
  const BOOL chosen = saving ? GetSaveFileNameW(&dialog) : GetOpenFileNameW(&dialog);
  return chosen ? std::wstring(path.data()) : std::wstring();
}

}  // namespace NIg
