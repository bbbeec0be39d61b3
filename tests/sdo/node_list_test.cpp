#include "sdo/node_list.h"

#include <gmock/gmock.h>

#include <fstream>

#include "channels/channel_manager.h"
#include "sdk/database_library.h"
#include "tests/channels/database_host.h"
#include "tests/test_folder.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
namespace fs = std::filesystem;

constexpr char kDescription[] = R"([DeviceInfo]
ProductName=Valve block
[DummyUsage]
Dummy0005=1
[MandatoryObjects]
SupportedObjects=2
1=0x1000
2=0x1018
[OptionalObjects]
SupportedObjects=4
1=0x0040
2=0x1008
3=0x1017
4=0x1800
[0040]
ParameterName=Private type
ObjectType=0x5
[1000]
ParameterName=Device type
ObjectType=0x7
DataType=0x0007
AccessType=ro
DefaultValue=0x000F0191
[1008]
ParameterName=Device name
ObjectType=0x7
DataType=0x0009
AccessType=const
DefaultValue=Valves
[1017]
ParameterName=Heartbeat time
ObjectType=0x7
DataType=0x0006
AccessType=rw
DefaultValue=0
ParameterValue=500
[1018]
ParameterName=Identity
ObjectType=0x9
SubNumber=2
[1018sub0]
ParameterName=Highest sub-index
ObjectType=0x7
DataType=0x0005
AccessType=const
DefaultValue=1
[1018sub1]
ParameterName=Vendor-ID
ObjectType=0x7
DataType=0x0007
AccessType=ro
DefaultValue=0
[1800]
ParameterName=TPDO 1
ObjectType=0x9
SubNumber=2
[1800sub0]
ParameterName=Highest sub-index
ObjectType=0x7
DataType=0x0005
AccessType=const
DefaultValue=1
[1800sub1]
ParameterName=COB-ID
ObjectType=0x7
DataType=0x0007
AccessType=rw
DefaultValue=$NODEID+0x180
)";

class NodeList : public testing::Test {
 protected:
  NodeList() {
    fs::create_directories(databases);
    fs::create_directories(folder / "dcf");
    std::ofstream(databases / "valves.dcf") << kDescription;
    std::ofstream(folder / "dcf" / "other.dcf") << kDescription;
    std::ofstream(databases / "broken.dcf") << "no description";
    NCommon::SetHostApplication(host.Get());
  }
  ~NodeList() override {
    NChannels::ReleaseChannelManager();
    NCommon::SetHostApplication(nullptr);
  }

  void AddDatabase(const std::string& name, const std::string& nodes, const std::string& values,
                   std::uint32_t channel) {
    std::ofstream(databases / name) << "VERSION \"\"\nBU_: " << nodes
                                    << "\nBA_DEF_ BU_ \"CO_ID\" INT 0 127;\n"
                                       "BA_DEF_ BU_ \"CO_DCF\" STRING ;\n"
                                    << values;
    host->databases.emplace_back(databases / name, channel);
  }

  // Of this test alone: others run beside it.
  const NTest::TestFolder folder;
  const fs::path databases = folder / fs::path(u8"Datenb\u00e4nke");
  NCom::ComPtr<NTest::DatabaseHost> host = NCom::Make<NTest::DatabaseHost>();
};

std::string Id(const std::string& node, int id) {
  return "BA_ \"CO_ID\" BU_ " + node + " " + std::to_string(id) + ";\n";
}
std::string Dcf(const std::string& node, const std::string& path) {
  return "BA_ \"CO_DCF\" BU_ " + node + " \"" + path + "\";\n";
}

TEST_F(NodeList, NodesComeFromTheDatabasesOfTheChannel) {
  AddDatabase("a.dbc", "Valves None Zero Lost Bad Sub",
              Id("Valves", 5) + Dcf("Valves", "valves.dcf") + Dcf("None", "valves.dcf") + Id("Zero", 0) +
                  Id("Lost", 9) + Dcf("Lost", "missing.dcf") + Id("Bad", 3) + Dcf("Bad", "broken.dcf") +
                  Id("Sub", 7) + Dcf("Sub", "..\\dcf\\other.dcf"),
              2);
  AddDatabase("b.dbc", "Second", Id("Second", 8), 2);
  AddDatabase("c.dbc", "Elsewhere", Id("Elsewhere", 6), 1);
  std::vector<NSdo::DatabaseNode> nodes;
  ASSERT_EQ(NSdo::BuildDatabaseNodeList(2, nodes), S_OK);
  std::vector<std::string> texts;
  for (const NSdo::DatabaseNode& node : nodes) {
    texts.push_back(std::string(node.name.begin(), node.name.end()) + " " + std::to_string(node.nodeId) +
                    " " + std::to_string(node.objects.size()) + " " + node.description.filename().string());
  }
  EXPECT_THAT(texts, ElementsAre("Valves 5 7 valves.dcf", "Lost 9 0 ", "Bad 3 0 broken.dcf",
                                 "Sub 7 7 other.dcf", "Second 8 0 "));
}

TEST_F(NodeList, ObjectsAndTpdosComeFromTheDescription) {
  AddDatabase("a.dbc", "Valves", Id("Valves", 5) + Dcf("Valves", "valves.dcf"), 1);
  std::vector<NSdo::DatabaseNode> nodes;
  ASSERT_EQ(NSdo::BuildDatabaseNodeList(1, nodes), S_OK);
  ASSERT_EQ(nodes.size(), 1u);
  std::vector<std::string> texts;
  for (const NSdo::NodeObject& object : nodes[0].objects) {
    char place[32];
    std::snprintf(place, sizeof(place), "%X/%u %u%s%s ", unsigned{object.index}, unsigned{object.subindex},
                  static_cast<unsigned>(object.size), object.variableLength ? "v" : "",
                  object.writable ? "w" : "");
    texts.push_back(place + std::string(object.label.begin(), object.label.end()) + "=" +
                    std::string(object.value.begin(), object.value.end()));
  }
  EXPECT_THAT(
      texts, ElementsAre("1000/0 4 (ReadOnly) Device type=0x000F0191", "1008/0 0v (Const) Device name=Valves",
                         "1017/0 2w (ReadWrite) Heartbeat time=500", "1018/0 1 (Const) Highest sub-index=1",
                         "1018/1 4 (ReadOnly) Vendor-ID=0", "1800/0 1 (Const) Highest sub-index=1",
                         "1800/1 4w (ReadWrite) COB-ID=0x185"));
  ASSERT_EQ(nodes[0].tpdos.size(), 1u);
  EXPECT_EQ(nodes[0].tpdos[0].cobId, 0x185u);
  EXPECT_EQ(nodes[0].tpdos[0].number, 0u);
}

TEST_F(NodeList, ADatabaseThatCannotBeOpenedIsAFailure) {
  host->databases.emplace_back(databases / "missing.dbc", 1);
  std::vector<NSdo::DatabaseNode> nodes(1);
  EXPECT_EQ(NSdo::BuildDatabaseNodeList(1, nodes), NSdk::kDatabaseMissing);
  EXPECT_EQ(nodes.size(), 1u) << "the list stays as it is";
  EXPECT_EQ(NSdo::BuildDatabaseNodeList(2, nodes), S_OK);
  EXPECT_THAT(nodes, IsEmpty());
}

}  // namespace
