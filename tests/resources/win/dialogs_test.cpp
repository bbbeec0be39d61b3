// What must hold for every dialog, menu and image in every language, for those written later too.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "com/module_scope.h"
#include "dialogs_of_library.h"
#include "resources/resource_ids.h"

namespace NResourcesTest {
namespace {

using testing::IsSupersetOf;

struct Language {
  std::string name;
  std::vector<Dialog> dialogs;
  std::vector<Menu> menus;
};

Language LanguageIn(HMODULE library, const char* name) {
  return {name, DialogsOf(library), MenusOf(library)};
}

/// The module's own language first.
const std::vector<Language>& AllLanguages() {
  static const std::vector<Language> languages = [] {
    SetProcessDPIAware();  // dialogs as large as the display asks for
    NCom::SetModuleHandle(GetModuleHandleW(nullptr));
    std::vector<Language> made{LanguageIn(GetModuleHandleW(nullptr), "own")};
    for (const char* file : {OSTREL_LANGUAGE_LIBRARIES}) {
      const HMODULE library = LoadLibraryExA(file, nullptr, LOAD_LIBRARY_AS_DATAFILE);
      EXPECT_TRUE(library) << file;
      made.push_back(LanguageIn(library, file));
    }
    return made;
  }();
  return languages;
}

template <typename Check>
void ForEveryDialog(Check check) {
  for (const auto& language : AllLanguages()) {
    for (const auto& dialog : language.dialogs) {
      SCOPED_TRACE(language.name + ", dialog " + std::to_string(dialog.id));
      check(dialog);
    }
  }
}

bool IsButton(const Control& control, DWORD type) {
  return control.windowClass == L"Button" && (control.style & BS_TYPEMASK) == type;
}
bool IsGroupBox(const Control& control) { return IsButton(control, BS_GROUPBOX); }
bool HasLabel(const Control& control) {
  return (control.windowClass == L"Button" || control.windowClass == L"Static") && !control.text.empty();
}

/// The letter after a single '&', in lower case; 0: none.
wchar_t MnemonicOf(const std::wstring& text) {
  for (std::size_t at = 0; at + 1 < text.size(); ++at) {
    if (text[at] != L'&') continue;
    if (text[at + 1] != L'&') return static_cast<wchar_t>(towlower(text[at + 1]));
    ++at;
  }
  return 0;
}

void ExpectNoClash(const std::vector<std::wstring>& texts) {
  std::map<wchar_t, std::wstring> taken;
  for (const auto& text : texts) {
    const wchar_t letter = MnemonicOf(text);
    if (letter == 0) continue;
    const auto [place, isNew] = taken.emplace(letter, text);
    EXPECT_TRUE(isNew) << testing::PrintToString(text) << " and " << testing::PrintToString(place->second);
  }
}

void ExpectNoClashInMenu(const std::vector<MenuItem>& items) {
  std::vector<std::wstring> texts;
  for (const auto& item : items) {
    texts.push_back(item.text);
    ExpectNoClashInMenu(item.items);
  }
  ExpectNoClash(texts);
}

void ExpectSameItems(const std::vector<MenuItem>& own, const std::vector<MenuItem>& translated) {
  ASSERT_EQ(own.size(), translated.size());
  for (std::size_t at = 0; at < own.size(); ++at) {
    EXPECT_EQ(own[at].id, translated[at].id);
    EXPECT_EQ(own[at].text.empty(), translated[at].text.empty());
    EXPECT_EQ(own[at].text.find(L'\t') == std::wstring::npos,
              translated[at].text.find(L'\t') == std::wstring::npos);
    ExpectSameItems(own[at].items, translated[at].items);
  }
}

TEST(Dialogs, AreTheSameInEveryLanguage) {
  const auto& own = AllLanguages().front();
  for (const auto& language : AllLanguages()) {
    ASSERT_EQ(own.dialogs.size(), language.dialogs.size());
    for (std::size_t at = 0; at < own.dialogs.size(); ++at) {
      SCOPED_TRACE(language.name + ", dialog " + std::to_string(own.dialogs[at].id));
      EXPECT_EQ(own.dialogs[at].id, language.dialogs[at].id);
      EXPECT_EQ(own.dialogs[at].title.empty(), language.dialogs[at].title.empty());
      const auto &controls = own.dialogs[at].controls, &translated = language.dialogs[at].controls;
      ASSERT_EQ(controls.size(), translated.size());
      for (std::size_t i = 0; i < controls.size(); ++i) {
        EXPECT_EQ(controls[i].id, translated[i].id);
        EXPECT_EQ(controls[i].windowClass, translated[i].windowClass);
        EXPECT_EQ(controls[i].text.empty(), translated[i].text.empty()) << controls[i].id;
      }
    }
  }
}

TEST(Menus, AreTheSameInEveryLanguage) {
  const auto& own = AllLanguages().front();
  for (const auto& language : AllLanguages()) {
    ASSERT_EQ(own.menus.size(), language.menus.size());
    for (std::size_t at = 0; at < own.menus.size(); ++at) {
      SCOPED_TRACE(language.name + ", menu " + std::to_string(own.menus[at].id));
      EXPECT_EQ(own.menus[at].id, language.menus[at].id);
      ExpectSameItems(own.menus[at].items, language.menus[at].items);
    }
  }
}

TEST(Dialogs, AndMenusHaveNoMnemonicTwice) {
  ForEveryDialog([](const Dialog& dialog) {
    std::vector<std::wstring> texts;
    for (const auto& control : dialog.controls) {
      if (HasLabel(control)) texts.push_back(control.text);
    }
    ExpectNoClash(texts);
  });
  for (const auto& language : AllLanguages()) {
    for (const auto& menu : language.menus) {
      SCOPED_TRACE(language.name + ", menu " + std::to_string(menu.id));
      ExpectNoClashInMenu(menu.items);
    }
  }
}

SIZE TextSize(HWND window, HFONT font, const std::wstring& text, int width) {
  const HDC context = GetDC(window);
  const HGDIOBJ old = SelectObject(context, font);
  RECT place{0, 0, width, 0};
  DrawTextW(context, text.c_str(), -1, &place, DT_CALCRECT | DT_EXPANDTABS | (width > 0 ? DT_WORDBREAK : 0));
  SelectObject(context, old);
  ReleaseDC(window, context);
  return {place.right, place.bottom};
}

/// Pixels beside its text that a control needs: edges of a button, the box or ring before the text.
int WidthBesideText(const Control& control) {
  if (control.windowClass == L"Static") return 0;
  if (IsGroupBox(control)) return 18;
  const bool pushed = IsButton(control, BS_PUSHBUTTON) || IsButton(control, BS_DEFPUSHBUTTON);
  return pushed ? 10 : GetSystemMetrics(SM_CXMENUCHECK) + 5;
}

/// Fonts are not equally wide everywhere: a twentieth stays free.
bool Fits(const Dialog& dialog, const Control& control) {
  const int width = (control.place.right - control.place.left - WidthBesideText(control)) * 20 / 21;
  const bool wraps = control.windowClass == L"Static";
  const SIZE size = TextSize(dialog.Handle(), dialog.Font(), control.text, wraps ? width : 0);
  return size.cx <= width && (IsGroupBox(control) || size.cy <= control.place.bottom - control.place.top);
}

TEST(Dialogs, CutNoText) {
  ForEveryDialog([](const Dialog& dialog) {
    for (const auto& control : dialog.controls) {
      EXPECT_TRUE(!HasLabel(control) || Fits(dialog, control)) << testing::PrintToString(control.text);
    }
    if ((GetWindowLongW(dialog.Handle(), GWL_STYLE) & WS_CAPTION) != WS_CAPTION) return;
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, metrics.cbSize, &metrics, 0);
    const HFONT font = CreateFontIndirectW(&metrics.lfCaptionFont);
    EXPECT_LE(TextSize(dialog.Handle(), font, dialog.title, 0).cx,
              dialog.size.cx - 3 * metrics.iCaptionWidth);
    DeleteObject(font);
  });
}

TEST(Dialogs, KeepTheirControlsInsideAndApart) {
  ForEveryDialog([](const Dialog& dialog) {
    const RECT client{0, 0, dialog.size.cx, dialog.size.cy};
    for (const auto& control : dialog.controls) {
      RECT common;
      UnionRect(&common, &client, &control.place);
      EXPECT_TRUE(EqualRect(&common, &client)) << control.id << testing::PrintToString(control.text);
      for (const auto& other : dialog.controls) {
        if (other.window == control.window || IsGroupBox(control) || IsGroupBox(other)) continue;
        EXPECT_FALSE(IntersectRect(&common, &control.place, &other.place))
            << control.id << testing::PrintToString(control.text) << " and " << other.id
            << testing::PrintToString(other.text);
      }
    }
  });
}

/// From row to row and within a row to the right, or on to a column further right.
bool IsReadingOrder(const RECT& first, const RECT& second) {
  return second.left >= first.right || second.top >= first.bottom;
}

TEST(Dialogs, AreWalkedThroughAsTheyAreRead) {
  ForEveryDialog([](const Dialog& dialog) {
    const Control* previous = nullptr;
    for (const auto& control : dialog.controls) {
      if (IsGroupBox(control)) continue;
      EXPECT_TRUE(!previous || IsReadingOrder(previous->place, control.place))
          << previous->id << ", " << control.id;
      previous = &control;
    }
  });
}

TEST(Dialogs, HaveTheNumbersThatHostsAndCodeKnow) {
  std::vector<int> dialogs, menus;
  for (const auto& dialog : AllLanguages().front().dialogs) dialogs.push_back(dialog.id);
  for (const auto& menu : AllLanguages().front().menus) menus.push_back(menu.id);
  EXPECT_THAT(dialogs,
              IsSupersetOf({101, 115, 213, 240, 241, 245, 717, 754, 755, 756, 757, 758, 761, 15004}));
  EXPECT_THAT(menus, IsSupersetOf({798, 811}));
  const std::map<int, std::set<int>> controls{
      {101, {234, 235, 236, 237, 238, 239, 240, 241, 242, 243}},
      {115, {774, 775, 776, 777, 778, 779, 780, 781, 782, 783, 836}},
      {213, {232}},
  };
  for (const auto& dialog : AllLanguages().front().dialogs) {
    const auto expected = controls.find(dialog.id);
    if (expected == controls.end()) continue;
    std::set<int> found;
    for (const auto& control : dialog.controls) found.insert(control.id);
    EXPECT_THAT(found, IsSupersetOf(expected->second)) << dialog.id;
  }
}

}  // namespace
}  // namespace NResourcesTest
