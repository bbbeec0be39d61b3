#pragma once
// A library loaded at run time; one source file per platform.

#include <filesystem>
#include <memory>

namespace NRuntime {

/// ".so" or ".dll"
extern const char* const kSharedLibrarySuffix;

class SharedLibrary {
 public:
  /// Throws std::runtime_error with the platform's reason (one line, without the path) when the file cannot
  /// be loaded. The path must be absolute, otherwise the platform would search for it.
  explicit SharedLibrary(const std::filesystem::path& path);
  ~SharedLibrary();
  SharedLibrary(const SharedLibrary&) = delete;
  SharedLibrary& operator=(const SharedLibrary&) = delete;

  /// Null when the library does not export the name.
  template <class Function>
  Function Find(const char* name) const {
    return reinterpret_cast<Function>(FindAddress(name));
  }

  /// Leaves the library loaded until the program ends.
  void Keep() { mHandle = nullptr; }

 private:
  using Address = void (*)();
  Address FindAddress(const char* name) const;

  void* mHandle = nullptr;
};

}  // namespace NRuntime
