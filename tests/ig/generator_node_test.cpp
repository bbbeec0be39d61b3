#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "com/assertion.h"
#include "com/task_text.h"
#include "common/text.h"
#include "ig/generator_node.h"
#include "tests/ig/fake_host.h"
#include "tests/test_folder.h"

namespace {

using NCom::ComPtr;
using NCom::TaskText;
using NIg::ZCANopenIGNode;
using testing::ElementsAre;
using testing::HasSubstr;

class Site final : public NCom::Implements<NSdk::IBlockSite> {
 public:
  HRESULT STDMETHODCALLTYPE GetApplication(NSdk::IHostApplication**) override { return E_FAIL; }
  HRESULT STDMETHODCALLTYPE BlockChanged() override {
    ++changes;
    return S_OK;
  }
  int changes = 0;
};

class Events final : public NCom::Implements<NSdk::IGeneratorEvents> {
 public:
  HRESULT STDMETHODCALLTYPE OnItemSent(std::uint32_t list, std::uint32_t position) override {
    return Heard("sent " + std::to_string(list) + "/" + std::to_string(position));
  }
  HRESULT STDMETHODCALLTYPE OnItemFailed(std::uint32_t list, std::uint32_t position) override {
    return Heard("failed " + std::to_string(list) + "/" + std::to_string(position));
  }
  HRESULT STDMETHODCALLTYPE OnTransferEnded(std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t,
                                            std::uint32_t) override {
    return Heard("transfer");
  }
  HRESULT STDMETHODCALLTYPE OnActivityChanged(std::uint32_t activity) override {
    return Heard("activity " + std::to_string(activity));
  }
  std::vector<std::string> heard;

 private:
  HRESULT Heard(std::string what) {
    heard.push_back(std::move(what));
    return S_OK;
  }
};

class GeneratorNode : public testing::Test {
 protected:
  GeneratorNode() {
    node->Attach(site.Get());
    node->SetEvents(events.Get());
  }
  ~GeneratorNode() override {
    node->Detach();
    NCommon::SetHostApplication(nullptr);
  }

  std::filesystem::path Write(const char* name, const std::string& text) const {
    std::ofstream(folder / name, std::ios::binary) << text;
    return folder / name;
  }
  std::wstring Caption() {
    TaskText caption;
    node->GetCaption(caption.Receive());
    return caption.Text();
  }

