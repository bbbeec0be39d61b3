#include "host/runtime/persistence.h"

#include <algorithm>

namespace NRuntime {

void Settings::Set(std::wstring key, std::wstring value) {
  const auto same = [&](const Entry& entry) { return entry.first == key; };
  const auto found = std::find_if(mEntries.begin(), mEntries.end(), same);
  if (found == mEntries.end()) {
    mEntries.emplace_back(std::move(key), std::move(value));
  } else {
    found->second = std::move(value);
  }
}

const std::wstring* Settings::Find(const std::wstring& key) const {
  for (const Entry& entry : mEntries) {
    if (entry.first == key) return &entry.second;
  }
  return nullptr;
}

HRESULT SettingsReader::ReadText(const wchar_t* key, wchar_t** value) {
  if (!key || !value) return E_POINTER;
  const std::wstring* text = mSettings.Find(key);
  return text ? HandOutText(*text, value) : E_FAIL;
}

HRESULT SettingsWriter::WriteText(const wchar_t* key, const wchar_t* value) {
  if (!key || !value) return E_POINTER;
  mSettings.Set(key, value);
  return S_OK;
}

}  // namespace NRuntime
