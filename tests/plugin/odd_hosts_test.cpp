// Hosts that are not alone in their process, that leave without a word, or that give the module nothing.

#include <gmock/gmock.h>

#include <cstdlib>

#include "host/runtime/shared_library.h"
#include "sdk/class_ids.h"
#include "sdk/database_nodes.h"
#include "sdk/generator.h"
#include "sdk/persistence.h"
#include "sdk/scanner.h"
#include "tests/plugin/host.h"
#include "tests/test_folder.h"

namespace {

using NRuntime::ComPtr;
using NTest::Host;
using testing::ElementsAre;
using testing::IsEmpty;

HRESULT CanUnload(const std::filesystem::path& file) {
  const NRuntime::SharedLibrary library(file);
  return library.Find<NSdk::DllCanUnloadNowFunction>("DllCanUnloadNow")();
}

TEST(TwoHosts, WithACopyOfTheModuleEachDoNotMeet) {
  const NTest::TestFolder folder;
  const auto copy = folder / "Copy.hpi";
  std::filesystem::copy_file(OSTREL_MODULE, copy, std::filesystem::copy_options::overwrite_existing);
  {
    Host first(NSdk::kHostHalvard);
    {
      Host second(NSdk::kHostTesmond, 1, 1, {}, copy);
      EXPECT_EQ(first.application->BlockTypes().Types().size(), 2u);
      EXPECT_EQ(second.application->BlockTypes().Types().size(), 1u);
      for (Host* host : {&first, &second}) {
        host->Execute(L"Insert.CANopenIG");
        host->measurement.Start(host->setup->Blocks());
      }
      first.Execute(L"CANopen.Stop.All.1");
      second.Execute(L"CANopen.Reset.All.1");
      EXPECT_THAT(first.TakeFrames(), ElementsAre("can1 000#0200"));
      EXPECT_THAT(second.TakeFrames(), ElementsAre("can1 000#8100"));
    }
    first.Execute(L"CANopen.Stop.All.1");
    EXPECT_THAT(first.TakeFrames(), ElementsAre("can1 000#0200"));
  }
  EXPECT_EQ(CanUnload(OSTREL_MODULE), S_OK);
  EXPECT_EQ(CanUnload(copy), S_OK);
}

// There is one plug-in object: it belongs to the host that was the last to come.
TEST(TwoHosts, WithOneModuleTheLastOneHasIt) {
  {
    Host first(NSdk::kHostHalvard);
    Host second(NSdk::kHostHalvard);
    EXPECT_THAT(first.application->Commands().Commands(), IsEmpty());
    second.Execute(L"Insert.CANopenIG");
    second.measurement.Start(second.setup->Blocks());
    second.Execute(L"CANopen.Stop.All.1");
    EXPECT_THAT(second.TakeFrames(), ElementsAre("can1 000#0200"));
    first.module.Initialise(*first.application);  // comes back
    EXPECT_THAT(second.application->Commands().Commands(), IsEmpty());
    first.Execute(L"Insert.CANopenScanner");
  }
  EXPECT_EQ(CanUnload(OSTREL_MODULE), S_OK);
}

TEST(HostThatLeaves, WithoutShuttingDownKeepsTheModuleUntilTheNextOne) {
  const NRuntime::SharedLibrary library(OSTREL_MODULE);
  NRuntime::Module module(OSTREL_MODULE);
  {
    const auto application = NRuntime::Make<NRuntime::Application>(NRuntime::ApplicationSettings{},
                                                                   NRuntime::ConfigurationData{{}, {1}, {}});
    const auto plugIn = NRuntime::Query<NSdk::IPlugIn>(module.Create(NSdk::kProgIdPlugIn));
    EXPECT_EQ(plugIn->Initialise(application.Get()), S_OK);
  }
  EXPECT_EQ(CanUnload(OSTREL_MODULE), S_FALSE);  // its commands are still registered
  {
    Host next(NSdk::kHostHalvard);
    next.Execute(L"Insert.CANopenIG");
  }
  EXPECT_EQ(CanUnload(OSTREL_MODULE), S_OK);
}

// The program ends in the middle of a measurement: what the module has of the host is still there, then its
// own library goes.
TEST(HostThatLeaves, ByEndingTheProgramDoesNotCrash) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        static Host* host = new Host(NSdk::kHostHalvard);
        host->Execute(L"Insert.CANopenScanner");
        host->Execute(L"Insert.CANopenIG");
        host->measurement.Start(host->setup->Blocks());
        host->Execute(L"CANopen.Stop.All.1");
        host->application->Commands().CommandsShown();
        std::exit(host->TakeFrames().size() == 1 ? 7 : 8);
      },
      testing::ExitedWithCode(7), "");
}

