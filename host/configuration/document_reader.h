#pragma once

#include <vector>

#include "host/configuration/document.h"
#include "host/configuration/fault.h"
#include "host/configuration/json_tree.h"

namespace NConfiguration {

/// The document that a JSON object describes. Adds a fault for everything that is wrong with it.
Document ReadDocument(const JsonValue& root, std::vector<Fault>& faults);

}  // namespace NConfiguration
