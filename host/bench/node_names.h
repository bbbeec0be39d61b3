#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <utility>

namespace NBench {

/// Names of nodes in UTF-8 by CAN channel and node-ID.
using NodeNames = std::map<std::pair<std::uint32_t, std::uint32_t>, std::string>;

/// The CANopen nodes of a CAN database, those with an attribute CO_ID, on a channel. Throws
/// std::runtime_error, one line that names the file and what is wrong with it.
NodeNames ReadNodeNames(const std::filesystem::path& database, std::uint32_t channel);

}  // namespace NBench
