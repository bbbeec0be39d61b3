#pragma once

#include "host/devices/object_dictionary.h"

namespace NDevices {

/// What CiA 301, 7.5.2, demands of a value for a communication object beyond its type and limits. `value` has
/// the size of the entry at `address`. None: it may be stored.
AbortCode CheckCommunicationRules(const ObjectDictionary& objects, ObjectAddress address, BytesView value);

/// Is there something to read in a communication object just now?
AbortCode CheckAvailable(const ObjectDictionary& objects, ObjectAddress address);

}  // namespace NDevices
