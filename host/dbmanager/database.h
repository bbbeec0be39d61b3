#pragma once

#include <filesystem>

#include "host/dbmanager/dbc_model.h"
#include "host/runtime/com.h"
#include "sdk/database_library.h"

namespace NDatabases {

/// A database as hosts see it; `path` is named in its errors.
NRuntime::ComPtr<NSdk::ICanDatabase> MakeDatabase(const std::filesystem::path& path, Database content);

}  // namespace NDatabases
