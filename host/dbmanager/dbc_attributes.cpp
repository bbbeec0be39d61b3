#include "host/dbmanager/dbc_attributes.h"

namespace NDatabases {
namespace {

constexpr std::size_t kMostChoices = 65536;

constexpr std::string_view kKindNames[] = {"the network", "a node", "a message", "a signal", "a variable"};

[[noreturn]] void Refuse(std::uint32_t line, std::string text) {
  throw BrokenStatement{{line, std::move(text)}};
}

}  // namespace

void AttributeReader::ReadDefinition(Statement& tokens) {
  const ObjectKind kind = tokens.TakeObjectKind();
  const std::string name = tokens.TakeString("the name of an attribute in quotation marks");
  const std::string type = tokens.TakeWord("INT, HEX, FLOAT, STRING or ENUM");
  Definition definition;
  if (type == "STRING") {
    definition.type = Type::Text;
  } else if (type == "ENUM") {
    definition.type = Type::Choice;
    while (tokens.NextIsString() && definition.choices.size() < kMostChoices) {
      definition.choices.push_back(tokens.TakeString("a text"));
      definition.positions.emplace(definition.choices.back(), definition.choices.size() - 1);
      if (tokens.NextIs(',')) tokens.Take();
    }
  } else if (type != "INT" && type != "HEX" && type != "FLOAT") {
    Refuse(tokens.Line(), "INT, HEX, FLOAT, STRING or ENUM is expected, \"" + type + "\" stands there");
  }
  // The bounds of numbers are left alone: files are full of values outside of them.
  while (tokens.Next().kind == DbcToken::kWord && !tokens.Next().opensLine) tokens.Take();
  tokens.TakeSymbol(';');
  mDefinitions[name][kind] = std::move(definition);
}

void AttributeReader::TakeValue(Statement& tokens, Written& written) {
  if (tokens.NextIsString()) {
    written.text = tokens.TakeString("a value");
  } else {
    written.number = tokens.TakeNumber("a number or a text in quotation marks");
  }
  written.line = tokens.Line();
  tokens.TakeSymbol(';');
}

void AttributeReader::ReadDefault(Statement& tokens) {
  Written written;
  written.attribute = tokens.TakeString("the name of an attribute in quotation marks");
  TakeValue(tokens, written);
  mDefaults.push_back(std::move(written));
}

void AttributeReader::ReadValue(Statement& tokens) {
  Written written;
  written.attribute = tokens.TakeString("the name of an attribute in quotation marks");
  written.object = tokens.TakeObjectName();
  TakeValue(tokens, written);
  mValues.push_back(std::move(written));
}

const AttributeReader::Definition* AttributeReader::Find(ObjectKind kind,
                                                         const std::string& attribute) const {
  const auto named = mDefinitions.find(attribute);
  if (named == mDefinitions.end()) return nullptr;
  const auto found = named->second.find(kind);
  return found == named->second.end() ? nullptr : &found->second;
}

// An enumeration's value is the position of its text, or the text itself.
AttributeValue AttributeReader::InterpretChoice(const Definition& definition, const Written& written) {
  const auto& choices = definition.choices;
  AttributeValue value;
  if (written.number) {
    value = {*written.number, {}, true, false};
    const bool isPosition = *written.number >= 0 && *written.number < static_cast<double>(choices.size());
    if (!isPosition) return value;
    value.text = choices[static_cast<std::size_t>(*written.number)];
    value.hasText = true;
    return value;
  }
  const auto chosen = definition.positions.find(written.text);
  if (chosen == definition.positions.end()) {
    Refuse(written.line, "a text of the enumeration \"" + written.attribute + "\" is expected, \"" +
                             written.text + "\" is none of them");
  }
  return {static_cast<double>(chosen->second), written.text, true, true};
}

AttributeValue AttributeReader::Interpret(const Definition* definition, const Written& written) {
  const bool isNumber = written.number.has_value();
  if (definition && definition->type == Type::Choice) return InterpretChoice(*definition, written);
  const bool wantsNumber = definition ? definition->type == Type::Number : isNumber;
  if (wantsNumber != isNumber) {
    Refuse(written.line, std::string(wantsNumber ? "a number" : "a text in quotation marks") +
                             " is expected for \"" + written.attribute + "\"");
  }
  return {written.number.value_or(0), written.text, isNumber, !isNumber};
}

// A default goes by name alone: it is that of every kind of object for which the attribute is defined.
void AttributeReader::ApplyDefault(Database& database, const Written& written) const {
  const auto named = mDefinitions.find(written.attribute);
  if (named == mDefinitions.end()) {
    Refuse(written.line, "a definition of the attribute \"" + written.attribute +
                             "\" is expected, there is none; its default is left out");
  }
  for (const auto& [kind, definition] : named->second) {
    database.defaults[kind][written.attribute] = Interpret(&definition, written);
  }
}

void AttributeReader::ApplyValue(const std::function<AttributeValues*(const ObjectName&)>& find,
                                 const Written& written) const {
  if (written.object.kind == ObjectKind::Environment) return;
  AttributeValues* const values = find(written.object);
  if (!values) {
    const std::string object = written.object.kind == ObjectKind::Message
                                   ? std::to_string(written.object.messageId)
                                   : "\"" + written.object.name + "\"";
    Refuse(written.line, std::string(kKindNames[static_cast<int>(written.object.kind)]) + " named " + object +
                             " is expected, there is none; the value of \"" + written.attribute +
                             "\" is left out");
  }
  (*values)[written.attribute] = Interpret(Find(written.object.kind, written.attribute), written);
}

void AttributeReader::Apply(Database& database,
                            const std::function<AttributeValues*(const ObjectName&)>& find,
                            const std::function<void(const DbcError&)>& report) const {
  const auto attempt = [&](const auto& apply) {
    try {
      apply();
    } catch (const BrokenStatement& broken) {
      report(broken.error);
    }
  };
  for (const Written& written : mDefaults) attempt([&] { ApplyDefault(database, written); });
  for (const Written& written : mValues) attempt([&] { ApplyValue(find, written); });
}

}  // namespace NDatabases
