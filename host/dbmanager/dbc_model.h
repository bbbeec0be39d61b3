#pragma once
// What a DBC file says.

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "sdk/database_library.h"

namespace NDatabases {

enum class ObjectKind { Network, Node, Message, Signal, Environment };

struct AttributeValue {
  double number = 0;
  std::string text;
  bool hasNumber = false;
  bool hasText = false;
};

using AttributeValues = std::map<std::string, AttributeValue, std::less<>>;

struct Node {
  std::string name, comment;
  AttributeValues attributes;
};

struct Signal {
  std::string name, comment, unit, multiplexing;
  NSdk::CanSignalLayout layout;
  AttributeValues attributes;
};

struct Message {
  std::string name, comment, sender;
  std::uint32_t identifier = 0;
  bool extended = false;
  std::uint32_t size = 0;
  std::vector<Signal> signalList;
  AttributeValues attributes;
};

struct DbcError {
  std::uint32_t line = 0;
  std::string text;  ///< what was expected, without file and line
};

struct Database {
  std::string comment;
  std::vector<Node> nodes;
  std::vector<Message> messages;
  AttributeValues attributes;  ///< of the network
  std::map<ObjectKind, AttributeValues> defaults;
  std::vector<DbcError> errors;
  bool isRecognised = false;  ///< something in it is of a DBC file

  /// Null: no such attribute.
  const AttributeValue* Find(ObjectKind kind, const AttributeValues& own, std::string_view name) const;
};

}  // namespace NDatabases
