#pragma once
// Settings of objects as text by key, between an object of the module and whatever keeps the configuration.

#include <string>
#include <utility>
#include <vector>

#include "host/runtime/com.h"
#include "sdk/persistence.h"

namespace NRuntime {

/// Text by key, in the order in which the keys came.
class Settings {
 public:
  using Entry = std::pair<std::wstring, std::wstring>;

  Settings() = default;
  Settings(std::initializer_list<Entry> entries) : mEntries(entries) {}

  /// Replaces an older value in its place.
  void Set(std::wstring key, std::wstring value);
  /// Null: no such key.
  const std::wstring* Find(const std::wstring& key) const;
  const std::vector<Entry>& Entries() const { return mEntries; }

 private:
  std::vector<Entry> mEntries;
};

/// An object reads its settings from here. It keeps a copy of its own.
class SettingsReader final : public Implements<NSdk::IPersistReader> {
 public:
  explicit SettingsReader(Settings settings) : mSettings(std::move(settings)) {}
  HRESULT STDMETHODCALLTYPE ReadText(const wchar_t* key, wchar_t** value) override;

 private:
  Settings mSettings;
};

/// An object writes its settings here.
class SettingsWriter final : public Implements<NSdk::IPersistWriter> {
 public:
  HRESULT STDMETHODCALLTYPE WriteText(const wchar_t* key, const wchar_t* value) override;
  const Settings& Written() const { return mSettings; }

 private:
  Settings mSettings;
};

}  // namespace NRuntime
