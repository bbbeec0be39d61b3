#pragma once

#include "scanner/model.h"
#include "sdk/can_message.h"
#include "sdk/sdo_observation.h"

namespace NScanner {

/// Brings the table up to date with a frame seen on the bus; SDO frames go to the manager as well, which may
/// be null. Identifiers count as they are, 29-bit ones too. E_FAIL, nothing changed: a remote frame, or one
/// whose fields cannot be read.
HRESULT DispatchFrame(ZCANopenModel& model, NSdk::ICANopenSDManager* manager, NSdk::ICANMessage& message);

}  // namespace NScanner
