#pragma once

#include "host/runtime/com.h"
#include "sdk/description_loader.h"

namespace NDescriptions {

NRuntime::ComPtr<CODESCRLDR::ZCODescrLdr> MakeLoader();

}  // namespace NDescriptions