// Answers everything and gives nothing.
class EmptyHost final
    : public NRuntime::Implements<NSdk::IHostApplication, NSdk::IBlockSite, NSdk::IRuntime> {
 public:
  HRESULT STDMETHODCALLTYPE GetLanguage(std::uint32_t* language) override { return *language = 1, S_OK; }
  HRESULT STDMETHODCALLTYPE GetNumberBase(std::uint32_t*) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE GetVariant(std::uint32_t*) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE IsMeasuring(std::uint32_t*) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE GetService(REFIID, void** service) override { return *service = nullptr, result; }
  HRESULT STDMETHODCALLTYPE FindEventSource(REFIID, NSdk::IEventSource** source) override {
    return *source = nullptr, result;
  }
  HRESULT STDMETHODCALLTYPE GetApplication(NSdk::IHostApplication** application) override {
    return *application = nullptr, result;
  }
  HRESULT STDMETHODCALLTYPE BlockChanged() override { return result; }
  HRESULT STDMETHODCALLTYPE CreateTimer(NSdk::ITimerSink*, NSdk::ITimer** timer) override {
    return *timer = nullptr, result;
  }
  HRESULT STDMETHODCALLTYPE GetCanOutput(std::uint32_t, NSdk::ICANOutput** output) override {
    return *output = nullptr, result;
  }
  HRESULT STDMETHODCALLTYPE GetTime(std::int64_t*) override { return result; }

  HRESULT result = S_OK;
};

TEST(HostWithNothing, IsTakenAsItIs) {
  NRuntime::Module module(OSTREL_MODULE);
  const auto host = NRuntime::Make<EmptyHost>();
  for (const HRESULT result : {S_OK, E_FAIL}) {
    host->result = result;
    module.Initialise(*host);
    for (const char* progId : {NSdk::kProgIdCANopenIG, NSdk::kProgIdCANopenScanner}) {
      const auto object = module.Create(progId);
      const auto block = NRuntime::Query<NSdk::IPlugInBlock>(object);
      const auto client = NRuntime::Query<NSdk::IRTClient>(object);
      client->StartMeasurement(host.Get());  // before it has its place
      client->StopMeasurement();
      EXPECT_EQ(block->Attach(host.Get()), S_OK);
      client->StartMeasurement(host.Get());
      client->StartMeasurement(host.Get());
      if (const auto generator = NRuntime::Query<NSdk::IGenerator>(object)) {
        EXPECT_EQ(generator->ReloadSequence(), S_FALSE);
        generator->LoadSequence(L"" OSTREL_SOURCE_DIR "/examples/first-steps.seq", nullptr);
        generator->ToggleCyclic();
        generator->ToggleSequence();
      }
      client->StopMeasurement();
      client->StopMeasurement();
      EXPECT_EQ(block->Detach(), S_OK);
      EXPECT_EQ(block->Detach(), S_OK);
    }
    std::uint32_t count = 99;
    const auto nodes = NRuntime::Query<NSdk::IDatabaseNodes>(module.Create(NSdk::kProgIdPlugIn));
    EXPECT_EQ(nodes->GetChannelCount(&count), S_OK);
    EXPECT_EQ(count, 0u);
  }
}

