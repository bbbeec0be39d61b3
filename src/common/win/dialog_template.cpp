#include "common/win/dialog_template.h"

#include <cstring>

#include "common/win/dpi.h"
#include "common/win/resources.h"

namespace NCommon {
namespace {

// The head of an extended template, as the system documents it: version and signature 1, FFFF (hexadecimal),
// help identifier, extended style, style, number of controls, position and size; menu, class and title, each
// a text or FFFF and a number; with DS_SETFONT the font: points, weight, italic, character set, face.
// Controls begin at a multiple of four bytes.
constexpr std::size_t kSignatureOffset = 2;
constexpr std::size_t kStyleOffset = 12;
constexpr std::size_t kNamesOffset = 26;
constexpr std::size_t kFaceInFont = 6;
constexpr std::size_t kAlignment = 4;

template <class Value>
Value ValueAt(std::span<const std::byte> bytes, std::size_t offset) {
  Value value{};
  if (offset + sizeof(value) <= bytes.size()) std::memcpy(&value, bytes.data() + offset, sizeof(value));
  return value;
}

// Behind the text, or number, at an offset; or the end.
std::size_t SkipName(std::span<const std::byte> bytes, std::size_t offset) {
  constexpr WORD kNumberFollows = 0xFFFF;
  if (ValueAt<WORD>(bytes, offset) == kNumberFollows) return offset + 2 * sizeof(WORD);
  while (offset < bytes.size() && ValueAt<WORD>(bytes, offset) != 0) offset += sizeof(WORD);
  return offset + sizeof(WORD);
}

std::size_t Aligned(std::size_t offset) { return (offset + kAlignment - 1) / kAlignment * kAlignment; }

template <class Value>
void Append(std::vector<std::byte>& bytes, const Value& value) {
  const auto* begin = reinterpret_cast<const std::byte*>(&value);
  bytes.insert(bytes.end(), begin, begin + sizeof(value));
}

struct Font {
  std::wstring face;
  int points = 0;
};

Font MessageFont() {
  NONCLIENTMETRICSW metrics = {};
  metrics.cbSize = sizeof(metrics);
  SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof(metrics), &metrics, 0);
  const LOGFONTW& font = metrics.lfMessageFont;
  return {font.lfFaceName, MulDiv(font.lfHeight < 0 ? -font.lfHeight : font.lfHeight, 72, DpiOf(nullptr))};
}

}  // namespace

std::vector<std::byte> WithFont(std::span<const std::byte> resource, const std::wstring& face, int points) {
  constexpr WORD kExtended = 0xFFFF;
  const bool fits = ValueAt<WORD>(resource, kSignatureOffset) == kExtended &&
                    (ValueAt<DWORD>(resource, kStyleOffset) & DS_SETFONT) != 0;
  std::size_t font = kNamesOffset;
  for (int name = 0; name < 3; ++name) font = SkipName(resource, font);  // menu, class, title
  const std::size_t controls = Aligned(SkipName(resource, font + kFaceInFont));
  if (!fits || controls > resource.size()) return {};

  std::vector<std::byte> changed(resource.begin(), resource.begin() + static_cast<std::ptrdiff_t>(font));
  Append(changed, static_cast<WORD>(points));
  Append(changed, static_cast<WORD>(FW_NORMAL));
  Append(changed, BYTE{0});  // not italic
  Append(changed, BYTE{DEFAULT_CHARSET});
  for (const wchar_t character : face) Append(changed, character);
  Append(changed, L'\0');
  changed.resize(Aligned(changed.size()));
  changed.insert(changed.end(), resource.begin() + static_cast<std::ptrdiff_t>(controls), resource.end());
  return changed;
}

std::vector<std::byte> LoadDialogTemplate(int id) {
  const HINSTANCE library = LibraryOf(RT_DIALOG, id);
  const HRSRC found = FindResourceW(library, MAKEINTRESOURCEW(id), RT_DIALOG);
  const HGLOBAL loaded = found ? LoadResource(library, found) : nullptr;
  const auto* data = loaded ? static_cast<const std::byte*>(LockResource(loaded)) : nullptr;
  if (!data) return {};
  const std::span<const std::byte> resource(data, SizeofResource(library, found));
  const Font font = MessageFont();
  std::vector<std::byte> changed = WithFont(resource, font.face, font.points);
  if (changed.empty()) changed.assign(resource.begin(), resource.end());
  return changed;
}

}  // namespace NCommon
