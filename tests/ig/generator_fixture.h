#pragma once
// Two generator blocks with their windows in a measurement, as the host's timers and the user see them.

#include <gtest/gtest.h>

#include "canopen/flow_items.h"
#include "canopen/message_items.h"
#include "ig/generator.h"
#include "tests/ig/fake_host.h"

namespace NTest {

// Keeps what is posted to the window, in order; the stop of a timer is carried out at once.
class RecordingWindow final : public NIg::GeneratorWindow {
 public:
  void EnableControl(NIg::WindowControl control, bool enable) override {
    posts.push_back((enable ? "enable " : "disable ") + std::to_string(control));
  }
  void StopTimer(const NCom::ComPtr<NSdk::ITimer>& timer) override {
    posts.emplace_back("stop timer");
    timer->Stop();
  }
  void SelectItem(NIg::WindowControl list, std::size_t position) override {
    posts.push_back("select " + std::to_string(list) + "/" + std::to_string(position));
  }
  void SetText(NIg::WindowControl control, const std::wstring& text) override {
    labels[control] = text;
    posts.push_back("text " + std::to_string(control) + " " + std::string(text.begin(), text.end()));
  }
  std::wstring Text(NIg::WindowControl control) const override { return labels.at(control); }

  std::vector<std::string> Take() { return std::exchange(posts, {}); }

  std::vector<std::string> posts;
  std::map<NIg::WindowControl, std::wstring> labels = {{NIg::kControlExecute, L"&Execute"},
                                                       {NIg::kControlStart, L"&Start"}};
};

// One generator block with its window, as the host's timers and the user see it.
struct Block final : NCom::Implements<NSdk::ITimerSink>, NIg::TransmissionObserver {
  Block() { generator.SetWindow(&window); }

  HRESULT STDMETHODCALLTYPE OnTimer(NSdk::ITimer* timer) override {
    generator.OnTimer(timer);
    return S_OK;
  }
  void ItemSent(const NIg::ItemPlace&) override {
    if (whenSent) whenSent();
  }
  void ItemFailed(const NIg::ItemPlace& place) override {
    failed.push_back(std::to_string(place.list) + "/" + std::to_string(place.position));
  }
  void TransferEnded(const NIg::ItemPlace& place, const NIg::SdoTransferResult& result) override {
    char text[64];
    std::snprintf(text, sizeof text, "%u/%u result %u, %u bytes, %08X", static_cast<unsigned>(place.list),
                  static_cast<unsigned>(place.position), static_cast<unsigned>(result.result),
                  static_cast<unsigned>(result.bytes), static_cast<unsigned>(result.abortCode));
    transfers.emplace_back(text);
    if (whenEnded) whenEnded();
  }

  template <class Item>
  Item& Add(NSdk::GeneratorList list) {
    auto item = std::make_unique<Item>(&hexDisplay);
    Item& added = *item;
    generator.List(list).push_back(std::move(item));
    return added;
  }
  void AddPause(std::uint32_t length_ms) {
    Add<NCanopen::ZPauseItemInfo>(NSdk::kSequenceList).record.length_ms = length_ms;
  }
  void AddSwitch(std::uint32_t start) {
    Add<NCanopen::ZCycSendStateItemInfo>(NSdk::kSequenceList).record.start = start;
  }
  NCanopen::ZSyncItemInfo& AddCyclicSync(std::uint32_t delay_ms, std::uint32_t cycle_ms) {
    auto& item = Add<NCanopen::ZSyncItemInfo>(NSdk::kCyclicList);
    item.record.delay_ms = delay_ms;
    item.record.cycle_ms = cycle_ms;
    return item;
  }
  NCanopen::ZPDOItemInfo& AddPdo(NSdk::GeneratorList list, const char* data, std::uint32_t dlc) {
    auto& item = Add<NCanopen::ZPDOItemInfo>(list);
    item.record.data = data;
    item.record.dlc = dlc;
    return item;
  }

  bool hexDisplay = false;
  RecordingWindow window;
  std::vector<std::string> failed;
  std::vector<std::string> transfers;
  std::function<void()> whenSent;
  std::function<void()> whenEnded;  // a transfer
  NIg::Generator generator{*this, *this};
};

class GeneratorTest : public testing::Test {
 protected:
  GeneratorTest() {
    first->generator.StartMeasurement(*host);
    second->generator.StartMeasurement(*host);
    first->window.Take();
  }
  ~GeneratorTest() override {
    first->generator.StopMeasurement();
    second->generator.StopMeasurement();
    NCommon::SetHostApplication(nullptr);
  }

  std::vector<std::wstring>& Messages() { return host->dialogs->messages; }

  NCom::ComPtr<FakeHost> host = NCom::Make<FakeHost>();
  NCom::ComPtr<Block> first = NCom::Make<Block>();
  NCom::ComPtr<Block> second = NCom::Make<Block>();
  NIg::Generator& block = first->generator;
};

}  // namespace NTest
