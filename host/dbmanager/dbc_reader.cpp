#include "host/dbmanager/dbc_reader.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <unordered_map>

#include "host/dbmanager/dbc_attributes.h"
#include "host/dbmanager/dbc_statement.h"

namespace NDatabases {
namespace {

constexpr std::size_t kMostErrors = 1000;        // that are listed
constexpr std::size_t kErrorsOfNoDbc = 100'000;  // a file with more of them is none
constexpr std::size_t kMostObjects = 500'000;    // nodes, messages and signals
constexpr std::uint32_t kExtendedBit = 0x80000000;
constexpr std::uint32_t kLastStandard = 0x7FF;
constexpr std::uint32_t kLastExtended = 0x1FFFFFFF;
constexpr std::uint32_t kOrphans = 0xC0000000;  // the message of signals that belong to none

struct TooManyErrors {};

class Reader {
 public:
  explicit Reader(std::string_view text) : mTokens(text) {}
  Database Read();

 private:
  struct Comment {
    ObjectName object;
    std::string text;
    std::uint32_t line = 0;
  };

  struct FloatSignal {
    ObjectName signal;
    std::uint32_t type = 0, line = 0;
  };

  struct Section {
    std::string_view keyword;
    void (Reader::*read)();  // null: hosts have no use for it
  };
  static const Section kSections[];
  static const Section* FindSection(const DbcToken& token);

  void ReadStatement();
  void SkipStatement();
  void ReadSymbols();
  void ReadVersion() { mTokens.TakeString("a version in quotation marks"); }
  void ReadNodes();
  void ReadMessage();
  void ReadSignal();
  void ReadLayout(Signal& signal);
  void ReadComment();
  void ReadFloatSignal();
  void ReadDefinition() { mAttributes.ReadDefinition(mTokens); }
  void ReadDefault() { mAttributes.ReadDefault(mTokens); }
  void ReadValue() { mAttributes.ReadValue(mTokens); }

  void CountObject();
  void AddError(const DbcError& error);
  void AddError(std::uint32_t line, std::string text) { AddError({line, std::move(text)}); }
  void Apply(const Comment& comment);
  void Apply(const FloatSignal& row);
  Node* FindNode(const std::string& name);
  Message* FindMessage(std::uint32_t id);
  Signal* FindSignal(const ObjectName& name);
  AttributeValues* FindAttributes(const ObjectName& name);

