#include "ig/settings_dialog.h"

namespace NIg {

HRESULT EditSettings(void*, GeneratorNumbers&) { return E_NOTIMPL; }

}  // namespace NIg
