#include <gmock/gmock.h>

#include <fstream>
#include <sstream>

#include "com/assertion.h"
#include "com/task_text.h"
#include "scanner/model.h"
#include "scanner/node_texts.h"
#include "scanner/scanner.h"
#include "sdo/data_object.h"
#include "tests/ig/fake_host.h"
#include "tests/scanner/frames.h"

namespace NTest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string Narrow(const std::wstring& text) { return std::string(text.begin(), text.end()); }

// A scanner in a measurement.
class ScannerTest : public testing::Test {
 protected:
  ScannerTest() { Start(); }
  ~ScannerTest() override { Stop(); }
  void Start() { EXPECT_EQ(scanner->StartMeasurement(&host), S_OK); }
  void Stop() { EXPECT_EQ(scanner->StopMeasurement(), S_OK); }

  /// "1:705#7F": channel and frame; "+1000" lets milliseconds pass.
  void Play(const std::string& script) {
    std::istringstream words(script);
    for (std::string word; words >> word;) {
      if (word[0] == '+') {
        host.RunFor(static_cast<std::uint32_t>(std::atoi(word.c_str())));
      } else {
        Frame(static_cast<std::uint32_t>(word[0] - '0'), word.substr(2));
      }
    }
  }
  HRESULT Frame(std::uint32_t channel, const std::string& frame) {
    return scanner->OnCanMessage(Message(channel, frame).Get());
  }

  /// Rows as "5|Operational|1|--|x|2 image 3".
  std::vector<std::string> Table(std::uint32_t numberBase = 10) {
    std::vector<std::string> rows;
    for (const auto& node : Nodes()) {
      std::string row;
      for (std::uint32_t column = 0; column < NSdk::kScannerColumns; ++column) {
        NCom::TaskText text;
        EXPECT_EQ(scanner->GetCellText(node.Get(), column, numberBase, text.Receive()), S_OK);
        row += (row.empty() ? "" : "|") + Narrow(text.Text());
      }
      std::uint32_t image = 0;
      EXPECT_EQ(scanner->GetRowImage(node.Get(), &image), S_OK);
      rows.push_back(row + " image " + std::to_string(image));
    }
    return rows;
  }

  std::vector<NCom::ComPtr<NSdk::ICANopenNode>> Nodes() {
    std::vector<NCom::ComPtr<NSdk::ICANopenNode>> nodes;
    NCom::ComPtr<NSdk::IArray> array;
    std::uint32_t count = 0;
    EXPECT_EQ(scanner->GetNodes(array.Receive()), S_OK);
    array->GetCount(&count);
    for (std::uint32_t position = 0; position < count; ++position) {
      NCom::ComPtr<NSdk::ICANopenNode> node;
      array->GetElement(position, NSdk::IidOf<NSdk::ICANopenNode>(), node.ReceiveVoid());
      nodes.push_back(std::move(node));
    }
    return nodes;
  }

  std::string Tip(std::size_t row) {
    NCom::TaskText text;
    EXPECT_EQ(scanner->GetToolTip(Nodes()[row].Get(), text.Receive()), S_OK);
    return Narrow(text.Text());
  }

  std::uint32_t ChangeCount() {
    NCom::ComPtr<NSdk::IModel> model;
    std::uint32_t count = 0;
    EXPECT_EQ(scanner->GetModel(model.Receive()), S_OK);
    model->GetChangeCount(&count);
    return count;
  }

  FakeHost host;
  NCom::ComPtr<NScanner::ZCANopenScanner> scanner = NCom::Make<NScanner::ZCANopenScanner>();
};

