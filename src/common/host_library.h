#pragma once
// Files around the module: its own, the host's program, and libraries beside that which may be missing. One
// implementation per platform.

#include <filesystem>

namespace NCommon {

/// The module's own file.
std::filesystem::path ModuleFile();
/// The program that has loaded it.
std::filesystem::path HostProgram();

/// "dll" or "so".
extern const wchar_t kLibraryExtension[];

/// A library beside the host's program, loaded for as long as this object lives.
class HostLibrary {
 public:
  /// `name` without extension. A library that is not there, or cannot be loaded, leaves the object empty.
  explicit HostLibrary(const std::wstring& name);
  ~HostLibrary();
  HostLibrary(const HostLibrary&) = delete;
  HostLibrary& operator=(const HostLibrary&) = delete;

  explicit operator bool() const { return mHandle != nullptr; }
  /// Where it was looked for.
  const std::filesystem::path& File() const { return mFile; }

  /// Null: the library is empty or does not export the name.
  template <class Function>
  Function Find(const char* name) const {
    return mHandle ? reinterpret_cast<Function>(FindAddress(name)) : nullptr;
  }

 private:
  using Address = void (*)();
  Address FindAddress(const char* name) const;

  std::filesystem::path mFile;
  void* mHandle = nullptr;
};

}  // namespace NCommon
