// Configurations as files: how they are saved, refused and moved.

#include <gmock/gmock.h>

#include <fstream>

#include "host/buses/bus_name.h"
#include "host/configuration/document_paths.h"
#include "tests/test_folder.h"

namespace {

using namespace NConfiguration;
using std::filesystem::path;
using testing::HasSubstr;

class ConfigurationFile : public testing::Test {
 protected:
  void SetUp() override { std::filesystem::create_directories(folder / "sub"); }

  std::ptrdiff_t CountFiles() const {
    return std::distance(std::filesystem::directory_iterator(folder), {}) - 1;  // "sub" is none
  }

  const NTest::TestFolder folder;
  const path file = folder / path(u8"größe.json");
};

template <class Action>
std::string Refusal(Action action) {
  try {
    action();
  } catch (const std::runtime_error& error) {
    EXPECT_EQ(std::string(error.what()).find('\n'), std::string::npos);
    return error.what();
  }
  ADD_FAILURE() << "not refused";
  return {};
}

Document SmallDocument() {
  Document document;
  document.channels = {{1, "replay:sub\\a.log,iface=can0", {}, {"net.dbc", path("sub") / "b.dbc"}},
                       {2, "virtual"}};
  document.devices = {{1, NDevices::ParseDeviceWord("5:sub/it.dcf")}, {2, NDevices::ParseDeviceWord("5")}};
  return document;
}

TEST_F(ConfigurationFile, ReplacesAnOlderOneInOneStep) {
  NTest::WriteFile(file, "old");
  std::filesystem::permissions(file,
                               std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  const auto rights = std::filesystem::status(file).permissions();
  Save(SmallDocument(), file);
  EXPECT_EQ(Load(file), SmallDocument());
  EXPECT_EQ(std::filesystem::status(file).permissions(), rights);
  EXPECT_EQ(CountFiles(), 1);
}

TEST_F(ConfigurationFile, StaysAsItIsWhenANewOneCannotBeSaved) {
  NTest::WriteFile(file, "old");
  Document twice = SmallDocument();
  twice.channels[1].number = 1;
  EXPECT_THAT(Refusal([&] { Save(twice, file); }),
              HasSubstr("cannot be saved: /channels/1/number: channel 1"));
  Document sameKey = SmallDocument();
  sameKey.blocks = {{"x", {{"Name", "a"}, {"Name", "b"}}}};
  EXPECT_THAT(Refusal([&] { Save(sameKey, file); }), HasSubstr("twice"));
  Document noText = SmallDocument();
  noText.blocks = {{"x", {{"Name", "\xFF"}}}};
  EXPECT_THAT(Refusal([&] { Save(noText, file); }), HasSubstr("no UTF-8 text"));
  EXPECT_EQ(NTest::ReadFile(file), "old");
  EXPECT_THAT(Refusal([&] { Save(SmallDocument(), folder / "sub"); }), HasSubstr("sub: cannot be saved"));
  EXPECT_THAT(Refusal([&] { Save(SmallDocument(), folder / "none" / "x.json"); }),
              HasSubstr("x.json: cannot"));
  EXPECT_EQ(CountFiles(), 1);
}

TEST_F(ConfigurationFile, IsRefusedWithThePlaceAndLeftUntouched) {
  const std::string text = "{\n  \"format\": 1,\n  \"a\\u001Bb\": [{}],\n";
  NTest::WriteFile(file, text);
  EXPECT_THAT(Refusal([&] { Load(file); }), HasSubstr(".json:4:1: unexpected end of input"));
  EXPECT_EQ(NTest::ReadFile(file), text);
  NTest::WriteFile(file, text + "  \"language\": 0\n}\n");
  const LoadedDocument loaded = Inspect(file);
  EXPECT_EQ(loaded.faults.size(), 5u);
  EXPECT_THAT(loaded.faults, testing::Contains(HasSubstr(".json:3: unknown key \"a?b\"")));
  EXPECT_THAT(loaded.faults, testing::Contains(HasSubstr(".json:4: /language: 0 is not in the range")));
  NTest::WriteFile(file, std::string(5 << 20, ' '));
  EXPECT_THAT(Refusal([&] { Load(file); }), HasSubstr(".json: more than 4 MiB"));
  EXPECT_THAT(Refusal([&] { Load(folder); }), HasSubstr("a directory"));
  EXPECT_THAT(Refusal([&] { Load(folder / "none.json"); }), HasSubstr("none.json: no such file"));
}

TEST_F(ConfigurationFile, FindsItsFilesFromWhereverItIs) {
  NTest::WriteFile(folder / "sub" / "a.log", "");
  NTest::WriteFile(folder / "net.dbc", "");
  const Document resolved = Resolved(SmallDocument(), FolderOf(file));
  EXPECT_EQ(resolved.channels[0].databases[0], folder / "net.dbc");
  EXPECT_EQ(resolved.channels[1].bus, "virtual");
  EXPECT_EQ(path(resolved.devices[0].device.description), folder / "sub" / "it.dcf");
  EXPECT_EQ(resolved.devices[1].device.description, "");
  // The folder has a comma in its name.
  const NBuses::BusName bus = NBuses::ParseBusName(resolved.channels[0].bus);
  EXPECT_TRUE(std::filesystem::exists(bus.address)) << bus.address;
  EXPECT_EQ(bus.options, (std::vector<NBuses::BusName::Option>{{"iface", "can0"}}));
}

TEST_F(ConfigurationFile, ForAnotherFolderNamesTheSameFiles) {
  Document document = SmallDocument();
  document.channels[0].databases.push_back(folder / "whole.dbc");
  const Document moved = Moved(document, folder, folder / "sub");
  EXPECT_EQ(moved.channels[0].databases,
            (std::vector<path>{path("..") / "net.dbc", "b.dbc", folder / "whole.dbc"}));
  EXPECT_EQ(moved.channels[0].bus, "replay:a.log,iface=can0");
  EXPECT_EQ(moved.devices[0].device.description, "it.dcf");
  EXPECT_EQ(Resolved(moved, folder / "sub"), Resolved(document, folder));
  EXPECT_EQ(Moved(document, folder, folder), document);
}

}  // namespace