  Statement mTokens;
  Database mDatabase;
  AttributeReader mAttributes;
  std::vector<Comment> mComments;
  std::vector<FloatSignal> mFloatSignals;
  std::unordered_map<std::string, std::size_t> mNodes;
  std::unordered_map<std::uint32_t, std::size_t> mMessages;  // by the identifier as it is written
  std::unordered_map<std::string, std::size_t> mSignals;     // "IDENTIFIER NAME"
  std::optional<std::uint32_t> mMessage;                     // whose signals follow
  std::size_t mObjects = 0;
  std::size_t mErrors = 0;
};

const Reader::Section Reader::kSections[] = {
    {"BA_", &Reader::ReadValue},
    {"BA_DEF_", &Reader::ReadDefinition},
    {"BA_DEF_DEF_", &Reader::ReadDefault},
    {"BO_", &Reader::ReadMessage},
    {"BU_", &Reader::ReadNodes},
    {"CM_", &Reader::ReadComment},
    {"NS_", &Reader::ReadSymbols},
    {"SG_", &Reader::ReadSignal},
    {"SIG_VALTYPE_", &Reader::ReadFloatSignal},
    {"VERSION", &Reader::ReadVersion},
    {"BA_DEF_DEF_REL_", nullptr},
    {"BA_DEF_REL_", nullptr},
    {"BA_DEF_SGTYPE_", nullptr},
    {"BA_REL_", nullptr},
    {"BA_SGTYPE_", nullptr},
    {"BO_TX_BU_", nullptr},
    {"BS_", nullptr},
    {"BU_BO_REL_", nullptr},
    {"BU_EV_REL_", nullptr},
    {"BU_SG_REL_", nullptr},
    {"CAT_", nullptr},
    {"CAT_DEF_", nullptr},
    {"ENVVAR_DATA_", nullptr},
    {"EV_", nullptr},
    {"EV_DATA_", nullptr},
    {"FILTER", nullptr},
    {"NS_DESC_", nullptr},
    {"SGTYPE_", nullptr},
    {"SGTYPE_VAL_", nullptr},
    {"SG_MUL_VAL_", nullptr},
    {"SIGTYPE_VALTYPE_", nullptr},
    {"SIG_GROUP_", nullptr},
    {"SIG_TYPE_REF_", nullptr},
    {"VAL_", nullptr},
    {"VAL_TABLE_", nullptr},
};

// A keyword counts where it opens a line.
const Reader::Section* Reader::FindSection(const DbcToken& token) {
  if (token.kind != DbcToken::kWord || !token.opensLine) return nullptr;
  const auto found = std::find_if(std::begin(kSections), std::end(kSections),
                                  [&](const Section& section) { return section.keyword == token.text; });
  return found == std::end(kSections) ? nullptr : found;
}

Database Reader::Read() {
  try {
    while (!mTokens.AtEnd()) ReadStatement();
    for (const Comment& comment : mComments) Apply(comment);
    for (const FloatSignal& row : mFloatSignals) Apply(row);
    mAttributes.Apply(
        mDatabase, [this](const ObjectName& name) { return FindAttributes(name); },
        [this](const DbcError& error) { AddError(error); });
  } catch (const TooManyErrors&) {
    mDatabase.errors.back().text = "the file has so many errors that the rest of it is left out";
  }
  std::stable_sort(mDatabase.errors.begin(), mDatabase.errors.end(),
                   [](const DbcError& a, const DbcError& b) { return a.line < b.line; });
  return std::move(mDatabase);
}

void Reader::ReadStatement() {
  const Section* const section = FindSection(mTokens.Next());
  const bool isUnknownSection = mTokens.Next().kind == DbcToken::kWord && mTokens.Next().opensLine &&
                                mTokens.Next().text.ends_with('_');
  try {
    if (!section && !isUnknownSection) mTokens.FailAtStart("a section such as BO_, BA_ or CM_");
    mTokens.Take();
    if (!section || !section->read) return SkipStatement();
    mDatabase.isRecognised = true;
    (this->*section->read)();
  } catch (const BrokenStatement& broken) {
    AddError(broken.error);
    SkipStatement();
  }
}

void Reader::SkipStatement() {
  while (!mTokens.AtEnd() && !FindSection(mTokens.Next())) {
    if (mTokens.Take().text == ";") return;
  }
}

// The keywords that the writer knows, each alone on its line: there they open no section.
void Reader::ReadSymbols() {
  mTokens.TakeSymbol(':');
  while (mTokens.Next().kind == DbcToken::kWord) {
    Statement ahead = mTokens;
    ahead.Take();
    if (!ahead.Next().opensLine) return;
    mTokens = ahead;
  }
}

void Reader::ReadNodes() {
  mTokens.TakeSymbol(':');
  while (mTokens.Next().kind == DbcToken::kWord && !FindSection(mTokens.Next())) {
    if (mTokens.Next().opensLine && mTokens.Next().text.ends_with('_')) return;  // an unknown section
    std::string name = mTokens.TakeWord("the name of a node");
    if (!mNodes.emplace(name, mDatabase.nodes.size()).second) {
      AddError(mTokens.Line(), "another name is expected, a node \"" + name + "\" is there already");
      continue;
    }
    CountObject();
    mDatabase.nodes.push_back({std::move(name), {}, {}});
  }
}

void Reader::CountObject() {
  if (++mObjects > kMostObjects) {
    mTokens.Fail("the end of the file after " + std::to_string(kMostObjects) +
                 " nodes, messages and signals");
  }
}

void Reader::ReadMessage() {
  mMessage.reset();
  const std::uint32_t id = mTokens.TakeUnsigned("the identifier of a message");
  mMessage = id;  // the signals of a broken message are skipped with it
  const std::uint32_t line = mTokens.Line();
  Message message;
  message.name = mTokens.TakeWord("the name of a message");
  mTokens.TakeSymbol(':');
  message.size = mTokens.TakeUnsigned("the size of a message in bytes");
  // Some writers leave out who sends it.
  if (mTokens.Next().kind == DbcToken::kWord && !mTokens.Next().opensLine)
    message.sender = mTokens.Take().text;
  if (id == kOrphans) return;
  message.identifier = id & ~kExtendedBit;
  message.extended = (id & kExtendedBit) != 0;
  if (message.identifier > kLastExtended) {
    throw BrokenStatement{{line, "an identifier of at most 29 bits is expected, " + std::to_string(id) +
                                     " has more; the message is left out"}};
  }
  if (!message.extended && message.identifier > kLastStandard) {
    AddError(line, "an identifier of at most 11 bits is expected, " + std::to_string(id) +
                       " has more; it is taken for one of 29 bits");
    message.extended = true;
  }
  if (mMessages.contains(id)) {
    throw BrokenStatement{{line, "another identifier is expected, a message " + std::to_string(id) +
                                     " is there already; this one is left out"}};
  }
  CountObject();
  mMessages.emplace(id, mDatabase.messages.size());
  mDatabase.messages.push_back(std::move(message));
}

void Reader::ReadSignal() {
  const std::uint32_t line = mTokens.Line();
  if (!mMessage) throw BrokenStatement{{line, "a message before its signals is expected, there is none"}};
  Message* const message = FindMessage(*mMessage);
  Signal signal;
  signal.name = mTokens.TakeWord("the name of a signal");
  if (mTokens.Next().kind == DbcToken::kWord) signal.multiplexing = mTokens.TakeWord("M or m and a number");
  ReadLayout(signal);
  while (!mTokens.AtEnd() && !mTokens.Next().opensLine) mTokens.Take();  // who receives it
  if (!message) return;
  const std::string key = std::to_string(*mMessage) + ' ' + signal.name;
  if (!mSignals.emplace(key, message->signalList.size()).second) {
    throw BrokenStatement{
        {line, "another name is expected, the message has a signal \"" + signal.name + "\" already"}};
  }
  CountObject();
  message->signalList.push_back(std::move(signal));
}

// : START|BITS@ORDER SIGN (FACTOR,OFFSET) [MINIMUM|MAXIMUM] "UNIT"
void Reader::ReadLayout(Signal& signal) {
  NSdk::CanSignalLayout& layout = signal.layout;
  mTokens.TakeSymbol(':');
  layout.startBit = mTokens.TakeUnsigned("the start bit of a signal");
  mTokens.TakeSymbol('|');
  layout.bits = mTokens.TakeUnsigned("the length of a signal in bits");
  mTokens.TakeSymbol('@');
  std::string order = mTokens.TakeWord("byte order and sign, 1+ for example");
  if (order.size() == 1 && mTokens.Next().kind == DbcToken::kWord) order += mTokens.Take().text;
  if (order != "0+" && order != "0-" && order != "1+" && order != "1-") {
    throw BrokenStatement{{mTokens.Line(), "byte order and sign (0+, 0-, 1+ or 1-) are expected, \"" + order +
                                               "\" stands there"}};
  }
  layout.bigEndian = order[0] == '0';
  layout.value = order[1] == '-' ? NSdk::kSignalSigned : NSdk::kSignalUnsigned;
  mTokens.TakeSymbol('(');
  layout.factor = mTokens.TakeNumber("a factor");
  mTokens.TakeSymbol(',');
  layout.offset = mTokens.TakeNumber("an offset");
  mTokens.TakeSymbol(')');
  mTokens.TakeSymbol('[');
  layout.minimum = mTokens.TakeNumber("a minimum");
  mTokens.TakeSymbol('|');
  layout.maximum = mTokens.TakeNumber("a maximum");
  mTokens.TakeSymbol(']');
  signal.unit = mTokens.TakeString("a unit in quotation marks");
}

void Reader::ReadComment() {
  Comment comment;
  comment.object = mTokens.TakeObjectName();
  comment.line = mTokens.Line();
  comment.text = mTokens.TakeString("a comment in quotation marks");
  mTokens.TakeSymbol(';');
  mComments.push_back(std::move(comment));
}

void Reader::ReadFloatSignal() {
  FloatSignal row;
  row.signal.kind = ObjectKind::Signal;
  row.signal.messageId = mTokens.TakeUnsigned("the identifier of a message");
  row.signal.name = mTokens.TakeWord("the name of a signal");
  row.line = mTokens.Line();
  if (mTokens.NextIs(':')) mTokens.Take();
  row.type = mTokens.TakeUnsigned("0, 1 (32 bits) or 2 (64 bits)");
  mTokens.TakeSymbol(';');
  mFloatSignals.push_back(std::move(row));
}

void Reader::AddError(const DbcError& error) {
  if (++mErrors > kErrorsOfNoDbc) throw TooManyErrors();
  if (mDatabase.errors.size() < kMostErrors) return mDatabase.errors.push_back(error);
  mDatabase.errors.back() = {error.line,
                             "no more than " + std::to_string(kMostErrors) + " errors are listed"};
}

Node* Reader::FindNode(const std::string& name) {
  const auto found = mNodes.find(name);
  return found == mNodes.end() ? nullptr : &mDatabase.nodes[found->second];
}

Message* Reader::FindMessage(std::uint32_t id) {
  const auto found = mMessages.find(id);
  return found == mMessages.end() ? nullptr : &mDatabase.messages[found->second];
}

Signal* Reader::FindSignal(const ObjectName& name) {
  const auto found = mSignals.find(std::to_string(name.messageId) + ' ' + name.name);
  return found == mSignals.end() ? nullptr : &FindMessage(name.messageId)->signalList[found->second];
}

AttributeValues* Reader::FindAttributes(const ObjectName& name) {
  const auto of = [](auto* object) { return object ? &object->attributes : nullptr; };
  switch (name.kind) {
    case ObjectKind::Network:
      return &mDatabase.attributes;
    case ObjectKind::Node:
      return of(FindNode(name.name));
    case ObjectKind::Message:
      return of(FindMessage(name.messageId));
    case ObjectKind::Signal:
      return of(FindSignal(name));
    case ObjectKind::Environment:
      break;
  }
  return nullptr;
}

// Comments on what is not there are no loss.
void Reader::Apply(const Comment& comment) {
  const auto set = [&](auto* object) {
    if (object) object->comment = comment.text;
  };
  if (comment.object.kind == ObjectKind::Network) set(&mDatabase);
  if (comment.object.kind == ObjectKind::Node) set(FindNode(comment.object.name));
  if (comment.object.kind == ObjectKind::Message) set(FindMessage(comment.object.messageId));
  if (comment.object.kind == ObjectKind::Signal) set(FindSignal(comment.object));
}

void Reader::Apply(const FloatSignal& row) {
  Signal* const signal = FindSignal(row.signal);
  if (!signal)
    return AddError(row.line, "a signal named \"" + row.signal.name + "\" is expected, there is none");
  if (row.type == 1) signal->layout.value = NSdk::kSignalFloat;
  if (row.type == 2) signal->layout.value = NSdk::kSignalDouble;
}

}  // namespace

const AttributeValue* Database::Find(ObjectKind kind, const AttributeValues& own,
                                     std::string_view name) const {
  const auto set = own.find(name);
  if (set != own.end()) return &set->second;
  const auto ofKind = defaults.find(kind);
  if (ofKind == defaults.end()) return nullptr;
  const auto found = ofKind->second.find(name);
  return found == ofKind->second.end() ? nullptr : &found->second;
}

Database ReadDbc(std::string_view text) { return Reader(text).Read(); }

}  // namespace NDatabases