  const NTest::TestFolder folder;
  ComPtr<NTest::FakeHost> host = NCom::Make<NTest::FakeHost>();
  ComPtr<Site> site = NCom::Make<Site>();
  ComPtr<Events> events = NCom::Make<Events>();
  ComPtr<ZCANopenIGNode> node = NCom::Make<ZCANopenIGNode>();
};

TEST_F(GeneratorNode, KeepsItsSettingsAndRefusesNumbersOutOfRange) {
  const auto store = NCom::Make<NTest::FakeStore>();
  store->values = {{L"Name", L"Pump \u00e4"},
                   {L"SvcDelay", L"100000"},
                   {L"SDOTimeout", L"49"},
                   {L"SDOBlockSize", L"12x"},
                   {L"CANChannel", L"2"}};
  EXPECT_EQ(node->Load(store.Get()), S_OK);
  store->values.clear();
  EXPECT_EQ(node->Save(store.Get()), S_OK);
  const std::map<std::wstring, std::wstring> expected = {
      {L"Name", L"Pump \u00e4"},    {L"SvcDelay", L"100000"}, {L"SDOTimeout", L"5000"},
      {L"SDOBlockSize", L"10"},     {L"CANChannel", L"2"},    {L"LastCOIGSequenceRel", L""},
      {L"LastCOIGSequenceAbs", L""}};
  EXPECT_EQ(store->values, expected);
  EXPECT_EQ(Caption(), L"CAN2 | Sequence file: Untitled");
  EXPECT_THROW(node->Load(nullptr), NCom::ZAssertion);
  EXPECT_THROW(node->Save(nullptr), NCom::ZAssertion);
}

TEST_F(GeneratorNode, ReloadsTheSequenceThatItRemembers) {
  const auto path =
      Write("line.seq", "<CANopenIG><Sequence><SYNC Enabled=\"1\"/></Sequence><CyclicMsgs/></CANopenIG>");
  const auto store = NCom::Make<NTest::FakeStore>();
  host->configuration = NCom::Make<NTest::FakeConfiguration>((folder / "line.json").wstring());
  ASSERT_EQ(node->LoadSequence(path.wstring().c_str(), nullptr), S_OK);
  EXPECT_EQ(node->Save(store.Get()), S_OK);
  EXPECT_EQ(store->values[L"LastCOIGSequenceRel"], L"line.seq");
  EXPECT_EQ(store->values[L"LastCOIGSequenceAbs"], path.wstring());

  // Nothing happens until the configuration is there, or when nothing is remembered.
  const auto again = NCom::Make<ZCANopenIGNode>();
  const auto reloadedCaption = [&] {
    TaskText caption;
    again->GetCaption(caption.Receive());
    return caption.Text();
  };
  EXPECT_EQ(again->ReloadSequence(), S_FALSE);
  store->values[L"LastCOIGSequenceAbs"] = L"/somewhere/else.seq";
  again->Load(store.Get());
  const auto configuration = std::exchange(host->configuration, nullptr);
  EXPECT_EQ(again->ReloadSequence(), S_FALSE);
  host->configuration = configuration;
  EXPECT_EQ(again->ReloadSequence(), S_OK);
  EXPECT_EQ(reloadedCaption(), L"CAN1 | Sequence file: " + path.wstring());

  std::filesystem::remove(path);
  EXPECT_EQ(again->ReloadSequence(), E_FAIL);
  EXPECT_THAT(host->dialogs->messages,
              ElementsAre(L"CANopen Interactive Generator Block: Error - Sequence file " + path.wstring() +
                          L" cannot be loaded"));
}

TEST_F(GeneratorNode, LoadsPlaysAndReportsASequence) {
  Write("data.bin", "\x11\x22\x33");
  const auto path = Write("a.seq",
                          "<CANopenIG><Sequence><SYNC COBID=\"0x80\" Enabled=\"0\"/>"
                          "<PDO COBID=\"0x181\" Data=\"file:data.bin\" DLC=\"3\" Enabled=\"1\"/></Sequence>"
                          "<CyclicMsgs/></CANopenIG>");
  ASSERT_EQ(node->LoadSequence(path.wstring().c_str(), nullptr), S_OK);
  EXPECT_EQ(site->changes, 1);
  EXPECT_EQ(Caption(), L"CAN1 | Sequence file: " + path.wstring());

  std::uint32_t count = 0;
  EXPECT_EQ(node->GetItemCount(NSdk::kSequenceList, &count), S_OK);
  EXPECT_EQ(count, 2u);
  EXPECT_EQ(node->GetItemCount(2, &count), E_INVALIDARG);
  NSdk::GeneratorItem item;
  ASSERT_EQ(node->GetItem(NSdk::kSequenceList, 1, &item), S_OK);
  EXPECT_STREQ(item.typeName, L"PDO");
  EXPECT_STREQ(item.attributes, L"Node-ID 1, COBID 181, DLC 3, Data file:data.bin");
  for (wchar_t* text : {item.typeName, item.attributes, item.cycle, item.delay}) CoTaskMemFree(text);
  EXPECT_EQ(node->GetItem(NSdk::kSequenceList, 2, &item), E_INVALIDARG);
  EXPECT_EQ(node->SetItemEnabled(NSdk::kCyclicList, 0, 1), E_INVALIDARG);

  EXPECT_EQ(node->ToggleSequence(), E_FAIL) << "no measurement runs";
  ASSERT_EQ(node->StartMeasurement(host.Get()), S_OK);
  EXPECT_EQ(node->ToggleSequence(), S_OK);
  EXPECT_EQ(node->LoadSequence(path.wstring().c_str(), nullptr), E_FAIL) << "its items are being sent";
  host->RunFor(100);
  EXPECT_THAT(host->TakeSent(), ElementsAre("10: 181 [3] 11 22 33"));
  EXPECT_THAT(events->heard, ElementsAre("activity 1", "sent 0/1", "activity 0"));
  node->StopMeasurement();
  EXPECT_TRUE(host->timers.empty()) << "every timer is released";
}

TEST_F(GeneratorNode, AFileThatCannotBeLoadedChangesNothingAndSaysWhy) {
  const auto good = Write("good.seq",
                          "<CANopenIG><Sequence><SYNC COBID=\"0x80\" Enabled=\"1\"/></Sequence><CyclicMsgs/>"
                          "</CANopenIG>");
  const auto bad = Write("bad.seq", "<CANopenIG>\n<Sequence>\n</CANopenIG>");
  ASSERT_EQ(node->LoadSequence(good.wstring().c_str(), nullptr), S_OK);
  TaskText reason;
  EXPECT_EQ(node->LoadSequence(bad.wstring().c_str(), reason.Receive()), E_FAIL);
  EXPECT_THAT(reason.Text(), HasSubstr(L"line 3"));
  std::uint32_t count = 0;
  node->GetItemCount(NSdk::kSequenceList, &count);
  EXPECT_EQ(count, 1u);
  EXPECT_EQ(Caption(), L"CAN1 | Sequence file: " + good.wstring());

  EXPECT_EQ(node->SaveSequence((folder / "none" / "x.seq").wstring().c_str(), reason.Receive()), E_FAIL);
  EXPECT_THAT(reason.Text(), HasSubstr(L"cannot be created"));
  EXPECT_EQ(node->SaveSequence(folder.Path().wstring().c_str(), reason.Receive()), E_FAIL);
  EXPECT_THAT(reason.Text(), HasSubstr(L"not a file")) << "though something stands there";
  EXPECT_EQ(Caption(), L"CAN1 | Sequence file: " + good.wstring());
}

TEST_F(GeneratorNode, FilesMayHaveNamesOfAnyLanguage) {
  const auto there = folder / std::filesystem::path(u8"Anl\u00e4ge \u4e2d");
  std::filesystem::create_directory(there);
  const std::wstring path = NCommon::PathToWide(there / "a.seq");
  host->configuration = NCom::Make<NTest::FakeConfiguration>(NCommon::PathToWide(there / "c.json"));
  EXPECT_EQ(node->SaveSequence(path.c_str(), nullptr), S_OK);
  EXPECT_EQ(node->LoadSequence(path.c_str(), nullptr), S_OK);
  EXPECT_EQ(Caption(), L"CAN1 | Sequence file: " + path);
  const auto store = NCom::Make<NTest::FakeStore>();
  EXPECT_EQ(node->Save(store.Get()), S_OK);
  EXPECT_EQ(store->values[L"LastCOIGSequenceRel"], L"a.seq");
  store->values[L"LastCOIGSequenceRel"].clear();
  EXPECT_EQ(node->Load(store.Get()), S_OK);
  EXPECT_EQ(node->ReloadSequence(), S_OK) << "by its absolute path";
}

TEST_F(GeneratorNode, AChannelThatIsNotThereKeepsTheBlockOutOfTheMeasurement) {
  const auto store = NCom::Make<NTest::FakeStore>();
  store->values = {{L"CANChannel", L"7"}};
  node->Load(store.Get());
  EXPECT_EQ(node->StartMeasurement(host.Get()), E_INVALIDARG);
  EXPECT_EQ(node->ToggleCyclic(), E_FAIL);
  node->StopMeasurement();
}

TEST_F(GeneratorNode, ADetachedBlockTakesNoTimerCallbacks) {
  const auto path = Write("a.seq",
                          "<CANopenIG><Sequence/><CyclicMsgs><SYNC COBID=\"0x80\" SendCycle=\"10\" "
                          "SendDelay=\"0\" Enabled=\"1\"/></CyclicMsgs></CANopenIG>");
  node->LoadSequence(path.wstring().c_str(), nullptr);
  node->StartMeasurement(host.Get());
  node->ToggleCyclic();
  host->RunFor(15);
  EXPECT_EQ(host->TakeSent().size(), 1u);
  node->Detach();
  host->RunFor(100);
  EXPECT_EQ(host->TakeSent().size(), 0u);
}

}  // namespace
