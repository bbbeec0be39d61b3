#pragma once
// The CANopen nodes that the CAN databases of a channel describe, with the objects of their device
// descriptions.

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "sdk/com_base.h"

namespace NSdo {

/// An object without sub-objects, or a sub-object.
struct NodeObject {
  std::uint16_t index = 0;
  std::uint8_t subindex = 0;
  std::uint32_t size = 0;  ///< bytes of a value; 0 where its length varies
  bool variableLength = false;
  bool writable = false;
  std::wstring label;  ///< "(ReadWrite) Producer heartbeat time"
  std::wstring value;  ///< as the description gives it; may be empty
};

struct Tpdo {
  std::uint32_t cobId = 0;
  std::uint32_t number = 0;  ///< from 0
};

struct DatabaseNode {
  std::wstring name;
  std::uint32_t nodeId = 0;
  std::filesystem::path description;  ///< empty: the database names none, or it is not there
  std::vector<NodeObject> objects;    ///< from 1000h on; empty when the description cannot be loaded
  std::vector<Tpdo> tpdos;
};

/// Lists the nodes of the databases that are assigned to a CAN channel, in their order. A channel without
/// databases, and a host without the library for them, has none. Failures are those of the library, when a
/// database cannot be opened; the list is then left as it is.
HRESULT BuildDatabaseNodeList(std::uint32_t channel, std::vector<DatabaseNode>& nodes);

/// Where a description is that a database names: a file name alone lies beside the database; anything else is
/// relative to the database's folder, or absolute.
std::filesystem::path ResolveDescription(const std::filesystem::path& folder, const std::wstring& value);

}  // namespace NSdo
