// The published schema and the reader know the same keys, and what is written holds to the schema.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <fstream>
#include <regex>

#include "host/configuration/document_text.h"
#include "tests/test_folder.h"

namespace {

using namespace NConfiguration;
using Json = nlohmann::ordered_json;

std::string Read(const std::string& name) { return NTest::ReadFile(OSTREL_SOURCE_DIR "/" + name); }

// As much of a validator as the schema needs.
class Schema {
 public:
  Schema() : mRoot(Json::parse(Read("docs/configuration.schema.json"))) {}

  const Json& At(const std::string& pointer) const { return mRoot.at(Json::json_pointer(pointer)); }

  bool Holds(const Json& value) const { return Holds(value, mRoot); }

 private:
  bool Holds(const Json& value, const Json& schema) const {
    for (const auto& [word, wanted] : schema.items()) {
      if (!Holds(value, word, wanted, schema)) return false;
    }
    return true;
  }

  bool Holds(const Json& value, const std::string& word, const Json& wanted, const Json& schema) const {
    const auto holds = [&](const Json& alternative) { return Holds(value, alternative); };
    if (word == "$ref") return Holds(value, At(wanted.get<std::string>().substr(1)));
    if (word == "anyOf") return std::any_of(wanted.begin(), wanted.end(), holds);
    if (word == "const") return value == wanted;
    if (word == "enum") return std::find(wanted.begin(), wanted.end(), value) != wanted.end();
    if (word == "minimum") return value >= wanted;
    if (word == "maximum") return value <= wanted;
    if (word == "pattern") {
      return value.is_string() &&
             std::regex_match(value.get<std::string>(), std::regex(wanted.get<std::string>()));
    }
    if (word == "type") return IsOfType(value, wanted);
    if (word == "items") {
      return std::all_of(value.begin(), value.end(), [&](const Json& entry) { return Holds(entry, wanted); });
    }
    if (word == "required") {
      return std::all_of(wanted.begin(), wanted.end(), [&](const Json& key) { return value.contains(key); });
    }
    return word != "additionalProperties" || KeysHold(value, schema);
  }

  bool KeysHold(const Json& value, const Json& schema) const {
    const Json others = schema["additionalProperties"];
    for (const auto& [key, member] : value.items()) {
      const bool known = schema.contains("properties") && schema["properties"].contains(key);
      if (!known && others == false) return false;
      if (!Holds(member, known ? schema["properties"][key] : others)) return false;
    }
    return true;
  }

  static bool IsOfType(const Json& value, const std::string& type) {
    if (type == "integer") return value.is_number_integer();
    return type == value.type_name();
  }

  const Json mRoot;
};

std::string KnownKeys(const Json& properties) {
  std::string keys;
  for (const auto& [key, ignored] : properties.items()) keys += (keys.empty() ? "" : ", ") + key;
  return "(known: " + keys + ")";
}

TEST(Schema, KnowsTheKeysThatTheReaderKnows) {
  const std::pair<const char*, const char*> objects[] = {
      {"", "/properties"},
      {"/channels/0", "/properties/channels/items/properties"},
      {"/channels/0/timing", "/properties/channels/items/properties/timing/properties"},
      {"/devices/1", "/properties/devices/items/properties"},
      {"/devices/1/faults", "/properties/devices/items/properties/faults/properties"},
      {"/blocks/0", "/properties/blocks/items/properties"},
      {"/blocks/0/window", "/$defs/window/properties"},
      {"/windows", "/properties/windows/properties"},
  };
  const Schema schema;
  for (const auto& [place, properties] : objects) {
    Json document = Json::parse(Read("examples/sdo-transfers.json"));
    document["blocks"][0]["window"] = {{"x", 0}, {"y", 0}, {"width", 1}, {"height", 1}};
    document["windows"] = {{"trace", document["blocks"][0]["window"]}};
    document.at(Json::json_pointer(place))["?"] = 1;
    EXPECT_FALSE(schema.Holds(document));
    const ParsedDocument parsed = ParseDocument(document.dump());
    ASSERT_EQ(parsed.faults.size(), 1u) << place;
    EXPECT_EQ(parsed.faults[0].text, "unknown key \"?\" " + KnownKeys(schema.At(properties)));
  }
}

TEST(Schema, HoldsForTheExampleAndWhateverIsWritten) {
  const Schema schema;
  const std::string example = Read("examples/sdo-transfers.json");
  EXPECT_TRUE(schema.Holds(Json::parse(example)));
  ParsedDocument parsed = ParseDocument(example);
  ASSERT_TRUE(parsed.faults.empty());
  EXPECT_EQ(DocumentText(parsed.document), example);  // it is written as the program would
  parsed.document.window = Window{-3, 0, 800, 600, false, true};
  parsed.document.blocks[0].window = parsed.document.window;
  parsed.document.windows = {{kMessagesWindow, {0, 0, 9, 9, true, false, true}}};
  parsed.document.largeIcons = true;
  parsed.document.devices[1].device = NDevices::ParseDeviceWord(
      "7:it.dcf,late=300,silent,abort=0x06020000,abort-at=7,bad-crc,vary-block-size,wrong-toggle,drop-"
      "segment");
  EXPECT_TRUE(schema.Holds(Json::parse(DocumentText(parsed.document))));
  EXPECT_TRUE(schema.Holds(Json::parse(DocumentText(Document()))));
}

}  // namespace
