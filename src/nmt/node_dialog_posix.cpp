#include "nmt/node_dialog.h"

namespace NNmt {

void ShowNodeDialog(ZNMTTransmitter&, std::uint8_t) {}

}  // namespace NNmt