TEST_F(ScannerTest, FramesMakeAndChangeRows) {
  const struct {
    const char* what;
    const char* frames;
    std::vector<std::string> rows;
  } cases[] = {
      {"heartbeat, toggle bit dropped", "1:705#85", {"5|Operational|1|--| |? image 3"}},
      {"boot-up, then pre-operational", "1:705#00 1:705#7F", {"5|Preoperational|1|--| |? image 2"}},
      {"one table for all channels, by channel and node",
       "2:705#04 1:77F#00 1:705#05",
       {"5|Operational|1|--| |? image 3", "127|Boot up|1|--| |? image 1", "5|Stopped|2|--| |? image 1"}},
      {"a state that has no name", "1:705#06", {"5||1|--| |? image 0"}},
      {"an answer without data is only a sign of life", "1:705#", {"5||1|--| |? image 0"}},
      {"guarding: the request is nothing", "1:705#R", {}},
      {"identifiers that belong to no node", "1:700#05 1:780#05 1:580#60 1:185#00 1:080#", {}},
      {"the flag of 29-bit identifiers is not looked at",
       "1:00000705#05",
       {"5|Operational|1|--| |? image 3"}},
      {"SDO: the answer counts, the request does not",
       "1:605#4000100000000000 1:586#8000100000000206",
       {"6||1|--| |? image 0"}},
      {"an emergency makes no row", "1:085#1000810000000000", {}},
      {"an emergency marks the row", "1:705#05 1:085#100081", {"5|Operational|1|--| |? image 7"}},
      {"a short emergency does not", "1:705#05 1:085#1000", {"5|Operational|1|--| |? image 3"}},
      {"a boot-up clears the error", "1:705#05 1:085#100081 1:705#00", {"5|Boot up|1|--| |? image 1"}},
      {"NMT master", "1:071#020A", {"10||1|--|x|2 image 0"}},
      {"NMT master with node-ID 0 or beyond 127, or cut off",
       "1:071#0200 1:071#0280 1:071#02",
       {"0||1|--|x|2 image 0"}},
      {"any NMT command makes masters doubtful, once",
       "1:705#05 1:071#020A 2:000#0100 1:000#0200 1:071#FF05",
       {"5|Operational|1|--|x|255 image 3", "10||1|--| |? 2 image 0"}},
      {"channel 33 (Q) shares the places of channel 1",
       "Q:705#05 1:705#04",
       {"5|Operational|33|--| |? image 3", "5|Stopped|1|--| |? image 1"}},
  };
  for (const auto& row : cases) {
    Play(row.frames);
    EXPECT_EQ(Table(), row.rows) << row.what;
    EXPECT_EQ(scanner->Clear(), S_OK);
    EXPECT_THAT(Table(), IsEmpty());
  }
  Play("1:70A#05");
  EXPECT_THAT(Table(16), ElementsAre("0xa|Operational|1|--| |? image 3"));
}

TEST_F(ScannerTest, ANodeFallsSilentAfterTenSeconds) {
  Play("1:705#05 1:706#05 +9900 1:706#05");
  EXPECT_THAT(Table(), ElementsAre("5|Operational|1|--| |? image 3", "6|Operational|1|--| |? image 3"));
  const std::uint32_t before = ChangeCount();
  Play("1:085#100081 +200 +200");  // an emergency is no sign of life
  EXPECT_THAT(Table(), ElementsAre("5|Operational|1|--| |? image 4", "6|Operational|1|--| |? image 3"));
  EXPECT_EQ(ChangeCount(), before + 2);
  Play("1:585#60");
  EXPECT_THAT(Table(), ElementsAre("5|Operational|1|--| |? image 7", "6|Operational|1|--| |? image 3"));
}

