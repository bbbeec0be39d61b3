#pragma once
// Attributes of a DBC file: definitions, defaults and values may stand in any order, so they are put together
// when all is read.

#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/dbmanager/dbc_statement.h"

namespace NDatabases {

class AttributeReader {
 public:
  // Behind the keyword of the statement. Each throws BrokenStatement.
  void ReadDefinition(Statement& tokens);
  void ReadDefault(Statement& tokens);
  void ReadValue(Statement& tokens);

  /// Puts defaults and values in their places. `find` is asked for the attributes of an object; null: there
  /// is no such object.
  void Apply(Database& database, const std::function<AttributeValues*(const ObjectName&)>& find,
             const std::function<void(const DbcError&)>& report) const;

 private:
  enum class Type { Number, Text, Choice };

  struct Definition {
    Type type = Type::Number;
    std::vector<std::string> choices;
    std::unordered_map<std::string, std::size_t> positions;  // of the choices
  };

  // As it is written.
  struct Written {
    std::string attribute;
    ObjectName object;
    std::optional<double> number;
    std::string text;
    std::uint32_t line = 0;
  };

  const Definition* Find(ObjectKind kind, const std::string& attribute) const;
  static void TakeValue(Statement& tokens, Written& written);
  static AttributeValue Interpret(const Definition* definition, const Written& written);
  static AttributeValue InterpretChoice(const Definition& definition, const Written& written);
  void ApplyDefault(Database& database, const Written& written) const;
  void ApplyValue(const std::function<AttributeValues*(const ObjectName&)>& find,
                  const Written& written) const;

  std::map<std::string, std::map<ObjectKind, Definition>> mDefinitions;
  std::vector<Written> mDefaults, mValues;
};

}  // namespace NDatabases
