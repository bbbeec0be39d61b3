#pragma once

#include "com/com_ptr.h"
#include "sdk/pages.h"

namespace NPlugin {

/// The page of the channel settings for the bit rate. Empty: the module has no windows here.
NCom::ComPtr<NSdk::IPage> MakeBaudratePage();

}  // namespace NPlugin