TEST_F(ScannerTest, TheTipTellsIdentityAndErrors) {
  Play(
      "1:705#05 1:605#4000100000000000 1:585#4300100091010F00 1:605#4018100100000000 1:585#43181001FEFFFFFF "
      "1:605#4018100200000000 1:585#4318100205000000 1:605#4018100400000000 1:585#4F18100407000000 "
      "1:605#4008100000000000 1:585#430810004D697831 1:085#1000FF0000000000");
  EXPECT_EQ(Tip(0),
            "Name: Mix1\nProfile: 401\nVendor Id: -2\nSerial Number: 7\nEMCY Generic Error\nEMCY Current\n"
            "EMCY Voltage\nEMCY Temperature\nEMCY Communication Error\nEMCY Device Profile Specific\n"
            "EMCY Manufacturer Specific");
  std::uint32_t number = 0;
  EXPECT_EQ(Nodes()[0]->GetObjectValue(0x1018, 1, &number), S_OK);
  EXPECT_EQ(number, 0xFFFFFFFEu);
  EXPECT_EQ(Nodes()[0]->GetObjectValue(0x1008, 0, &number), E_INVALIDARG);

  // What is read before the node was heard is not kept; bit 6 of the error register says nothing.
  Play("1:606#4018100100000000 1:586#4318100101000000 1:086#100040");
  EXPECT_EQ(Tip(1), "Name: --\nProfile: --\nVendor Id: --\nSerial Number: --");
  EXPECT_EQ(Nodes()[1]->GetObjectValue(0x1018, 1, &number), S_FALSE);
  EXPECT_THAT(Table()[1], "6||1|--| |? image 4");
}

TEST_F(ScannerTest, TheTableIsEmptyAtTheStartAndStaysAtTheEnd) {
  Play("1:705#05 1:605#4008100000000000");
  Stop();
  host.RunFor(20000);
  EXPECT_THAT(host.timers, IsEmpty());
  EXPECT_THAT(Table(), ElementsAre("5|Operational|1|--| |? image 3"));
  Start();
  EXPECT_THAT(Table(), IsEmpty());
  Play("1:705#05 1:585#430810004D697831");  // the answer to what was asked before
  EXPECT_THAT(Table(), ElementsAre("5|Operational|1|--| |? image 3"));
  EXPECT_THAT(host.sent, IsEmpty());
}

TEST_F(ScannerTest, HostileMessages) {
  class Liar final : public NCom::Implements<NSdk::ICANMessage> {
   public:
    HRESULT STDMETHODCALLTYPE GetIdentifier(std::uint32_t* value) override { return Set(value, 0x705); }
    HRESULT STDMETHODCALLTYPE GetExtended(std::uint32_t*) override { return E_FAIL; }
    HRESULT STDMETHODCALLTYPE GetDataLength(std::uint32_t* value) override { return Set(value, 0x7FFFFFFF); }
    HRESULT STDMETHODCALLTYPE GetChannel(std::uint32_t* value) override {
      return channelFails ? E_FAIL : Set(value, channel);
    }
    HRESULT STDMETHODCALLTYPE GetDirection(std::uint32_t*) override { return E_FAIL; }
    HRESULT STDMETHODCALLTYPE GetRemote(std::uint32_t* value) override { return Set(value, 0); }
    HRESULT STDMETHODCALLTYPE GetTimeStamp(std::int64_t*) override { return E_FAIL; }
    HRESULT STDMETHODCALLTYPE CopyData(std::uint32_t, std::uint8_t* buffer, std::uint32_t size) override {
      std::memset(buffer, 5, size);
      return dataFails ? E_FAIL : S_OK;
    }
    static HRESULT Set(std::uint32_t* result, std::uint32_t value) {
      *result = value;
      return S_OK;
    }
    std::uint32_t channel = 0;
    bool channelFails = false;
    bool dataFails = false;
  };
  const auto liar = NCom::Make<Liar>();
  liar->channelFails = true;
  EXPECT_EQ(scanner->OnCanMessage(liar.Get()), E_FAIL);
  EXPECT_EQ(Frame(1, "705#R"), E_FAIL);
  EXPECT_EQ(scanner->OnCanMessage(nullptr), E_POINTER);
  EXPECT_THAT(Table(), IsEmpty());

  liar->channelFails = false;
  liar->dataFails = true;
  EXPECT_EQ(scanner->OnCanMessage(liar.Get()), S_OK);
  EXPECT_THAT(Table(), ElementsAre("5||0|--| |? image 0"));
  liar->dataFails = false;
  EXPECT_EQ(scanner->OnCanMessage(liar.Get()), S_OK);
  EXPECT_THAT(Table(), ElementsAre("5|Operational|0|--| |? image 3"));

  // Whatever channels there are, the table has its bound.
  HRESULT last = S_OK;
  for (liar->channel = 1; liar->channel <= 5000; ++liar->channel) last = scanner->OnCanMessage(liar.Get());
  EXPECT_EQ(last, E_FAIL);
  EXPECT_EQ(Nodes().size(), 32u * 128u);
}

