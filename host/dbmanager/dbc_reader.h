#pragma once

#include <string_view>

#include "host/dbmanager/dbc_model.h"

namespace NDatabases {

/// Reads the text of a DBC file, UTF-8. Sections may stand in any order; those that hosts have no use for are
/// skipped, and a broken one is left out with an error.
Database ReadDbc(std::string_view text);

}  // namespace NDatabases
