#include <gmock/gmock.h>

#include <fstream>
#include <optional>

#include "host/runtime/configuration.h"
#include "host/runtime/library_objects.h"
#include "host/runtime/text.h"
#include "tests/test_folder.h"

namespace {

using namespace NSdk;
using NRuntime::ComPtr;
using NRuntime::ReceivedText;
using testing::ElementsAre;
using testing::HasSubstr;

template <class Object>
std::string Text(Object& object, HRESULT (STDMETHODCALLTYPE Object::*get)(wchar_t**)) {
  ReceivedText text;
  EXPECT_EQ((object.*get)(text.Out()), S_OK);
  return NRuntime::ToUtf8(text.Text());
}

std::optional<double> Number(ICanAttributes& object, const wchar_t* name) {
  double value = 0;
  const HRESULT result = object.GetNumber(name, &value);
  EXPECT_TRUE(result == S_OK || result == S_FALSE);
  return result == S_OK ? std::optional(value) : std::nullopt;
}

std::optional<std::string> TextOf(ICanAttributes& object, const wchar_t* name) {
  ReceivedText text;
  const HRESULT result = object.GetText(name, text.Out());
  EXPECT_TRUE(result == S_OK || result == S_FALSE);
  return result == S_OK ? std::optional(NRuntime::ToUtf8(text.Text())) : std::nullopt;
}

class Databases : public testing::Test {
 protected:
  ComPtr<ICanDatabase> Open(const std::string& content) {
    std::ofstream(file, std::ios::binary) << content;
    ComPtr<ICanDatabase> database;
    result = manager->OpenFile(file.wstring().c_str(), database.Out());
    return database;
  }

  // Without the name of the file, each on a line.
  std::string Errors(ICanDatabase& database) {
    std::string all;
    std::uint32_t count = 0;
    EXPECT_EQ(database.GetErrorCount(&count), S_OK);
    for (std::uint32_t i = 0; i < count; ++i) {
      ReceivedText text;
      EXPECT_EQ(database.GetError(i, nullptr, text.Out()), S_OK);
      const std::string line = NRuntime::ToUtf8(text.Text());
      EXPECT_EQ(line.find(NRuntime::PathText(file) + ':'), 0u) << line;
      all += line.substr(NRuntime::PathText(file).size() + 1) + '\n';
    }
    return all;
  }