// ---- the model and who follows it

class Observer final : public NCom::Implements<NSdk::IModelObserver> {
 public:
  HRESULT STDMETHODCALLTYPE OnModelAttached(NSdk::IModel*) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE OnModelDetached(NSdk::IModel*) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE Update(NSdk::IModel*, std::uint32_t hint, IUnknown* object) override {
    EXPECT_EQ(hint, 0u);
    objects.push_back(object);
    if (whileTold) whileTold();
    return S_OK;
  }
  std::vector<IUnknown*> objects;
  std::function<void()> whileTold;
};

TEST(ScannerModel, ObserversHearInTimeAndOnce) {
  const auto model = NCom::Make<NScanner::ZCANopenModel>();
  const auto first = NCom::Make<Observer>();
  const auto second = NCom::Make<Observer>();
  model->AddObserver(first.Get());
  model->AddObserver(second.Get());
  EXPECT_FALSE(model->NotifyObservers());

  // The node is a hint that every second change takes back.
  const auto node = first;
  model->Changed(2, node.Get());
  EXPECT_TRUE(model->NotifyObservers());
  model->Changed(2, node.Get());
  model->Changed(3, node.Get());
  EXPECT_TRUE(model->NotifyObservers());
  EXPECT_THAT(first->objects, ElementsAre(node.Get(), nullptr));
  EXPECT_EQ(second->objects, first->objects);
  EXPECT_FALSE(model->NotifyObservers());

  // A bracket counts as one change, if there was one at all.
  std::uint32_t before = 0;
  std::uint32_t after = 0;
  model->GetChangeCount(&before);
  model->BeginUpdate();
  model->BeginUpdate();
  model->EndUpdate(0, nullptr);
  EXPECT_FALSE(model->NotifyObservers());
  model->BeginUpdate();
  model->Changed(3, node.Get());
  model->Changed(9, node.Get());
  EXPECT_FALSE(model->NotifyObservers());
  model->EndUpdate(0, node.Get());
  model->GetChangeCount(&after);
  EXPECT_EQ(after, before + 3);

  // The node lasts until all have heard, whatever one of them changes.
  struct Hint final : NCom::Implements<NSdk::IView> {
    explicit Hint(bool& gone) : mGone(gone) {}
    ~Hint() override { mGone = true; }
    HRESULT STDMETHODCALLTYPE AttachWindow(NSdk::IWindowSite*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE DetachWindow() override { return E_NOTIMPL; }
    bool& mGone;
  };
  bool gone = false;
  EXPECT_TRUE(model->NotifyObservers());
  model->Changed(2, NCom::Make<Hint>(gone)->Identity());
  first->whileTold = [&] { model->Changed(1, nullptr); };
  second->whileTold = [&] { EXPECT_FALSE(gone); };
  EXPECT_TRUE(model->NotifyObservers());
  EXPECT_TRUE(gone);
  second->whileTold = nullptr;

  model->Changed(3, node.Get());
  // One who leaves while the others hear is not called any more.
  first->whileTold = [&] {
    model->RemoveObserver(second.Get());
    model->RemoveObserver(first.Get());
  };
  EXPECT_TRUE(model->NotifyObservers());
  EXPECT_EQ(first->objects.size(), 5u);
  EXPECT_EQ(second->objects.size(), 4u);
  EXPECT_EQ(model->GetChangeCount(nullptr), E_INVALIDARG);
}

template <class Action>
std::string Raised(Action action) {
  try {
    action();
  } catch (const NCom::ZAssertion& assertion) {
    return assertion.what();
  }
  return {};
}

TEST(ScannerModel, MissingObjectsAreProgrammingErrors) {
  const auto model = NCom::Make<NScanner::ZCANopenModel>();
  NCom::ComPtr<NScanner::ZCANopenNode> node;
  ASSERT_EQ(model->AddNode(5, 1, node), S_OK);
  model->AddObserver(nullptr);
  EXPECT_EQ(Raised([&] { model->NotifyObservers(); }), "E:\"h->observer\"");
  EXPECT_EQ(Raised([&] { node->ApplyUpload(nullptr); }), "E:\"dataObject\"");
  EXPECT_EQ(Raised([] { NScanner::CellText(nullptr, 0, 10); }), "E:\"node\"");
}

TEST(ScannerBlock, KeepsItsSettings) {
  const auto store = NCom::Make<FakeStore>();
  const auto scanner = NCom::Make<NScanner::ZCANopenScanner>();
  NCom::TaskText name;
  scanner->GetName(name.Receive());
  EXPECT_EQ(name.Text(), L"CANopen Scanner");
  store->values = {{L"Name", L"Line 4"}, {L"WindowPos", L"10 20 310 220"}};
  EXPECT_EQ(scanner->Load(store.Get()), S_OK);
  scanner->GetCaption(name.Receive());
  EXPECT_EQ(name.Text(), L"Line 4");
  const auto saved = std::exchange(store->values, {});
  EXPECT_EQ(scanner->Load(store.Get()), S_OK);  // without keys everything stays
  EXPECT_EQ(scanner->Save(store.Get()), S_OK);
  EXPECT_EQ(store->values, saved);
  EXPECT_EQ(Raised([&] { scanner->Load(nullptr); }), "E:\"reader\"");
  EXPECT_EQ(Raised([&] { scanner->Save(nullptr); }), "E:\"writer\"");
}

// ---- a whole recording

TEST_F(ScannerTest, RecordingOfTwoNetworks) {
  std::ifstream log(OSTREL_SOURCE_DIR "/examples/two-networks.log");
  ASSERT_TRUE(log);
  double start_s = 0;
  char opening = 0;
  std::string bus, frame;
  for (double time_s = 0; log >> opening >> time_s >> opening >> bus >> frame;) {
    if (start_s == 0) start_s = time_s;
    const auto now_ms = static_cast<std::uint32_t>((time_s - start_s) * 1000);
    host.RunFor(now_ms - host.now);
    Frame(static_cast<std::uint32_t>(bus.back() - '0'), frame);
  }
  EXPECT_GT(host.now, 13000u);
  EXPECT_THAT(Table(), ElementsAre("1|Operational|1|--| |? 2 image 3",                     //
                                   "2|Preoperational|1|Mix1| |? image 0",                  //
                                   "5|Operational|1|Pump line valves, rev 2| |? image 7",  //
                                   "9||1|--| |? image 0",                                  //
                                   "5|Stopped|2|Drive| |? image 1",                        //
                                   "10|Operational|2|--|x|0 image 3"));
  EXPECT_EQ(Tip(2),
            "Name: Pump line valves, rev 2\nProfile: 401\nVendor Id: -2147483278\nSerial Number: 12345\n"
            "EMCY Generic Error\nEMCY Temperature");
  EXPECT_EQ(Tip(4), "Name: Drive\nProfile: --\nVendor Id: --\nSerial Number: 7");
  std::uint32_t alive = 9;
  EXPECT_EQ(Nodes()[1]->IsAlive(&alive), S_OK);
  EXPECT_EQ(alive, 0u);
  EXPECT_EQ(Nodes()[3]->IsAlive(&alive), S_OK);
  EXPECT_EQ(alive, 0u);  // after its only answer
}

}  // namespace
}  // namespace NTest
