#pragma once

#include <filesystem>
#include <string>

#include "host/devices/object_dictionary.h"
#include "sdk/description_loader.h"

namespace NDevices {

/// The objects of a loaded description from 1000h on, as a device has them at power-on: with the values that
/// it sets, else zero or empty. Formulas whose node-ID is not known count as zero.
ObjectDictionary DescribedObjects(CODESCRLDR::ZCODescrLdr& loader);

/// Loads an EDS or DCF file, a path in UTF-8, for a device with this node-ID by the loader in the folder of
/// the host's libraries. Throws std::runtime_error, one line that names the file and what is wrong with it.
ObjectDictionary LoadDescribedObjects(const std::filesystem::path& libraries, const std::string& file,
                                      std::uint8_t nodeId);

}  // namespace NDevices