  const NTest::TestFolder folder;
  const std::filesystem::path file = folder / "it.dbc";
  const ComPtr<IDatabaseManager> manager = NRuntime::MakeDatabaseManager(OSTREL_PROGRAMS);
  HRESULT result = S_OK;
};

// As tools write it: CRLF, Windows-1252, keywords listed first, sections that nobody needs.
constexpr char kWhole[] =
    "VERSION \"\"\r\n\r\nNS_ : \r\n\tNS_DESC_\r\n\tCM_\r\n\tBA_DEF_\r\n\tBA_\r\n\r\nBS_:\r\n\r\n"
    "BU_: Master  Pump_2\r\nVAL_TABLE_ OnOff 1 \"On; BO_ 1\" 0 \"Off\" ;\r\n"
    "BO_ 385 Pump_Status: 8 Pump_2\r\n"
    " SG_ Mode M : 0|8@1+ (1,0) [0|0] \"\" Master\r\n"
    " SG_ Temp m3 : 15|16@0- (0.1,-40) [-40|215.5] \"\xB0"
    "C\" Master,Vector__XXX\r\n"
    " SG_ Flow : 24|32@1- (1E-05,0) [0|1] \"l/s\" Vector__XXX\r\n\r\n"
    "BO_ 2566844672 Wide : 0 Vector__XXX\r\n\r\nBO_ 3221225472 VECTOR__INDEPENDENT_SIG_MSG: 0 Vector__XXX\r\n"
    " SG_ Lost : 0|1@1+ (1,0) [0|0] \"\" Vector__XXX\r\n\r\n"
    "CM_ \"Netz\";\r\nCM_ BU_ Pump_2 \"K\xFChlpumpe\r\nBO_ 7 is no message; here a \\\"quote\\\"\";\r\n"
    "CM_ SG_ 385 Temp \"inlet\";\r\nEV_ Env: 0 [0|1] \"\" 0 1 DUMMY_NODE_VECTOR0 Vector__XXX;\r\n"
    "BA_DEF_  \"IsCANopen\" INT 0 1;\r\nBA_DEF_ BU_  \"CO_ID\" INT 0 127;\r\n"
    "BA_DEF_ BU_ \"CO_DCF\" STRING ;\r\nBA_DEF_ BO_ \"GenMsgCycleTime\" INT 0 65535;\r\n"
    "BA_DEF_ SG_ \"Kind\" ENUM \"none\",\"slow\", \"fast, even\";\r\nBA_DEF_ \"ProtocolType\" STRING ;\r\n"
    "BA_DEF_ BU_ \"NoDefault\" INT 0 0;\r\nBA_DEF_REL_ BU_SG_REL_ \"x\" INT 0 1;\r\n"
    "BA_DEF_DEF_ \"IsCANopen\" 0;\r\nBA_DEF_DEF_ \"CO_ID\" 0;\r\nBA_DEF_DEF_ \"CO_DCF\" \"\";\r\n"
    "BA_DEF_DEF_ \"GenMsgCycleTime\" 100;\r\nBA_DEF_DEF_ \"Kind\" \"slow\";\r\n"
    "BA_DEF_DEF_ \"ProtocolType\" \"\";\r\n"
    "BA_ \"ProtocolType\" \"CANopen\";\r\nBA_ \"CO_ID\" BU_ Pump_2 5;\r\n"
    "BA_ \"CO_DCF\" BU_ Pump_2 \"..\\pump.dcf\";\r\nBA_ \"GenMsgCycleTime\" BO_ 385 20;\r\n"
    "BA_ \"Kind\" SG_ 385 Temp 2;\r\nBA_ \"Kind\" SG_ 385 Mode \"none\";\r\nBA_ \"E\" EV_ Env 1;\r\n"
    "BA_REL_ \"x\" BU_SG_REL_ Master SG_ 385 Temp 1;\r\nVAL_ 385 Mode 0 \"Off\" ;\r\n"
    "SIG_VALTYPE_ 385 Flow : 1;\r\nNEW_SECTION_ \"of\" some later tool;\r\n";

TEST_F(Databases, NodesMessagesAndSignals) {
  const auto database = Open(kWhole);
  ASSERT_TRUE(database);
  EXPECT_EQ(Errors(*database), "");
  EXPECT_EQ(Text(*database, &ICanDatabase::GetComment), "Netz");
  std::uint32_t nodes = 0, messages = 0;
  EXPECT_EQ(database->GetNodeCount(&nodes), S_OK);
  EXPECT_EQ(database->GetMessageCount(&messages), S_OK);
  ASSERT_EQ(nodes, 2u);
  ASSERT_EQ(messages, 2u);
  ComPtr<ICanDatabaseNode> node;
  ASSERT_EQ(database->GetNodeAt(1, node.Out()), S_OK);
  EXPECT_EQ(database->GetNodeAt(2, node.Out()), E_INVALIDARG);
  ASSERT_EQ(database->GetNodeAt(1, node.Out()), S_OK);
  EXPECT_EQ(Text(*node, &ICanDatabaseNode::GetName), "Pump_2");
  EXPECT_EQ(Text(*node, &ICanDatabaseNode::GetComment), "Kühlpumpe\r\nBO_ 7 is no message; here a \"quote\"");

  ComPtr<ICanDatabaseMessage> wide, status;
  std::uint32_t identifier = 0, extended = 0, count = 0;
  ASSERT_EQ(database->GetMessageAt(1, wide.Out()), S_OK);
  EXPECT_EQ(wide->GetIdentifier(&identifier, &extended), S_OK);
  EXPECT_EQ(identifier, 2566844672u - 0x80000000u);
  EXPECT_EQ(extended, 1u);
  ASSERT_EQ(database->GetMessageAt(0, status.Out()), S_OK);
  EXPECT_EQ(Text(*status, &ICanDatabaseMessage::GetName), "Pump_Status");
  EXPECT_EQ(Text(*status, &ICanDatabaseMessage::GetSender), "Pump_2");
  EXPECT_EQ(status->GetSignalCount(&count), S_OK);
  ASSERT_EQ(count, 3u);
  ComPtr<ICanDatabaseSignal> temperature, flow;
  CanSignalLayout layout;
  ASSERT_EQ(status->GetSignalAt(1, temperature.Out()), S_OK);
  EXPECT_EQ(temperature->GetLayout(&layout), S_OK);
  EXPECT_EQ(Text(*temperature, &ICanDatabaseSignal::GetUnit), "°C");
  EXPECT_EQ(Text(*temperature, &ICanDatabaseSignal::GetMultiplexing), "m3");
  EXPECT_THAT((std::vector<double>{double(layout.startBit), double(layout.bits), double(layout.bigEndian),
                                   double(layout.value), layout.factor, layout.offset, layout.maximum}),
              ElementsAre(15, 16, 1, kSignalSigned, 0.1, -40, 215.5));
  ASSERT_EQ(status->GetSignalAt(2, flow.Out()), S_OK);
  EXPECT_EQ(flow->GetLayout(&layout), S_OK);
  EXPECT_EQ(layout.value, kSignalFloat);
}

TEST_F(Databases, AttributesAreThoseOfTheObjectElseTheDefault) {
  auto database = Open(kWhole);
  ASSERT_TRUE(database);
  ComPtr<ICanDatabaseNode> master, pump;
  ComPtr<ICanDatabaseMessage> status, wide;
  ComPtr<ICanDatabaseSignal> mode, temperature, flow;
  database->GetNodeAt(0, master.Out());
  database->GetNodeAt(1, pump.Out());
  database->GetMessageAt(0, status.Out());
  database->GetMessageAt(1, wide.Out());
  status->GetSignalAt(0, mode.Out());
  status->GetSignalAt(1, temperature.Out());
  status->GetSignalAt(2, flow.Out());
  // The database may go first.
  const ComPtr<ICanAttributes> network = NRuntime::Query<ICanAttributes>(database);
  database.Reset();
  const struct {
    ICanAttributes* object;
    const wchar_t* name;
    std::optional<double> number;
    std::optional<std::string> text;
  } cases[] = {
      {network.Get(), L"IsCANopen", 0, {}},
      {network.Get(), L"ProtocolType", {}, "CANopen"},
      {network.Get(), L"J1939PGN", {}, {}},
      {network.Get(), L"CO_ID", {}, {}},  // is one of nodes
      {master.Get(), L"CO_ID", 0, {}},
      {master.Get(), L"NoDefault", {}, {}},
      {pump.Get(), L"CO_ID", 5, {}},
      {pump.Get(), L"CO_DCF", {}, "..\\pump.dcf"},
      {status.Get(), L"GenMsgCycleTime", 20, {}},
      {wide.Get(), L"GenMsgCycleTime", 100, {}},
      {mode.Get(), L"Kind", 0, "none"},
      {temperature.Get(), L"Kind", 2, "fast, even"},
      {flow.Get(), L"Kind", 1, "slow"},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(NRuntime::ToUtf8(std::wstring_view(row.name)));
    EXPECT_EQ(Number(*row.object, row.name), row.number);
    EXPECT_EQ(TextOf(*row.object, row.name), row.text);
  }
}

TEST_F(Databases, WhatIsBrokenLosesNothingElse) {
  const struct {
    const char* broken;
    const char* errors;
  } cases[] = {
      {"BO_ x Name: 8 A\n SG_ S : 0|8@1+ (1,0) [0|0] \"\" A\n",
       "3: the identifier of a message is expected, \"x\" stands there\n"
       "4: a message before its signals is expected, there is none\n"},
      {"BO_ 5 Name 8 A\n", "3: \":\" is expected, \"8\" stands there\n"},
      {"BO_ 5 Five: 8 A\n SG_ S : 0|8@1 (1,0) [0|0] \"\" A\n",
       "4: byte order and sign (0+, 0-, 1+ or 1-) are expected, \"1\" stands there\n"},
      {"BO_ 7 Five: 8 A\n",
       "3: another identifier is expected, a message 7 is there already; this one is left out\n"},
      {"BO_ 5000 Five: 8 A\n",
       "3: an identifier of at most 11 bits is expected, 5000 has more; it is taken for one of 29 bits\n"},
      {"CM_ BU_ A \"the quotation mark is missing;\n",
       "3: the quotation mark that closes \"the quotation mark is missing;\" is expected, the line ends "
       "without it\n"},
      {"CM_ \"a semicolon is missing\"\n", "3: \";\" is expected, the line ends there\n"},
      {"BA_ \"N\" BU_ B 1;\n",
       "3: a node named \"B\" is expected, there is none; the value of \"N\" is left out\n"},
      {"BA_ \"N\" BU_ A \"text\";\n", "3: a number is expected for \"N\"\n"},
      {"BA_DEF_ \"X\" BOOL 0 1;\n",
       "3: INT, HEX, FLOAT, STRING or ENUM is expected, \"BOOL\" stands there\n"},
      {"garbage here\n", "3: a section such as BO_, BA_ or CM_ is expected, \"garbage\" stands there\n"},
      {"BA_", "3: the name of an attribute in quotation marks is expected, the line ends there\n"},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(row.broken);
    const auto database = Open(std::string("BU_: A\nBO_ 7 Seven: 1 A\n") + row.broken +
                               "\nBA_DEF_ BU_ \"N\" INT 0 9;\nBA_ \"N\" BU_ A 4;\nCM_ BU_ A \"last\";\n");
    ASSERT_TRUE(database);
    EXPECT_EQ(Errors(*database), row.errors);
    ComPtr<ICanDatabaseNode> node;
    ASSERT_EQ(database->GetNodeAt(0, node.Out()), S_OK);
    EXPECT_EQ(Number(*node, L"N"), 4);
    EXPECT_EQ(Text(*node, &ICanDatabaseNode::GetComment), "last");
  }
}

TEST_F(Databases, SectionsMayStandInAnyOrderAndEncoding) {
  const auto database = Open(
      "\xEF\xBB\xBF"
      "BA_ \"N\" BU_ A 4;\nBA_DEF_DEF_ \"T\" \"\xC3\xA4\";\nBA_DEF_ \"T\" STRING;\n"
      "BA_DEF_ BU_ \"N\" INT 0 0;\nBU_ : A B\nNS_ :\nBS_\nBU_: C\n");
  ASSERT_TRUE(database);
  EXPECT_EQ(Errors(*database), "");
  EXPECT_EQ(TextOf(*database, L"T"), "ä");
  ComPtr<ICanDatabaseNode> first, third;
  ASSERT_EQ(database->GetNodeAt(0, first.Out()), S_OK);
  EXPECT_EQ(Number(*first, L"N"), 4);
  EXPECT_EQ(database->GetNodeAt(2, third.Out()), S_OK);
}

TEST_F(Databases, FilesThatAreNoneAreRefused) {
  EXPECT_FALSE(Open("MZ\x90 nothing of the kind"));
  EXPECT_EQ(result, kNotADatabase);
  EXPECT_EQ(Text(*manager, &IDatabaseManager::GetFailure),
            NRuntime::PathText(file) + ": not a DBC file: it has no section of one");
  ComPtr<ICanDatabase> database;
  EXPECT_EQ(manager->OpenFile(folder.Path().wstring().c_str(), database.Out()), kDatabaseUnreadable);
  EXPECT_EQ(manager->OpenFile((folder / "none.dbc").wstring().c_str(), database.Out()), kDatabaseMissing);
  EXPECT_THAT(Text(*manager, &IDatabaseManager::GetFailure), HasSubstr("none.dbc: no such file"));
  std::filesystem::resize_file(file, (32u << 20) + 1);
  EXPECT_EQ(manager->OpenFile(file.wstring().c_str(), database.Out()), kDatabaseTooLarge);
}

TEST_F(Databases, AssignmentsComeFromTheConfiguration) {
  ReceivedText path;
  std::uint32_t channel = 0;
  EXPECT_EQ(manager->GetDatabaseInfo(1, path.Out(), &channel), S_FALSE);
  Open("BU_: A\n");
  NRuntime::ConfigurationData data;
  data.databases = {{folder / "none.dbc", NSdk::kUnknownChannel}, {file, 2}};
  EXPECT_EQ(manager->SetConfiguration(NRuntime::Make<NRuntime::Configuration>(data).Get()), S_OK);
  EXPECT_EQ(manager->GetDatabaseInfo(0, path.Out(), &channel), S_FALSE);
  EXPECT_EQ(manager->GetDatabaseInfo(1, nullptr, &channel), S_OK);
  EXPECT_EQ(channel, NSdk::kUnknownChannel);
  EXPECT_EQ(manager->GetDatabaseInfo(2, path.Out(), &channel), S_OK);
  EXPECT_EQ(path.Text(), file.wstring());
  EXPECT_EQ(channel, 2u);
  EXPECT_EQ(manager->GetDatabaseInfo(3, nullptr, nullptr), S_FALSE);
  ComPtr<ICanDatabase> database;
  EXPECT_EQ(manager->OpenDatabase(1, database.Out()), kDatabaseMissing);
  EXPECT_EQ(manager->OpenDatabase(2, database.Out()), S_OK);
  EXPECT_EQ(manager->OpenDatabase(3, database.Out()), E_INVALIDARG);
}

}  // namespace
