#pragma once

#include "host/runtime/com.h"
#include "sdk/database_library.h"

namespace NDatabases {

NRuntime::ComPtr<NSdk::IDatabaseManager> MakeManager();

}  // namespace NDatabases
