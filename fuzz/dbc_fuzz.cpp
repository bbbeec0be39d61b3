// Any bytes as a DBC file: they are read to the end, and what comes out holds together.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "host/dbmanager/dbc_reader.h"
#include "host/runtime/file_text.h"

namespace {

using namespace NDatabases;

void Require(bool condition) {
  if (!condition) std::abort();
}

void CheckMessages(const Database& database) {
  for (const Message& message : database.messages) {
    Require(!message.name.empty() && message.identifier <= (message.extended ? 0x1FFFFFFFu : 0x7FFu));
    for (const Signal& signal : message.signalList) Require(!signal.name.empty());
  }
}

void CheckAttributes(const Database& database) {
  for (const Node& node : database.nodes) {
    for (const auto& [name, value] : node.attributes) {
      Require(value.hasNumber || value.hasText);
      Require(database.Find(ObjectKind::Node, node.attributes, name) == &value);
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = NRuntime::DecodeText(std::string(data, data + size));
  const Database database = ReadDbc(text);
  const auto lines = static_cast<std::uint32_t>(std::count(text.begin(), text.end(), '\n')) + 1;
  for (const DbcError& error : database.errors) {
    Require(error.line >= 1 && error.line <= lines);
    Require(!error.text.empty());
  }
  CheckMessages(database);
  CheckAttributes(database);
  return 0;
}
