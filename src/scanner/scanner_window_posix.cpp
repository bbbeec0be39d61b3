#include "scanner/scanner_window.h"

namespace NScanner {

NCom::ComPtr<ScannerWindow> MakeScannerWindow() { return nullptr; }

}  // namespace NScanner
