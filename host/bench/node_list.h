#pragma once
// The database node list as the module tells it, in the host's own types. Texts are UTF-8 and as the files
// have them: nothing to put on a screen.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/bench/host.h"

namespace NBench {

struct ListedChannel {
  std::uint32_t number = 0;
  std::string name;                    ///< as the module shows it: "CAN 1 (CANopen)"
  std::vector<std::string> protocols;  ///< "CANopen", "J1939", ...
};

struct ListedObject {
  std::uint16_t index = 0;
  std::uint8_t subindex = 0;
  std::uint32_t size = 0;  ///< bytes; 0 where its length varies
  bool variableLength = false;
  bool writable = false;
  std::string label, value;
};

struct ListedTpdo {
  std::uint32_t cobId = 0;
  std::uint32_t number = 0;  ///< from 0
};

struct ListedNode {
  std::uint32_t channel = 0;
  std::uint32_t id = 0;
  std::string name;
  std::optional<std::string> description;  ///< path of the file, where there is one
  std::vector<ListedObject> objects;
  std::vector<ListedTpdo> tpdos;
};

struct NodeList {
  std::vector<ListedChannel> channels;
  std::vector<ListedNode> nodes;
};

/// Asks the module. Throws std::runtime_error, one line, when it cannot tell.
NodeList ReadNodeList(Host& host);

/// What is wrong with the databases of the host and with the descriptions that the list names, FILE:LINE and
/// what was assumed, one line each. Throws std::runtime_error, one line, for a database that cannot be
/// opened.
std::vector<std::string> FindFaults(Host& host, const NodeList& list);

}  // namespace NBench
