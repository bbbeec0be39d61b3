#include <windows.h>

#include <vector>

#include "common/host_library.h"
#include "plugin/version.h"

namespace NPlugin {
namespace {

constexpr wchar_t kTexts[] = L"\\StringFileInfo\\040904B0\\";

std::wstring Text(const std::vector<std::byte>& resource, const wchar_t* name) {
  void* text = nullptr;
  UINT size = 0;  // characters, the end mark among them
  const std::wstring path = std::wstring(kTexts) + name;
  if (!VerQueryValueW(resource.data(), path.c_str(), &text, &size) || size == 0) return {};
  return static_cast<const wchar_t*>(text);
}

}  // namespace

Version ReadVersion() {
  const std::wstring file = NCommon::ModuleFile().wstring();
  const DWORD size = GetFileVersionInfoSizeW(file.c_str(), nullptr);
  std::vector<std::byte> resource(size);
  void* fixed = nullptr;
  UINT fixedSize = 0;
  if (size == 0 || !GetFileVersionInfoW(file.c_str(), 0, size, resource.data()) ||
      !VerQueryValueW(resource.data(), L"\\", &fixed, &fixedSize) || fixedSize < sizeof(VS_FIXEDFILEINFO)) {
    return {};
  }
  const auto* info = static_cast<const VS_FIXEDFILEINFO*>(fixed);
  return {HIWORD(info->dwFileVersionMS), LOWORD(info->dwFileVersionMS), HIWORD(info->dwFileVersionLS),
          Text(resource, L"ProductName"), Text(resource, L"FileDescription")};
}

}  // namespace NPlugin
