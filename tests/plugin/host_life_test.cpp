// The life of a host with the module, from loading to unloading, in both variants.

#include <gmock/gmock.h>

#include <fstream>

#include "host/runtime/shared_library.h"
#include "sdk/class_ids.h"
#include "sdk/scanner.h"
#include "tests/plugin/host.h"
#include "tests/test_folder.h"

namespace {

using namespace std::chrono_literals;
using NRuntime::ComPtr;
using NTest::Host;
using testing::ElementsAre;
using testing::IsEmpty;

class CommandList final : public NRuntime::Implements<NSdk::ICommandList> {
 public:
  HRESULT STDMETHODCALLTYPE AppendCommand(const wchar_t* name) override {
    names.emplace_back(name);
    return S_OK;
  }
  std::vector<std::wstring> names;
};

class Selection final : public NRuntime::Implements<NSdk::ISelectionContext> {
 public:
  explicit Selection(std::vector<ComPtr<IUnknown>> selected) : mSelected(std::move(selected)) {}
  HRESULT STDMETHODCALLTYPE GetSelectedCount(std::uint32_t* count) override {
    return NRuntime::HandOut(static_cast<std::uint32_t>(mSelected.size()), count);
  }
  HRESULT STDMETHODCALLTYPE GetSelected(std::uint32_t position, IUnknown** item) override {
    return ComPtr<IUnknown>(mSelected[position]).MoveTo(item);
  }

 private:
  std::vector<ComPtr<IUnknown>> mSelected;
};

template <class Interface>
class SetupItem final : public NRuntime::Implements<Interface> {
 public:
  explicit SetupItem(std::uint32_t type) : mType(type) {}
  HRESULT STDMETHODCALLTYPE GetItemType(std::uint32_t* type) override {
    *type = mType;
    return S_OK;
  }

