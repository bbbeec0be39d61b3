#include "host/runtime/library_objects.h"

#include <stdexcept>
#include <string>

#include "host/runtime/shared_library.h"
#include "host/runtime/text.h"

namespace NRuntime {
namespace {

using MakeFunction = HRESULT(STDAPICALLTYPE*)(REFIID iid, void** object);

[[noreturn]] void Refuse(const std::filesystem::path& path, const std::string& reason) {
  throw std::runtime_error(PathText(path) + ": " + reason);
}

MakeFunction Load(const std::filesystem::path& path, const char* function) {
  std::error_code ignored;
  if (!std::filesystem::exists(path, ignored)) Refuse(path, "no such library; it belongs beside the program");
  try {
    SharedLibrary library(path);
    const auto found = library.Find<MakeFunction>(function);
    if (!found) throw std::runtime_error(std::string("it does not export ") + function);
    library.Keep();
    return found;
  } catch (const std::runtime_error& error) {
    Refuse(path, std::string("not the library that is wanted: ") + error.what());
  }
}

template <class Interface>
ComPtr<Interface> MakeObject(const std::filesystem::path& folder, const char* name, const char* function) {
  const std::filesystem::path path =
      std::filesystem::absolute(folder / (std::string(name) + kSharedLibrarySuffix));
  void* made = nullptr;
  if (FAILED(Load(path, function)(NSdk::IidOf<Interface>(), &made)) || !made) {
    Refuse(path, "it makes no object with the interface that is wanted");
  }
  return ComPtr<Interface>::Own(static_cast<Interface*>(made));
}

}  // namespace

ComPtr<NSdk::IDatabaseManager> MakeDatabaseManager(const std::filesystem::path& folder) {
  return MakeObject<NSdk::IDatabaseManager>(folder, "dbmanager", "DllCreateDBManagerEx");
}

ComPtr<CODESCRLDR::ZCODescrLdr> MakeDescriptionLoader(const std::filesystem::path& folder) {
  return MakeObject<CODESCRLDR::ZCODescrLdr>(folder, "codescrldr", CODESCRLDR::kCreateLoaderName);
}

}  // namespace NRuntime
