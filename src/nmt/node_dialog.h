#pragma once

#include <cstdint>

#include "nmt/transmitter.h"

namespace NNmt {

/// The module's own dialog in which the user picks nodes and sends them NMT commands; `command` is the one
/// that the enter key sends. Returns when the dialog is closed; nothing happens where there are no windows.
void ShowNodeDialog(ZNMTTransmitter& transmitter, std::uint8_t command);

}  // namespace NNmt