 private:
  std::uint32_t mType;
};

constexpr NSdk::HostVariant kBothVariants[] = {NSdk::kHostHalvard, NSdk::kHostTesmond};

// ---- the commands

struct Row {
  std::wstring name, caption, toolTip;
  std::uint32_t bitmap, smallIcon, largeIcon, state;
};

std::ostream& operator<<(std::ostream& stream, const Row& row) {
  return stream << testing::PrintToString(row.name) << " " << testing::PrintToString(row.caption) << " "
                << testing::PrintToString(row.toolTip) << " " << row.bitmap << " " << row.smallIcon << " "
                << row.largeIcon << " " << row.state;
}
bool operator==(const Row& left, const Row& right) {
  return left.name == right.name && left.caption == right.caption && left.toolTip == right.toolTip &&
         left.bitmap == right.bitmap && left.smallIcon == right.smallIcon &&
         left.largeIcon == right.largeIcon && left.state == right.state;
}

// By kind: name, caption for one node, images.
const struct {
  const wchar_t* name;
  const wchar_t* caption;
  std::uint32_t bitmap, smallIcon, largeIcon;
} kKinds[] = {{L"Operational", L"Send CANopen NMT Operational", 794, 248, 249},
              {L"Preoperational", L"Send CANopen NMT Preoperational", 795, 250, 251},
              {L"Stop", L"Send CANopen NMT Stop", 796, 254, 255},
              {L"Reset", L"Send CANopen NMT Reset", 797, 252, 253}};

std::vector<Row> ExpectedCommands() {
  const std::wstring tip = L"Insert/activate CANopen IG to enable this button";
  const std::wstring insertGenerator = L"Insert CANopen Interactive Generator Block";
  std::vector<Row> rows = {
      {L"Tool.Brackwell", L"Brackwell", L"Brackwell", 228, 258, 259, 1},
      {L"Tool.Quillon", L"Quillon", L"Quillon", 773, 256, 257, 1},
      {L"Insert.CANopenScanner", L"Insert CANopen Scanner",
       L"Insert a CANopen Scanner into measurement setup", 0, 0, 0, 1},
      {L"Insert.CANopenIG", insertGenerator, insertGenerator, 0, 0, 0, 1},
      {L"CANopen.NetworkManagement", L"CANopen NMT Management", L"CANopen NMT Management", 0, 0, 0, 0}};
  for (int network = 1; network <= 4; ++network) {
    for (const auto& kind : kKinds) {
      const std::wstring base = std::wstring(L"CANopen.") + kind.name;
      const std::wstring number = L"." + std::to_wstring(network);
      rows.push_back(
          {base + L".All" + number, L"All nodes", tip, kind.bitmap, kind.smallIcon, kind.largeIcon, 0});
      rows.push_back(
          {base + L".Nodes" + number, L"Nodes", tip, kind.bitmap, kind.smallIcon, kind.largeIcon, 0});
    }
  }
  for (int slot = 1; slot <= 10; ++slot) {
    for (const auto& kind : kKinds) {
      rows.push_back({std::wstring(L"CANopen.") + kind.name + L"." + std::to_wstring(slot), kind.caption, tip,
                      kind.bitmap, kind.smallIcon, kind.largeIcon, 2});
    }
  }
  return rows;
}

std::vector<std::wstring> ExpectedGroup() {
  std::vector<std::wstring> names = {L"Tool.Quillon", L"Tool.Brackwell", L"CANopen.NetworkManagement"};
  const std::vector<Row> rows = ExpectedCommands();
  for (std::size_t position = 5; position < 5 + 32; ++position) names.push_back(rows[position].name);
  for (std::size_t kind = 0; kind < 4; ++kind) {
    for (std::size_t slot = 0; slot < 10; ++slot) names.push_back(rows[5 + 32 + slot * 4 + kind].name);
  }
  return names;
}

TEST(HostLife, CommandsAreThoseOfTheTable) {
  Host host(NSdk::kHostHalvard);
  std::vector<Row> rows;
  for (const auto& [name, action] : host.application->Commands().Commands()) {
    NRuntime::ReceivedText caption, toolTip;
    Row row{name, {}, {}, 9, 9, 9, 9};
    EXPECT_EQ(action->GetCaption(caption.Out()), S_OK);
    EXPECT_EQ(action->GetToolTip(toolTip.Out()), S_OK);
    EXPECT_EQ(action->GetImages(&row.bitmap, &row.smallIcon, &row.largeIcon), S_OK);
    EXPECT_EQ(action->GetState(&row.state), S_OK);
    const bool tool = row.name.starts_with(L"Tool.");
    EXPECT_EQ(action->GetState(nullptr), tool ? S_OK : E_POINTER);
    row.caption = caption.Text();
    row.toolTip = toolTip.Text();
    rows.push_back(std::move(row));
  }
  EXPECT_EQ(rows, ExpectedCommands());
  ASSERT_EQ(host.application->Commands().Groups().count(L"CANopen"), 1u);
  EXPECT_EQ(host.application->Commands().Groups().at(L"CANopen").caption, L"CANopen");
  EXPECT_EQ(host.application->Commands().Groups().at(L"CANopen").commands, ExpectedGroup());
}

TEST(HostLife, BlockTypesByVariant) {
  const auto types = [](NSdk::HostVariant variant) {
    const Host host(variant);
    std::vector<std::wstring> texts;
    for (const auto& type : host.application->BlockTypes().Types()) {
      texts.push_back(type.progId + L"/" + type.displayName + L"/" + std::to_wstring(type.category) + L"/" +
                      std::to_wstring(type.image) + L"/" + std::to_wstring(type.flags));
    }
    return texts;
  };
  const std::wstring generator = L"HarlowPlugIn.CANopenIG/CANopen Interactive Generator Block/1/15/1";
  const std::wstring scanner = L"HarlowPlugIn.CANopenScanner/CANopen Scanner/2/14/1";
  EXPECT_THAT(types(NSdk::kHostHalvard), ElementsAre(generator, scanner));
  EXPECT_THAT(types(NSdk::kHostTesmond), ElementsAre(scanner));
}

// ---- measuring

TEST(HostLife, BlocksAreInsertedAndCommandsReachTheBus) {
  for (const NSdk::HostVariant variant : kBothVariants) {
    Host host(variant);
    host.Execute(L"Insert.CANopenScanner");
    host.Execute(L"Insert.CANopenIG");
    ASSERT_EQ(host.setup->Blocks().size(), 2u);
    EXPECT_TRUE(NRuntime::Query<NSdk::IScanner>(host.setup->Blocks()[0]));

    host.measurement.Start(host.setup->Blocks());
    EXPECT_EQ(host.State(L"Insert.CANopenIG"), 0u);
    host.application->Commands().CommandsShown();
    EXPECT_EQ(host.State(L"CANopen.Stop.All.1"), 0u);
    EXPECT_EQ(host.State(L"CANopen.Stop.Nodes.2"), 2u);
    host.Execute(L"CANopen.Operational.All.1");
    host.Execute(L"CANopen.Preoperational.All.1");
    host.Execute(L"CANopen.Stop.All.1");
    host.Execute(L"CANopen.Reset.All.1");
    EXPECT_THAT(host.TakeFrames(),
                ElementsAre("can1 000#0100", "can1 000#8000", "can1 000#0200", "can1 000#8100"));
    host.dialogs->picked = {3, 127};
    host.Execute(L"CANopen.Stop.Nodes.1");
    host.dialogs->picked = {};
    host.Execute(L"CANopen.Reset.Nodes.1");
    EXPECT_THAT(host.TakeFrames(), ElementsAre("can1 000#0203", "can1 000#027F"));

    // A network that nothing sends on, one that the host has not, and a slot without a node.
    EXPECT_THAT(host.dialogs->messages, IsEmpty());
    host.Execute(L"CANopen.Stop.All.2");
    host.Execute(L"CANopen.Stop.All.3");
    host.Execute(L"CANopen.Stop.1");
    EXPECT_THAT(host.TakeFrames(), IsEmpty());
    ASSERT_EQ(host.dialogs->messages.size(), 1u);
    const std::wstring& message = host.dialogs->messages[0];
    EXPECT_THAT(message,
                testing::StartsWith(variant == NSdk::kHostHalvard
                                        ? L"CANopen NMT message cannot be transmitted because the network \""
                                        : L"CANopen NMT message cannot be transmitted on the CAN channel "
                                          L"\"CAN2\""));

    host.measurement.Stop();
    EXPECT_EQ(host.State(L"Insert.CANopenIG"), 1u);
    host.application->Commands().CommandsShown();
    EXPECT_EQ(host.State(L"CANopen.Stop.All.1"), 2u);
  }
}

TEST(HostLife, NodesOfTheDatabasesHaveCommandsOfTheirOwn) {
  const NTest::TestFolder folder;
  const auto database = folder / "net.dbc";
  std::ofstream stream(database);
  stream << "VERSION \"\"\nBU_: A B C D E F G H I J K\nBA_DEF_ BU_ \"CO_ID\" INT 0 127;\n";
  for (int node = 0; node < 11; ++node) {
    stream << "BA_ \"CO_ID\" BU_ " << static_cast<char>('A' + node) << " " << 20 - node << ";\n";
  }
  stream.close();
  Host host(NSdk::kHostHalvard, 1, 1, database);
  const auto caption = [&](const wchar_t* name) {
    NRuntime::ReceivedText text;
    host.application->Commands().FindCommand(name)->GetCaption(text.Out());
    return text.Text();
  };
  host.Execute(L"Insert.CANopenIG");
  host.measurement.Start(host.setup->Blocks());
  host.application->Commands().CommandsShown();
  EXPECT_EQ(host.State(L"CANopen.Stop.1"), 0u);
  EXPECT_EQ(caption(L"CANopen.Stop.1"), L"A (ID 20)");
  EXPECT_EQ(caption(L"CANopen.Reset.10"), L"J (ID 11)");
  host.Execute(L"CANopen.Stop.1");
  host.Execute(L"CANopen.Reset.10");
  // The eleventh is reached by the command for chosen nodes; the database's nodes stand first there.
  host.dialogs->picked = {10};
  host.Execute(L"CANopen.Operational.Nodes.1");
  EXPECT_THAT(host.TakeFrames(), ElementsAre("can1 000#0214", "can1 000#810B", "can1 000#010A"));
  EXPECT_EQ(host.dialogs->offered.size(), 127u);
  EXPECT_THAT(std::vector<std::uint8_t>(host.dialogs->offered.begin(), host.dialogs->offered.begin() + 12),
              ElementsAre(20, 19, 18, 17, 16, 15, 14, 13, 12, 11, 10, 1));
  host.measurement.Stop();
  host.application->Commands().CommandsShown();
  EXPECT_EQ(host.State(L"CANopen.Stop.1"), 2u);
  EXPECT_EQ(caption(L"CANopen.Stop.1"), L"Send CANopen NMT Stop");
}

TEST(HostLife, ContextMenuOffersWhatFitsTheSelection) {
  using SendItem = SetupItem<NSdk::ISendLineItem>;
  using SimulationItem = SetupItem<NSdk::ISimulationItem>;
  const auto offered = [](NSdk::HostVariant variant, std::vector<ComPtr<IUnknown>> selected,
                          std::uint32_t channels = 1) {
    Host host(variant, channels);
    const auto list = NRuntime::Make<CommandList>();
    const auto selection = NRuntime::Make<Selection>(std::move(selected));
    const auto extensions = NRuntime::Query<NSdk::IPlugInExtensions>(host.module.Create(NSdk::kProgIdPlugIn));
    EXPECT_EQ(extensions->AddContextCommands(NSdk::IidOf<NSdk::ICommandList>(), list.Get(), selection.Get()),
              S_OK);
    std::wstring text;
    for (const std::wstring& name : list->names) text += name + L";";
    return text;
  };
  const ComPtr<IUnknown> other(NRuntime::Make<CommandList>().Get());
  const ComPtr<IUnknown> hotSpot(NRuntime::Make<SendItem>(NSdk::kSetupItemHotSpot).Get());
  const ComPtr<IUnknown> branch(NRuntime::Make<SendItem>(NSdk::kSetupItemBranch).Get());
  const ComPtr<IUnknown> network(NRuntime::Make<SimulationItem>(NSdk::kSetupItemBlock).Get());
  EXPECT_EQ(offered(NSdk::kHostHalvard, {other}), L"Insert.CANopenScanner;");
  EXPECT_EQ(offered(NSdk::kHostHalvard, {other, other}), L"");
  EXPECT_EQ(offered(NSdk::kHostHalvard, {}), L"");
  EXPECT_EQ(offered(NSdk::kHostHalvard, {other}, 0), L"");
  EXPECT_EQ(offered(NSdk::kHostTesmond, {hotSpot}), L"Insert.CANopenIG;");
  EXPECT_EQ(offered(NSdk::kHostTesmond, {branch}), L"");
  EXPECT_EQ(offered(NSdk::kHostTesmond, {network}), L"");
  EXPECT_EQ(offered(NSdk::kHostHalvard, {hotSpot}), L"");
}

TEST(HostLife, TheManagementCommandNeedsACanChannel) {
  for (const std::uint32_t channels : {0u, 1u}) {
    Host host(NSdk::kHostHalvard, channels);
    const auto events = NRuntime::Query<NSdk::IApplicationEvents>(host.module.Create(NSdk::kProgIdPlugIn));
    EXPECT_EQ(host.State(L"CANopen.NetworkManagement"), 0u);
    EXPECT_EQ(events->OnConfigurationChanged(), S_OK);
    EXPECT_EQ(host.State(L"CANopen.NetworkManagement"), channels == 0 ? 2u : 0u);
  }
}

TEST(HostLife, LanguageAndVersion) {
  Host host(NSdk::kHostHalvard, 1, 42);
  ASSERT_EQ(host.dialogs->messages.size(), 1u);
  EXPECT_THAT(host.dialogs->messages[0],
              testing::StartsWith(L"Error while loading resource DLL 'Ostrel_42."));
  const auto version = NRuntime::Query<NSdk::IVersion>(host.module.Create(NSdk::kProgIdPlugIn));
  std::uint32_t numbers[3] = {99, 99, 99};
  NRuntime::ReceivedText product, description, none;
  EXPECT_EQ(version->GetVersion(&numbers[0], &numbers[1], &numbers[2]), S_OK);
  EXPECT_EQ(std::to_string(numbers[0]) + "." + std::to_string(numbers[1]) + "." + std::to_string(numbers[2]),
            OSTREL_VERSION);
  EXPECT_EQ(version->GetProductName(product.Out()), S_OK);
  EXPECT_EQ(product.Text(), L"Ostrel");
  EXPECT_EQ(version->GetDescription(description.Out()), S_OK);
  EXPECT_EQ(description.Text(), L"CANopen plug-in module");
  EXPECT_EQ(version->GetReleaseNotes(none.Out()), E_NOTIMPL);
}

TEST(HostLife, SpeaksGermanByTheLibraryBesideTheModule) {
  Host host(NSdk::kHostHalvard, 1, 7);
  EXPECT_TRUE(host.dialogs->messages.empty());
  NRuntime::ReceivedText caption;
  ASSERT_EQ(host.application->Commands().FindCommand(L"Insert.CANopenScanner")->GetCaption(caption.Out()),
            S_OK);
  EXPECT_EQ(caption.Text(), L"CANopen-Scanner einf\u00FCgen");
}

TEST(HostLife, AHundredLivesLeaveNothingBehind) {
  for (int life = 0; life < 100; ++life) {
    const NRuntime::SharedLibrary library(OSTREL_MODULE);
    const auto canUnload = library.Find<NSdk::DllCanUnloadNowFunction>("DllCanUnloadNow");
    {
      Host host(kBothVariants[life % 2]);
      host.Execute(L"Insert.CANopenScanner");
      host.Execute(L"Insert.CANopenIG");
      host.measurement.Start(host.setup->Blocks());
      host.Execute(L"CANopen.Stop.All.1");
      host.loop.RunFor(300ms);
      host.measurement.Stop();
      EXPECT_THAT(host.TakeFrames(), ElementsAre("can1 000#0200"));
      EXPECT_EQ(canUnload(), S_FALSE);
    }
    EXPECT_EQ(canUnload(), S_OK);
  }
}

}  // namespace