// Null where a result belongs, or an object that the call cannot do without.
TEST(HostThatPassesNull, IsRefused) {
  Host host(NSdk::kHostHalvard);
  const auto plugIn = host.module.Create(NSdk::kProgIdPlugIn);
  EXPECT_EQ(plugIn->QueryInterface(NSdk::IidOf<NSdk::IPlugIn>(), nullptr), E_POINTER);
  const auto version = NRuntime::Query<NSdk::IVersion>(plugIn);
  EXPECT_EQ(version->GetVersion(nullptr, nullptr, nullptr), E_POINTER);
  EXPECT_EQ(version->GetProductName(nullptr), E_POINTER);
  EXPECT_EQ(version->GetDescription(nullptr), E_POINTER);
  EXPECT_EQ(version->GetReleaseNotes(nullptr), E_NOTIMPL);
  const auto extensions = NRuntime::Query<NSdk::IPlugInExtensions>(plugIn);
  EXPECT_TRUE(FAILED(extensions->AddPages(nullptr)));
  EXPECT_EQ(extensions->AddContextCommands(NSdk::IidOf<IUnknown>(), nullptr, nullptr), E_POINTER);
  const auto nodes = NRuntime::Query<NSdk::IDatabaseNodes>(plugIn);
  EXPECT_EQ(nodes->GetChannelCount(nullptr), E_POINTER);
  EXPECT_EQ(nodes->GetChannelAt(0, nullptr, nullptr, nullptr), E_POINTER);
  EXPECT_EQ(nodes->GetNodes(1, nullptr), E_POINTER);
  for (const auto& [name, action] : host.application->Commands().Commands()) {
    EXPECT_EQ(action->GetCaption(nullptr), E_POINTER);
    EXPECT_EQ(action->GetToolTip(nullptr), E_POINTER);
    EXPECT_EQ(action->GetImages(nullptr, nullptr, nullptr), E_POINTER);
    if (name.starts_with(L"Tool.")) continue;  // would start it
    EXPECT_EQ(action->Execute(nullptr), name.starts_with(L"Insert.") ? E_POINTER : S_OK);
  }
  for (const char* progId : {NSdk::kProgIdCANopenIG, NSdk::kProgIdCANopenScanner}) {
    const auto object = host.module.Create(progId);
    const auto block = NRuntime::Query<NSdk::IPlugInBlock>(object);
    EXPECT_EQ(block->Attach(nullptr), E_POINTER);
    EXPECT_EQ(block->GetName(nullptr), E_POINTER);
    EXPECT_EQ(block->SetName(nullptr), E_POINTER);
    EXPECT_EQ(block->GetCaption(nullptr), E_POINTER);
    EXPECT_EQ(NRuntime::Query<NSdk::IMSFinalNode>(object)->GetEvents(nullptr), E_POINTER);
    EXPECT_EQ(NRuntime::Query<NSdk::IRTClient>(object)->StartMeasurement(nullptr), E_POINTER);
    EXPECT_EQ(NRuntime::Query<NSdk::ICANEvents>(object)->OnCanMessage(nullptr), E_POINTER);
    NRuntime::Query<NSdk::ITimerSink>(object)->OnTimer(nullptr);
    EXPECT_EQ(NRuntime::Query<NSdk::IPersistentObject>(object)->GetProgId(nullptr), E_POINTER);
  }
  const auto generator = NRuntime::Query<NSdk::IGenerator>(host.module.Create(NSdk::kProgIdCANopenIG));
  EXPECT_EQ(generator->LoadSequence(nullptr, nullptr), E_POINTER);
  EXPECT_EQ(generator->SaveSequence(nullptr, nullptr), E_POINTER);
  EXPECT_EQ(generator->GetActivity(nullptr), E_POINTER);
  EXPECT_EQ(generator->GetItemCount(0, nullptr), E_POINTER);
  EXPECT_EQ(generator->GetItem(0, 0, nullptr), E_POINTER);
  EXPECT_EQ(generator->SetEvents(nullptr), S_OK);
  const auto scanner = NRuntime::Query<NSdk::IScanner>(host.module.Create(NSdk::kProgIdCANopenScanner));
  EXPECT_TRUE(FAILED(scanner->GetModel(nullptr)));
  EXPECT_TRUE(FAILED(scanner->GetNodes(nullptr)));
  EXPECT_TRUE(FAILED(scanner->GetColumnText(0, nullptr)));
}

}  // namespace
