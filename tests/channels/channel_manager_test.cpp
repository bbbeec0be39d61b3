#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "channels/channel_manager.h"
#include "tests/channels/database_host.h"
#include "tests/test_folder.h"

namespace {

using NChannels::Channel;
using testing::ElementsAre;

// A network's attribute in a DBC file.
std::string Number(const std::string& name, int value) {
  return "BA_DEF_ \"" + name + "\" INT 0 65535;\nBA_ \"" + name + "\" " + std::to_string(value) + ";\n";
}
std::string Text(const std::string& value) {
  return "BA_DEF_ \"ProtocolType\" STRING ;\nBA_ \"ProtocolType\" \"" + value + "\";\n";
}

class ChannelManager : public testing::Test {
 protected:
  ChannelManager() { NCommon::SetHostApplication(host.Get()); }
  ~ChannelManager() override {
    NChannels::ReleaseChannelManager();
    EXPECT_FALSE(host->sink) << "the host is let go";
    NCommon::SetHostApplication(nullptr);
  }

  void AddDatabase(const std::string& attributes, std::uint32_t channel) {
    const auto path = folder / ("db" + std::to_string(host->databases.size()) + ".dbc");
    std::ofstream(path) << "VERSION \"\"\n\nBU_: N1\n\n" << attributes;
    host->databases.emplace_back(path, channel);
  }

  /// "CAN 2 (CANopen) J": every channel with its name and further flags, by first letter.
  static std::vector<std::string> Channels() {
    NChannels::ZChannelManager& manager = NChannels::TheChannelManager();
    manager.Refresh();
    std::vector<std::string> texts;
    const std::uint32_t count = manager.ChannelCount();
    for (std::uint32_t position = 0; position < count; ++position) {
      const Channel& channel = manager.At(position);
      const std::wstring name = NChannels::DisplayName(channel);
      texts.emplace_back(name.begin(), name.end());
      if (channel.j1939) texts.back() += " J";
      if (channel.deviceNet) texts.back() += " D";
      if (channel.aerospace) texts.back() += " A";
      if (channel.nmea) texts.back() += " N";
    }
    return texts;
  }

  const NTest::TestFolder folder;
  NCom::ComPtr<NTest::DatabaseHost> host = NCom::Make<NTest::DatabaseHost>();
};

TEST_F(ChannelManager, TheFirstAttributeThatADatabaseHasDecides) {
  const struct {
    std::string attributes;
    const char* channel;
  } rows[] = {
      {Number("IsCANopen", 1), "CAN 3 (CANopen)"},
      {Number("IsCANopen", 1) + Number("J1939PGN", 0), "CAN 3"},
      {Number("IsCANopen", 0) + Text("CANopen"), "CAN 3"},
      {Number("IsNMEA", 1) + Number("J1939PGN", 5), "CAN 3 J"},
      {Number("IsDeviceNet", 1), "CAN 3 D"},
      {Number("IsAerospace", 1) + Number("IsNMEA", 1), "CAN 3 A"},
      {Text("canopensafety"), "CAN 3 (CANopen)"},
      {Text("ISO11783"), "CAN 3 J"},
      {Text("nmea2000"), "CAN 3 N"},
      {Text("CANopen "), "CAN 3"},
      {"", "CAN 3"},
  };
  host->channels = {3};
  for (const auto& row : rows) {
    host->databases.clear();
    AddDatabase(row.attributes, 3);
    if (host->sink) host->sink->OnDatabaseSetupChanged();
    EXPECT_THAT(Channels(), ElementsAre(row.channel)) << row.attributes;
  }
}

TEST_F(ChannelManager, DatabasesOfAChannelAddUpAndAreReadOncePerChange) {
  host->channels = {4, 1, 2};
  AddDatabase(Number("IsCANopen", 1), 2);
  host->databases.emplace_back(folder / "missing.dbc", 1);
  AddDatabase(Number("J1939PGN", 1), 2);
  AddDatabase(Number("IsNMEA", 1), NSdk::kUnknownChannel);
  AddDatabase(Number("IsNMEA", 1), 9);  // a channel that is not there
  EXPECT_THAT(Channels(), ElementsAre("CAN 4", "CAN 1", "CAN 2 (CANopen) J"));

  const int queries = host->queries;
  host->databases.clear();
  EXPECT_THAT(Channels(), ElementsAre("CAN 4", "CAN 1", "CAN 2 (CANopen) J"));
  EXPECT_EQ(host->queries, queries);
  host->channels = {2, 4, 1};
  EXPECT_THAT(Channels(), ElementsAre("CAN 2 (CANopen) J", "CAN 4", "CAN 1")) << "marks follow their channel";
  host->channels = {4, 1, 2};
  host->sink->OnDatabaseSetupChanged();
  EXPECT_THAT(Channels(), ElementsAre("CAN 4", "CAN 1", "CAN 2"));

  host->channels.assign(40, 5);
  EXPECT_EQ(Channels().size(), 33u);
  host->channels.clear();
  EXPECT_THAT(Channels(), ElementsAre());
}

}  // namespace
