#include <gmock/gmock.h>

#include "host/runtime/application.h"
#include "host/runtime/persistence.h"
#include "host/runtime/text.h"

namespace {

using NRuntime::ComPtr;

TEST(Text, PassesBothWaysAndReplacesWhatIsMalformed) {
  const std::string text =
      "Stra\xC3\x9F"
      "e \xE2\x82\xAC \xF0\x9F\x9A\x8C";
  EXPECT_EQ(NRuntime::ToUtf8(NRuntime::ToWide(text)), text);
  const std::pair<std::string, std::wstring> malformed[] = {
      {"a\xFFz", L"a\xFFFDz"}, {"\xE2\x82", L"\xFFFD"},     {"\xC0\x80", L"\xFFFD\xFFFD"},
      {"\xC3", L"\xFFFD"},     {"\xED\xA0\x80", L"\xFFFD"}, {"\xE2(", L"\xFFFD("},
  };
  for (const auto& [bytes, wide] : malformed) {
    EXPECT_EQ(NRuntime::ToWide(bytes), wide);
    EXPECT_NO_THROW(NRuntime::PathText(NRuntime::ToPath(bytes)));
  }
  EXPECT_EQ(NRuntime::PathText(NRuntime::ToPath(text)), text);
}

TEST(Settings, KeepTheirOrderAndAnswerForMissingKeys) {
  const auto writer = NRuntime::Make<NRuntime::SettingsWriter>();
  writer->WriteText(L"Name", L"old");
  writer->WriteText(L"CANChannel", L"2");
  writer->WriteText(L"Name", L"new");
  EXPECT_THAT(writer->Written().Entries(),
              testing::ElementsAre(testing::Pair(L"Name", L"new"), testing::Pair(L"CANChannel", L"2")));
  const auto reader = NRuntime::Make<NRuntime::SettingsReader>(writer->Written());
  NRuntime::ReceivedText value;
  EXPECT_EQ(reader->ReadText(L"name", value.Out()), E_FAIL);
  EXPECT_EQ(*value.Out(), nullptr);
  EXPECT_EQ(reader->ReadText(L"Name", value.Out()), S_OK);
  EXPECT_EQ(value.Text(), L"new");
}

TEST(Application, OffersTheSimulationSetupInHalvardOnly) {
  for (const auto variant : {NSdk::kHostHalvard, NSdk::kHostTesmond}) {
    const auto application = NRuntime::Make<NRuntime::Application>(
        NRuntime::ApplicationSettings{variant, 1, 16}, NRuntime::ConfigurationData{{}, {3, 5}, {}});
    void* service = nullptr;
    const HRESULT offered = application->GetService(NSdk::IidOf<NSdk::ISimulationSetup>(), &service);
    EXPECT_EQ(offered, variant == NSdk::kHostHalvard ? S_OK : E_NOINTERFACE);
    const auto networks = ComPtr<NSdk::ISimulationSetup>::Own(static_cast<NSdk::ISimulationSetup*>(service));
    if (!networks) continue;
    std::uint32_t channel = 0;
    NRuntime::ReceivedText name;
    EXPECT_EQ(networks->GetNetwork(1, name.Out(), &channel), S_OK);
    EXPECT_EQ(channel, 5u);
    EXPECT_EQ(networks->GetNetwork(2, name.Out(), &channel), E_INVALIDARG);
  }
}

class SettingsSink final : public NRuntime::Implements<NSdk::ISettingEvents> {
 public:
  HRESULT STDMETHODCALLTYPE OnSettingsChanged() override { return ++told, S_OK; }
  int told = 0;
};

TEST(Application, TellsSubscribersUntilTheyWithdraw) {
  const auto application =
      NRuntime::Make<NRuntime::Application>(NRuntime::ApplicationSettings{}, NRuntime::ConfigurationData{});
  ComPtr<NSdk::IEventSource> source;
  ASSERT_EQ(application->FindEventSource(NSdk::IidOf<NSdk::ISettingEvents>(), source.Out()), S_OK);
  const auto sink = NRuntime::Make<SettingsSink>();
  std::uint32_t cookie = 0;
  EXPECT_EQ(source->Advise(application.Get(), &cookie), E_NOINTERFACE);
  ASSERT_EQ(source->Advise(sink.Get(), &cookie), S_OK);
  application->SettingEvents().Tell(&NSdk::ISettingEvents::OnSettingsChanged);
  EXPECT_EQ(source->Unadvise(cookie), S_OK);
  EXPECT_EQ(source->Unadvise(cookie), E_INVALIDARG);
  application->SettingEvents().Tell(&NSdk::ISettingEvents::OnSettingsChanged);
  EXPECT_EQ(sink->told, 1);
}

TEST(Commands, GroupsTakeRegisteredCommandsOnly) {
  const auto registry = NRuntime::Make<NRuntime::CommandRegistry>();
  const auto groups = NRuntime::Query<NSdk::ICommandGroups>(registry);
  ComPtr<NSdk::ICommandGroup> group, same;
  ASSERT_EQ(groups->CreateGroup(L"CANopen", L"CANopen", group.Out()), S_OK);
  EXPECT_EQ(groups->CreateGroup(L"CANopen", L"again", same.Out()), E_FAIL);
  EXPECT_EQ(group->AddCommand(L"Tool.Missing"), E_INVALIDARG);
  EXPECT_EQ(groups->RemoveGroup(L"CANopen"), S_OK);
  EXPECT_EQ(group->AddCommand(L"Tool.Missing"), E_FAIL);  // the group is gone, its object is not
}

}  // namespace
