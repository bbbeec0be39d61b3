#pragma once
// Objects out of the libraries of the host, which lie beside its programs and are loaded when first wanted.

#include <filesystem>

#include "host/runtime/com.h"
#include "sdk/database_library.h"
#include "sdk/description_loader.h"

namespace NRuntime {

/// Makes an object of the library that lies in `folder`; it stays loaded until the program ends. Throws
/// std::runtime_error, one line that names the library and what is wrong with it.
ComPtr<NSdk::IDatabaseManager> MakeDatabaseManager(const std::filesystem::path& folder);
ComPtr<CODESCRLDR::ZCODescrLdr> MakeDescriptionLoader(const std::filesystem::path& folder);

}  // namespace NRuntime
